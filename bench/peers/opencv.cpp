// OpenCV: matrices of four bytes, on one thread.
#include "../scene.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <array>

namespace bench {

namespace {

cv::Mat wrap(const Surface &surface) { return {surface.height, surface.width, CV_8UC4, surface.pixels}; }

cv::Scalar colourOf(uint32_t c) { return {double(c & 255), double(c >> 8 & 255), double(c >> 16 & 255), double(c >> 24)}; }

void make(const Work &work, Contenders &contenders)
{
    cv::setNumThreads(1);
    const cv::Mat target = wrap(frame());
    const Primitive *const primitives = work.primitives.data();
    const auto add = [&](const char *note, auto draw) {
        contenders.push_back(contender("opencv", Role::peer, note, work, draw));
    };
    const auto boxOf = [](const Primitive &p) { return cv::Rect(p.vertex[0].x, p.vertex[0].y, p.width(), p.height()); };
    switch (work.kind) {
    case Kind::fill:
        add("setTo", [=](size_t i) { target(boxOf(primitives[i])).setTo(colourOf(primitives[i].color[0])); });
        return;
    case Kind::line:
        add("", [=](size_t i) {
            const Vertex *const v = primitives[i].vertex;
            cv::line(target, {v[0].x, v[0].y}, {v[1].x, v[1].y}, colourOf(primitives[i].color[0]));
        });
        return;
    case Kind::flatTriangle:
        add("fillConvexPoly", [=](size_t i) {
            const Vertex *const v = primitives[i].vertex;
            const std::array<cv::Point, 3> points{cv::Point(v[0].x, v[0].y), {v[1].x, v[1].y}, {v[2].x, v[2].y}};
            cv::fillConvexPoly(target, points.data(), 3, colourOf(primitives[i].color[0]));
        });
        return;
    default: break;
    }
    const cv::Mat source = wrap(straight(work.content, work.textureSize));
    const int filter = work.bilinear ? cv::INTER_LINEAR : cv::INTER_NEAREST;
    if (work.kind == Kind::blit) {
        const auto blend = [&](const char *note, auto operation) {
            add(note, [=](size_t i) {
                const Primitive &p = primitives[i];
                cv::Mat to = target(boxOf(p));
                operation(to, cv::Rect(p.texelU(), p.texelV(), p.width(), p.height()));
            });
        };
        switch (work.blend) {
        case copy: {
            cv::Mat mask(source.rows, source.cols, CV_8U);
            for (int i = 0; i < source.rows * source.cols; ++i)
                mask.data[i] = reinterpret_cast<const uint32_t *>(source.data)[i] ? 255 : 0;
            blend("copyTo with a mask plane", [=](cv::Mat &to, const cv::Rect &from) { source(from).copyTo(to, mask(from)); });
            break;
        }
        case constAlpha:
            blend("addWeighted",
                  [=](cv::Mat &to, const cv::Rect &from) { cv::addWeighted(to, 127 / 255.0, source(from), 128 / 255.0, 0, to); });
            break;
        case Blend::add: blend("", [=](cv::Mat &to, const cv::Rect &from) { cv::add(to, source(from), to); }); break;
        case subtract: blend("", [=](cv::Mat &to, const cv::Rect &from) { cv::subtract(to, source(from), to); }); break;
        case multiply:
            blend("", [=](cv::Mat &to, const cv::Rect &from) { cv::multiply(to, source(from), to, 1 / 255.0); });
            break;
        case multiply2:
            blend("", [=](cv::Mat &to, const cv::Rect &from) { cv::multiply(to, source(from), to, 2 / 255.0); });
            break;
        default: break;
        }
        return;
    }
    if (work.blend != copy)
        return;
    if (work.kind == Kind::stretch)
        add("no transparent test", [=](size_t i) {
            const Primitive &p = primitives[i];
            cv::Mat to = target(boxOf(p));
            cv::resize(source(cv::Rect(p.texelU(), p.texelV(), p.sourceWidth(), p.sourceHeight())), to, to.size(), 0, 0, filter);
        });
    if (work.kind == Kind::corners || work.kind == Kind::table || work.kind == Kind::perspective) {
        const auto &m = work.maps[0].m;
        const cv::Mat map =
            (cv::Mat_<double>(3, 3) << m[0][0], m[0][1], m[0][2], m[1][0], m[1][1], m[1][2], m[2][0], m[2][1], m[2][2]);
        const int flags = filter | cv::WARP_INVERSE_MAP;
        if (work.kind == Kind::corners)
            add("no transparent test",
                [=](size_t) { cv::warpAffine(source, target, map.rowRange(0, 2), target.size(), flags, cv::BORDER_REPLICATE); });
        else
            add("no transparent test",
                [=](size_t) { cv::warpPerspective(source, target, map, target.size(), flags, cv::BORDER_REPLICATE); });
    }
}

const Peer registration("opencv", make);

} // namespace

} // namespace bench
