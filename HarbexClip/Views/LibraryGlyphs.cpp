#include "HarbexClip/Views/LibraryGlyphs.hpp"

#include "HarbexClip/Views/KindGlyphs.hpp"

#include <QIconEngine>
#include <QPainterPath>

#include <cmath>
#include <functional>
#include <numbers>

#include "HarbexClipCore/Library/ClipPinboardStyle.hpp"

namespace harbex::LibraryGlyphs {
namespace {

// Maps the unit square onto `box`, keeping it square and centred.
QTransform unitTo(const QRectF& box) {
    const double side = std::min(box.width(), box.height());
    QTransform transform;
    transform.translate(box.center().x() - side / 2, box.center().y() - side / 2);
    transform.scale(side, side);
    return transform;
}

void strokeUnit(QPainter& painter, const QRectF& box, const QPainterPath& path, const QColor& color,
                double width = 0.09) {
    const QTransform t = unitTo(box);
    QPen pen(color, width * std::min(box.width(), box.height()), Qt::SolidLine, Qt::RoundCap,
             Qt::RoundJoin);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(t.map(path));
    painter.restore();
}

void fillUnit(QPainter& painter, const QRectF& box, const QPainterPath& path, const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    painter.drawPath(unitTo(box).map(path));
    painter.restore();
}

QPainterPath lines(std::initializer_list<std::pair<QPointF, QPointF>> segments) {
    QPainterPath path;
    for (const auto& [from, to] : segments) {
        path.moveTo(from);
        path.lineTo(to);
    }
    return path;
}

QPainterPath polygon(std::initializer_list<QPointF> points) {
    QPainterPath path;
    path.addPolygon(QPolygonF(QList<QPointF>(points)));
    path.closeSubpath();
    return path;
}

// Two rows of two rounded squares: applications, and the grid layout.
QPainterPath fourSquares(double radius) {
    QPainterPath path;
    for (double x : {0.14, 0.56}) {
        for (double y : {0.14, 0.56}) path.addRoundedRect(QRectF(x, y, 0.3, 0.3), radius, radius);
    }
    return path;
}

QPainterPath starPath() {
    QPainterPath path;
    for (int i = 0; i < 10; ++i) {
        const double radius = i % 2 == 0 ? 0.46 : 0.2;
        const double angle = -std::numbers::pi / 2 + i * std::numbers::pi / 5;
        const QPointF point(0.5 + radius * std::cos(angle), 0.53 + radius * std::sin(angle));
        i == 0 ? path.moveTo(point) : path.lineTo(point);
    }
    path.closeSubpath();
    return path;
}

QPainterPath heartPath() {
    QPainterPath path;
    path.moveTo(0.5, 0.86);
    path.cubicTo(0.1, 0.6, 0.04, 0.35, 0.2, 0.22);
    path.cubicTo(0.33, 0.12, 0.46, 0.2, 0.5, 0.3);
    path.cubicTo(0.54, 0.2, 0.67, 0.12, 0.8, 0.22);
    path.cubicTo(0.96, 0.35, 0.9, 0.6, 0.5, 0.86);
    return path;
}

QPainterPath pinPath() {
    QPainterPath path;
    path.addEllipse(QPointF(0.5, 0.32), 0.2, 0.2);
    QPainterPath needle;
    needle.moveTo(0.44, 0.46);
    needle.lineTo(0.5, 0.9);
    needle.lineTo(0.56, 0.46);
    needle.closeSubpath();
    return path.united(needle);
}

// A glyph that fills instead of stroking.
struct Shape {
    QPainterPath path;
    bool filled = false;
};

Shape symbolShape(std::string_view name) {
    if (name == "star") return {starPath(), true};
    if (name == "heart") return {heartPath(), true};
    if (name == "bookmark") {
        return {polygon({{0.28, 0.12}, {0.72, 0.12}, {0.72, 0.88}, {0.5, 0.68}, {0.28, 0.88}}),
                true};
    }
    if (name == "folder") {
        return {
            polygon({{0.1, 0.24}, {0.4, 0.24}, {0.48, 0.33}, {0.9, 0.33}, {0.9, 0.8}, {0.1, 0.8}}),
            true};
    }
    if (name == "tag") {
        const QPainterPath path =
            polygon({{0.12, 0.14}, {0.5, 0.14}, {0.88, 0.52}, {0.52, 0.88}, {0.12, 0.5}});
        QPainterPath hole;
        hole.addEllipse(QPointF(0.32, 0.34), 0.07, 0.07);
        return {path.subtracted(hole), true};
    }
    if (name == "flag") {
        QPainterPath path;
        path.addRect(QRectF(0.2, 0.1, 0.07, 0.8));
        QPainterPath cloth;
        cloth.moveTo(0.27, 0.14);
        cloth.cubicTo(0.45, 0.06, 0.6, 0.24, 0.82, 0.14);
        cloth.lineTo(0.82, 0.52);
        cloth.cubicTo(0.6, 0.62, 0.45, 0.44, 0.27, 0.52);
        cloth.closeSubpath();
        return {path.united(cloth), true};
    }
    if (name == "briefcase") {
        QPainterPath path;
        path.addRoundedRect(QRectF(0.1, 0.3, 0.8, 0.54), 0.08, 0.08);
        QPainterPath handle;
        handle.addRoundedRect(QRectF(0.34, 0.14, 0.32, 0.22), 0.06, 0.06);
        QPainterPath inside;
        inside.addRect(QRectF(0.42, 0.21, 0.16, 0.1));
        return {path.united(handle.subtracted(inside)), true};
    }
    return {pinPath(), true};
}

void paintShape(QPainter& painter, const QRectF& box, const Shape& shape, const QColor& color) {
    shape.filled ? fillUnit(painter, box, shape.path, color)
                 : strokeUnit(painter, box, shape.path, color);
}

// An icon engine that draws with a function, so every size and density is drawn afresh.
class PaintedIconEngine final : public QIconEngine {
public:
    explicit PaintedIconEngine(std::function<void(QPainter&, const QRectF&)> draw)
        : draw_(std::move(draw)) {}
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        painter->save();
        if (mode == QIcon::Disabled) painter->setOpacity(0.4);
        draw_(*painter, QRectF(rect));
        painter->restore();
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        return scaledPixmap(size, mode, state, 1.0);
    }
    // `size` is in device pixels already; `scale` is what they stand for on screen.
    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state,
                         qreal scale) override {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        {
            QPainter painter(&pixmap);
            paint(&painter, QRect(QPoint(0, 0), size), mode, state);
        }
        pixmap.setDevicePixelRatio(scale);
        return pixmap;
    }
    QIconEngine* clone() const override { return new PaintedIconEngine(draw_); }

private:
    std::function<void(QPainter&, const QRectF&)> draw_;
};

