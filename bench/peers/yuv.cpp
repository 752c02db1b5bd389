// libyuv: rows of vectors for whole planes.
#include "../hold.h"
#include "../scene.h"

#include <libyuv.h>

#include <memory>

namespace bench {

namespace {

uint8_t *bytes(const Surface &surface, int x, int y)
{
    return reinterpret_cast<uint8_t *>(surface.pixels + y * surface.width + x);
}

void make(const Work &work, Contenders &contenders)
{
#if defined(__x86_64__) || defined(__i386__)
    if (isHeldToV3())
        libyuv::MaskCpuFlags(libyuv::kCpuHasAVX512BW - 1);
#endif
    const Surface target = frame();
    const Primitive *const primitives = work.primitives.data();
    const int targetPitch = target.width * 4;
    const auto to = [=](const Primitive &p) { return bytes(target, p.vertex[0].x, p.vertex[0].y); };
    if (work.kind == Kind::fill) {
        contenders.push_back(contender("libyuv", Role::peer, "ARGBRect", work, [=](size_t i) {
            const Primitive &p = primitives[i];
            libyuv::ARGBRect(to({}), targetPitch, p.vertex[0].x, p.vertex[0].y, p.width(), p.height(), p.color[0]);
        }));
        return;
    }
    const Surface source =
        work.weighsByAlpha() ? premultiplied(work.content, work.textureSize) : straight(work.content, work.textureSize);
    const int sourcePitch = source.width * 4;
    const auto from = [=](const Primitive &p) { return bytes(source, p.texelU(), p.texelV()); };
    if (work.kind == Kind::blit) {
        const auto withTarget = [&](const char *note, auto operation) {
            contenders.push_back(contender("libyuv", Role::peer, note, work, [=](size_t i) {
                const Primitive &p = primitives[i];
                operation(from(p), sourcePitch, to(p), targetPitch, to(p), targetPitch, p.width(), p.height());
            }));
        };
        switch (work.blend) {
        case alpha:
        case alphaFast: withTarget("premultiplied source", libyuv::ARGBBlend); break;
        case add: withTarget("no transparent test", libyuv::ARGBAdd); break;
        case multiply: withTarget("no transparent test", libyuv::ARGBMultiply); break;
        case subtract:
            contenders.push_back(contender("libyuv", Role::peer, "no transparent test", work, [=](size_t i) {
                const Primitive &p = primitives[i];
                libyuv::ARGBSubtract(to(p), targetPitch, from(p), sourcePitch, to(p), targetPitch, p.width(), p.height());
            }));
            break;
        case constAlpha:
            // At one half it takes the mean of two bytes, which no other factor can.
            for (const int factor : {129, 128})
                contenders.push_back(contender("libyuv/" + std::to_string(factor), factor == 128 ? Role::less : Role::peer,
                                               factor == 128 ? "this factor alone; no transparent test" : "no transparent test",
                                               work, [=](size_t i) {
                                                   const Primitive &p = primitives[i];
                                                   libyuv::ARGBInterpolate(to(p), targetPitch, from(p), sourcePitch, to(p),
                                                                           targetPitch, p.width(), p.height(), factor);
                                               }));
            break;
        default: break;
        }
    }
    if (work.kind == Kind::stretch) {
        const libyuv::FilterMode filter = work.bilinear ? libyuv::kFilterBilinear : libyuv::kFilterNone;
        if (work.blend == copy) {
            contenders.push_back(contender("libyuv", Role::peer, "no transparent test", work, [=](size_t i) {
                const Primitive &p = primitives[i];
                libyuv::ARGBScale(from(p), sourcePitch, p.sourceWidth(), p.sourceHeight(), to(p), targetPitch, p.width(),
                                  p.height(), filter);
            }));
        } else if (work.weighsByAlpha()) {
            const auto scaled = std::make_shared<std::vector<uint8_t>>(size_t(targetPitch) * frameSize);
            contenders.push_back(
                contender("libyuv", Role::peer, "scaled, then blended; premultiplied source", work, [=](size_t i) {
                    const Primitive &p = primitives[i];
                    const int pitch = p.width() * 4;
                    libyuv::ARGBScale(from(p), sourcePitch, p.sourceWidth(), p.sourceHeight(), scaled->data(), pitch, p.width(),
                                      p.height(), filter);
                    libyuv::ARGBBlend(scaled->data(), pitch, to(p), targetPitch, to(p), targetPitch, p.width(), p.height());
                }));
        }
    }
    if (work.kind == Kind::corners && work.blend == copy && !work.bilinear) {
        const auto &m = work.maps[0].m;
        const float stepU = float(m[0][0]), stepV = float(m[1][0]), downU = float(m[0][1]), downV = float(m[1][1]);
        const float startU = float(m[0][2]), startV = float(m[1][2]);
        contenders.push_back(
            contender("libyuv", Role::less, "a row at a time, no bounds, no wrap, no transparent test", work, [=](size_t) {
                for (int y = 0; y < frameSize; ++y) {
                    const float uv[4] = {startU + downU * float(y), startV + downV * float(y), stepU, stepV};
#if defined(__x86_64__)
                    libyuv::ARGBAffineRow_SSE2(bytes(source, 0, 0), sourcePitch, bytes(target, 0, y), uv, frameSize);
#else
                libyuv::ARGBAffineRow_C(bytes(source, 0, 0), sourcePitch, bytes(target, 0, y), uv, frameSize);
#endif
                }
            }));
    }
}

const Peer registration("libyuv", make);

} // namespace

} // namespace bench
