#include "HarbexClip/Views/ClipPanelGlyphs.hpp"

#include "HarbexClip/Views/KindGlyphs.hpp"

#include <QPainterPath>

namespace harbex::panelglyph {

namespace {

void well(QPainter& painter, const QRectF& box, const QColor& fill) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(box, box.width() * 0.25, box.height() * 0.25);
}

// The drawing square inside a well: the middle 55 %.
QRectF inner(const QRectF& box) {
    const qreal side = box.width() * 0.55;
    return QRectF(box.center().x() - side / 2, box.center().y() - side / 2, side, side);
}

}  // namespace

QColor tint(ClipKind glyph, const ClipPanelPalette& palette) {
    return kindglyph::tint(glyph, palette.isDark);
}

void kind(QPainter& painter, const QRectF& box, ClipKind glyph, const ClipPanelPalette& palette,
          ClipGlyphTone tone) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const bool selected = tone == ClipGlyphTone::onSelection;
    const QColor colour = selected ? palette.selectedText : tint(glyph, palette);
    QColor fill = colour;
    fill.setAlphaF(selected ? 0.22 : (palette.isDark ? 0.16 : 0.12));
    well(painter, box, fill);
    painter.restore();
    kindglyph::paint(painter, inner(box), glyph, colour);
}

void swatch(QPainter& painter, const QRectF& box, const QColor& colour,
            const ClipPanelPalette& palette) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal radius = box.width() * 0.25;
    if (colour.alphaF() < 1) {
        // A checkerboard shows through a translucent colour.
        QPainterPath clip;
        clip.addRoundedRect(box, radius, radius);
        painter.setClipPath(clip);
        const qreal cell = box.width() / 4;
        for (int y = 0; y < 4; ++y) {
            for (int x = 0; x < 4; ++x) {
                painter.fillRect(QRectF(box.left() + x * cell, box.top() + y * cell, cell, cell),
                                 (x + y) % 2 ? QColor(0xcc, 0xcc, 0xcc) : Qt::white);
            }
        }
        painter.setClipping(false);
    }
    QColor edge = palette.isDark ? QColor(255, 255, 255, 60) : QColor(0, 0, 0, 40);
    painter.setPen(QPen(edge, 1));
    painter.setBrush(colour);
    painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    painter.restore();
}

void lock(QPainter& painter, const QRectF& box, const ClipPanelPalette& palette,
          ClipGlyphTone tone) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const bool selected = tone == ClipGlyphTone::onSelection;
    const QColor colour = selected ? palette.selectedText : palette.secondaryText;
    QColor fill = colour;
    fill.setAlphaF(selected ? 0.22 : 0.14);
    well(painter, box, fill);
    const QRectF r = inner(box);
    const qreal w = std::max<qreal>(1.4, box.width() / 18.0);
    const QRectF body(r.left() + r.width() * 0.1, r.top() + r.height() * 0.45, r.width() * 0.8,
                      r.height() * 0.55);
    painter.setPen(kindglyph::stroke(colour, w));
    painter.setBrush(Qt::NoBrush);
    const QRectF shackle(r.left() + r.width() * 0.25, r.top(), r.width() * 0.5, r.height() * 0.8);
    painter.drawArc(shackle, 0, 180 * 16);
    painter.drawLine(QPointF(shackle.left(), shackle.center().y()),
                     QPointF(shackle.left(), body.top()));
    painter.drawLine(QPointF(shackle.right(), shackle.center().y()),
                     QPointF(shackle.right(), body.top()));
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawRoundedRect(body, w, w);
    painter.restore();
}

void pin(QPainter& painter, const QRectF& box, const QColor& colour) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal s = std::min(box.width(), box.height());
    painter.translate(box.center());
    painter.rotate(35);
    painter.setPen(Qt::NoPen);
    painter.setBrush(colour);
    painter.drawEllipse(QPointF(0, -s * 0.18), s * 0.24, s * 0.24);
    painter.setPen(kindglyph::stroke(colour, std::max<qreal>(1.2, s / 10)));
    painter.drawLine(QPointF(0, 0), QPointF(0, s * 0.42));
    painter.restore();
}

void stack(QPainter& painter, const QRectF& box, const QColor& colour) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal s = std::min(box.width(), box.height());
    const QRectF back(box.center().x() - s * 0.3, box.center().y() - s * 0.38, s * 0.55, s * 0.55);
    const QRectF front = back.translated(s * 0.14, s * 0.2);
    painter.setPen(kindglyph::stroke(colour, std::max<qreal>(1.2, s / 11)));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(back, s * 0.08, s * 0.08);
    painter.setBrush(colour);
    painter.drawRoundedRect(front, s * 0.08, s * 0.08);
    painter.restore();
}

void magnifier(QPainter& painter, const QRectF& box, const QColor& colour) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal s = std::min(box.width(), box.height());
    const QPointF c(box.center().x() - s * 0.08, box.center().y() - s * 0.08);
    painter.setPen(kindglyph::stroke(colour, std::max<qreal>(1.5, s / 9)));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(c, s * 0.3, s * 0.3);
    painter.drawLine(c + QPointF(s * 0.22, s * 0.22), c + QPointF(s * 0.45, s * 0.45));
    painter.restore();
}

}  // namespace harbex::panelglyph
