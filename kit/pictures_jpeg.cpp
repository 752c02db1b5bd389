// JPEG files, by libjpeg. Its errors come back by longjmp: what they jump over has no destructors.
#include "pictures_canvas.h"

#include <csetjmp>
#include <cstdio> // jpeglib.h takes it for granted

#include <jpeglib.h>

#include <jerror.h> // whose numbers depend on what jpeglib.h defines

namespace nfk::pictures {
namespace {

constexpr int maxScans = 100; // a small file can ask for any number of passes over a large picture

struct Decoder {
    jpeg_decompress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg_source_mgr source{};
    jpeg_progress_mgr progress{};
    std::jmp_buf back;
    Canvas &canvas;
};

Decoder &of(j_common_ptr jpeg) { return *static_cast<Decoder *>(jpeg->client_data); }

[[noreturn]] void leave(j_common_ptr jpeg, const char *reason)
{
    of(jpeg).canvas.refuse("%s", reason);
    std::longjmp(of(jpeg).back, 1);
}

[[noreturn]] void onError(j_common_ptr jpeg)
{
    char text[JMSG_LENGTH_MAX];
    jpeg->err->format_message(jpeg, text);
    leave(jpeg, text);
}

// The library goes on after these and makes the rest of the picture up.
void onMessage(j_common_ptr jpeg, int level)
{
    if (level >= 0)
        return;
    switch (jpeg->err->msg_code) {
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
#ifdef D_ARITH_CODING_SUPPORTED
    case JWRN_ARITH_BAD_CODE:
#endif
    case JWRN_MUST_RESYNC: onError(jpeg);
    default: break;
    }
}

boolean onEnd(j_decompress_ptr jpeg) { leave(reinterpret_cast<j_common_ptr>(jpeg), "it is cut short"); }

void onSkip(j_decompress_ptr jpeg, long count)
{
    if (count <= 0)
        return;
    if (static_cast<unsigned long>(count) > jpeg->src->bytes_in_buffer)
        onEnd(jpeg);
    jpeg->src->next_input_byte += count;
    jpeg->src->bytes_in_buffer -= static_cast<size_t>(count);
}

void onProgress(j_common_ptr jpeg)
{
    if (reinterpret_cast<j_decompress_ptr>(jpeg)->input_scan_number > maxScans)
        leave(jpeg, "it has more than 100 scans");
}

void convertRow(const JSAMPLE *from, uint32_t *to, uint32_t width)
{
    for (uint32_t x = 0; x < width; ++x, from += 3)
        to[x] = 0xFF000000 | uint32_t{from[0]} << 16 | uint32_t{from[1]} << 8 | uint32_t{from[2]};
}

// `paper` is the value of no ink: the programs that leave Adobe's marker store inks the other way round.
void convertInkRow(const JSAMPLE *from, uint32_t *to, uint32_t width, uint32_t paper)
{
    for (uint32_t x = 0; x < width; ++x, from += 4) {
        const auto light = [&](uint32_t ink) { return ((ink ^ paper ^ 255) * (from[3] ^ paper ^ 255) + 127) / 255; };
        to[x] = 0xFF000000 | light(from[0]) << 16 | light(from[1]) << 8 | light(from[2]);
    }
}

bool run(Decoder &decoder)
{
    jpeg_decompress_struct &jpeg = decoder.jpeg;
    jpeg_create_decompress(&jpeg);
    jpeg.src = &decoder.source;
    jpeg.progress = &decoder.progress;
    jpeg_read_header(&jpeg, TRUE);
    const bool inks = jpeg.jpeg_color_space == JCS_CMYK || jpeg.jpeg_color_space == JCS_YCCK;
    jpeg.out_color_space = inks ? JCS_CMYK : JCS_RGB;
    if (!decoder.canvas.start(jpeg.image_width, jpeg.image_height))
        return false;
    jpeg_start_decompress(&jpeg);
    JSAMPARRAY line = jpeg.mem->alloc_sarray(reinterpret_cast<j_common_ptr>(&jpeg), JPOOL_IMAGE,
                                             jpeg.output_width * static_cast<JDIMENSION>(jpeg.output_components), 1);
    while (jpeg.output_scanline < jpeg.output_height) {
        uint32_t *to = decoder.canvas.row(jpeg.output_scanline);
        jpeg_read_scanlines(&jpeg, line, 1);
        if (inks)
            convertInkRow(line[0], to, jpeg.output_width, jpeg.saw_Adobe_marker ? 255 : 0);
        else
            convertRow(line[0], to, jpeg.output_width);
    }
    jpeg_finish_decompress(&jpeg);
    return true;
}

} // namespace

bool decodeJpeg(Bytes file, Canvas &canvas)
{
    Decoder decoder{.back = {}, .canvas = canvas};
    decoder.jpeg.err = jpeg_std_error(&decoder.errors);
    decoder.jpeg.client_data = &decoder;
    decoder.errors.error_exit = onError;
    decoder.errors.emit_message = onMessage;
    decoder.progress.progress_monitor = onProgress;
    decoder.source.next_input_byte = file.data;
    decoder.source.bytes_in_buffer = file.size;
    decoder.source.init_source = [](j_decompress_ptr) {};
    decoder.source.fill_input_buffer = onEnd;
    decoder.source.skip_input_data = onSkip;
    decoder.source.resync_to_restart = jpeg_resync_to_restart;
    decoder.source.term_source = [](j_decompress_ptr) {};
    const bool whole = setjmp(decoder.back) == 0 && run(decoder);
    jpeg_destroy_decompress(&decoder.jpeg);
    return whole;
}

} // namespace nfk::pictures
