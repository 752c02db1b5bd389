// WebP files, by libwebp.
#include "pictures_canvas.h"

#include <webp/decode.h>

namespace nfk::pictures {
namespace {

const char *nameOf(VP8StatusCode status)
{
    switch (status) {
    case VP8_STATUS_OUT_OF_MEMORY: return "there is no memory to decode it";
    case VP8_STATUS_UNSUPPORTED_FEATURE: return "it uses a feature that is not read";
    case VP8_STATUS_SUSPENDED:
    case VP8_STATUS_NOT_ENOUGH_DATA: return "it is cut short";
    default: return "it is damaged";
    }
}

} // namespace

bool decodeWebp(Bytes file, Canvas &canvas)
{
    WebPDecoderConfig config;
    if (!WebPInitDecoderConfig(&config))
        return canvas.refuse("libwebp is of another version than its header");
    VP8StatusCode status = WebPGetFeatures(file.data, file.size, &config.input);
    if (status != VP8_STATUS_OK)
        return canvas.refuse("%s", nameOf(status));
    if (config.input.has_animation)
        return canvas.refuse("it is an animation; still pictures are read");
    const auto width = static_cast<uint32_t>(config.input.width), height = static_cast<uint32_t>(config.input.height);
    if (!canvas.start(width, height))
        return false;
    config.output.colorspace = MODE_BGRA;
    config.output.is_external_memory = 1;
    config.output.u.RGBA.rgba = reinterpret_cast<uint8_t *>(canvas.row(0));
    config.output.u.RGBA.stride = static_cast<int>(canvas.pitch() * 4);
    config.output.u.RGBA.size = size_t{canvas.pitch()} * height * 4;
    status = WebPDecode(file.data, file.size, &config);
    WebPFreeDecBuffer(&config.output);
    return status == VP8_STATUS_OK || canvas.refuse("%s", nameOf(status));
}

} // namespace nfk::pictures