QIcon painted(std::function<void(QPainter&, const QRectF&)> draw) {
    return QIcon(new PaintedIconEngine(std::move(draw)));
}

}  // namespace

QColor boardColor(std::string_view name) {
    static const std::pair<std::string_view, QColor> colors[] = {
        {"blue", QColor(0x2f, 0x7c, 0xf6)},   {"purple", QColor(0x9b, 0x59, 0xd6)},
        {"pink", QColor(0xe8, 0x4f, 0x9a)},   {"red", QColor(0xe5, 0x48, 0x3f)},
        {"orange", QColor(0xf0, 0x8c, 0x24)}, {"yellow", QColor(0xe6, 0xb8, 0x1e)},
        {"green", QColor(0x3a, 0xaa, 0x5c)},  {"grey", QColor(0x8a, 0x8f, 0x98)},
    };
    static_assert(sizeof(colors) / sizeof(colors[0]) == kPinboardColors.size());
    for (const auto& [each, color] : colors) {
        if (each == name) return color;
    }
    return colors[0].second;
}

QColor onColor(const QColor& background) {
    return background.lightnessF() > 0.62 ? QColor(0x20, 0x20, 0x20) : QColor(Qt::white);
}

void paintSymbol(QPainter& painter, const QRectF& box, std::string_view name, const QColor& color) {
    paintShape(painter, box, symbolShape(name), color);
}

void paintMark(QPainter& painter, const QRectF& box, Mark mark, const QColor& color) {
    switch (mark) {
        case Mark::all: {
            QPainterPath path;
            path.addRoundedRect(QRectF(0.14, 0.3, 0.72, 0.56), 0.08, 0.08);
            path.moveTo(0.22, 0.2);
            path.lineTo(0.78, 0.2);
            path.moveTo(0.3, 0.1);
            path.lineTo(0.7, 0.1);
            return strokeUnit(painter, box, path, color);
        }
        case Mark::today: {
            QPainterPath path;
            path.addEllipse(QPointF(0.5, 0.5), 0.38, 0.38);
            path.moveTo(0.5, 0.28);
            path.lineTo(0.5, 0.5);
            path.lineTo(0.66, 0.6);
            return strokeUnit(painter, box, path, color);
        }
        case Mark::pinned: return fillUnit(painter, box, pinPath(), color);
        case Mark::app: return strokeUnit(painter, box, fourSquares(0.07), color);
        case Mark::list:
            return strokeUnit(painter, box,
                              lines({{{0.16, 0.26}, {0.84, 0.26}},
                                     {{0.16, 0.5}, {0.84, 0.5}},
                                     {{0.16, 0.74}, {0.84, 0.74}}}),
                              color);
        case Mark::grid: return fillUnit(painter, box, fourSquares(0.05), color);
        case Mark::newBoard:
            return strokeUnit(painter, box,
                              lines({{{0.5, 0.2}, {0.5, 0.8}}, {{0.2, 0.5}, {0.8, 0.5}}}), color,
                              0.11);
    }
}

QIcon kindIcon(ClipKind kind) {
    return painted([kind](QPainter& painter, const QRectF& box) {
        kindglyph::paint(painter, box.adjusted(2, 2, -2, -2), kind, kindglyph::tint(kind, false));
    });
}

QIcon markIcon(Mark mark, const QColor& color) {
    return painted([mark, color](QPainter& painter, const QRectF& box) {
        paintMark(painter, box.adjusted(1, 1, -1, -1), mark, color);
    });
}

QIcon boardIcon(std::string_view colorName, std::string_view symbolName) {
    const QColor color = boardColor(colorName);
    const std::string symbol(symbolName);
    return painted([color, symbol](QPainter& painter, const QRectF& box) {
        const double side = std::min(box.width(), box.height()) - 1;
        const QRectF circle(box.center().x() - side / 2, box.center().y() - side / 2, side, side);
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(color);
        painter.drawEllipse(circle);
        painter.restore();
        const double inset = side * 0.24;
        paintSymbol(painter, circle.adjusted(inset, inset, -inset, -inset), symbol, onColor(color));
    });
}

QIcon swatchIcon(const QColor& color) {
    return painted([color](QPainter& painter, const QRectF& box) {
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(QPen(color.darker(130), 1));
        painter.setBrush(color);
        const double side = std::min(box.width(), box.height()) - 2;
        painter.drawEllipse(
            QRectF(box.center().x() - side / 2, box.center().y() - side / 2, side, side));
        painter.restore();
    });
}

}  // namespace harbex::LibraryGlyphs
