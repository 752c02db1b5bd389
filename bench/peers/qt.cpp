// Qt 5: QPainter's raster engine on QImage.
#include "../scene.h"

#include <QImage>
#include <QPainter>

#include <memory>

namespace bench {

namespace {

QImage wrap(const Surface &surface, QImage::Format format)
{
    return QImage(reinterpret_cast<uchar *>(surface.pixels), surface.width, surface.height, surface.width * 4, format);
}

// A painter that stays open.
struct Canvas {
    QImage image = wrap(frame(), QImage::Format_RGB32);
    QPainter painter{&image};
};

struct Operation {
    bool known;
    QPainter::CompositionMode mode;
    const char *note;
};

Operation operationOf(const Work &work)
{
    switch (work.blend) {
    case copy:
        return work.content == Content::key
                   ? Operation{true, QPainter::CompositionMode_SourceOver, "SourceOver, premultiplied alpha 0 or 255 for the key"}
                   : Operation{true, QPainter::CompositionMode_Source, "no transparent test"};
    case alpha:
    case alphaFast: return {true, QPainter::CompositionMode_SourceOver, "premultiplied source"};
    case constAlpha: return {true, QPainter::CompositionMode_SourceOver, "no transparent test"};
    case add: return {true, QPainter::CompositionMode_Plus, "no transparent test"};
    case multiply: return {true, QPainter::CompositionMode_Multiply, "no transparent test"};
    case screen: return {true, QPainter::CompositionMode_Screen, "no transparent test"};
    case overlay: return {true, QPainter::CompositionMode_Overlay, "no transparent test"};
    default: return {};
    }
}

// From the texture to the frame, in Qt's order of rows and columns.
QTransform transformOf(const Map &map)
{
    const Map back = inverse(map);
    const auto &m = back.m;
    return QTransform(m[0][0], m[1][0], m[2][0], m[0][1], m[1][1], m[2][1], m[0][2], m[1][2], m[2][2]);
}

void make(const Work &work, Contenders &contenders)
{
    const auto canvas = std::make_shared<Canvas>();
    QPainter *const painter = &canvas->painter;
    const Primitive *const primitives = work.primitives.data();
    const auto add = [&](const char *note, auto draw) {
        contenders.push_back(contender("qt", Role::peer, note, work, [=, keep = canvas](size_t i) { draw(i); }));
    };
    painter->setRenderHint(QPainter::SmoothPixmapTransform, work.bilinear);
    if (work.kind == Kind::fill) {
        add("fillRect", [=](size_t i) {
            const Primitive &p = primitives[i];
            painter->fillRect(p.vertex[0].x, p.vertex[0].y, p.width(), p.height(), QColor(QRgb(p.color[0])));
        });
        return;
    }
    if (work.kind == Kind::line) {
        add("pen of width 0", [=](size_t i) {
            const Primitive &p = primitives[i];
            painter->setPen(QPen(QColor(QRgb(p.color[0])), 0));
            painter->drawLine(p.vertex[0].x, p.vertex[0].y, p.vertex[1].x, p.vertex[1].y);
        });
        return;
    }
    const auto corners = [=](size_t i) {
        const Vertex *const v = primitives[i].vertex;
        return std::array{QPointF(v[0].x, v[0].y), QPointF(v[1].x, v[1].y), QPointF(v[2].x, v[2].y)};
    };
    if (work.kind == Kind::flatTriangle) {
        painter->setPen(Qt::NoPen);
        add("drawConvexPolygon", [=](size_t i) {
            painter->setBrush(QColor(QRgb(primitives[i].color[0])));
            painter->drawConvexPolygon(corners(i).data(), 3);
        });
        return;
    }
    const Operation operation = operationOf(work);
    if (!operation.known || work.kind >= Kind::flatTriangle)
        return;
    const bool withAlpha = work.weighsByAlpha() || (work.blend == copy && work.content == Content::key);
    const QImage source = withAlpha ? wrap(premultiplied(work.content, work.textureSize), QImage::Format_ARGB32_Premultiplied)
                                    : wrap(straight(work.content, work.textureSize), QImage::Format_RGB32);
    painter->setCompositionMode(operation.mode);
    if (work.blend == constAlpha)
        painter->setOpacity(128 / 255.0);
    switch (work.kind) {
    case Kind::blit:
        add(operation.note, [=](size_t i) {
            const Primitive &p = primitives[i];
            painter->drawImage(QPoint(p.vertex[0].x, p.vertex[0].y), source,
                               QRect(p.texelU(), p.texelV(), p.width(), p.height()));
        });
        break;
    case Kind::stretch:
        add(operation.note, [=](size_t i) {
            const Primitive &p = primitives[i];
            const QRectF from(p.uv[0].u / 65536.0, p.uv[0].v / 65536.0, (p.uv[1].u - p.uv[0].u) / 65536.0,
                              (p.uv[1].v - p.uv[0].v) / 65536.0);
            painter->drawImage(QRectF(p.vertex[0].x, p.vertex[0].y, p.width(), p.height()), source, from);
        });
        break;
    case Kind::corners:
    case Kind::table:
    case Kind::perspective:
        painter->setTransform(transformOf(work.maps[0]));
        add(operation.note, [=](size_t) { painter->drawImage(QPointF(0, 0), source); });
        break;
    case Kind::triangle: {
        painter->setPen(Qt::NoPen);
        std::vector<QBrush> brushes;
        for (const Map &map : work.maps) {
            brushes.emplace_back(source);
            brushes.back().setTransform(transformOf(map));
        }
        add(operation.note, [=](size_t i) {
            painter->setBrush(brushes[i]);
            painter->drawConvexPolygon(corners(i).data(), 3);
        });
        break;
    }
    default: break;
    }
}

const Peer registration("qt", make);

} // namespace

} // namespace bench
