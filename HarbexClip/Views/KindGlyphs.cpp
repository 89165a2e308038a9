#include "HarbexClip/Views/KindGlyphs.hpp"

#include <QFont>
#include <QPainterPath>

#include <algorithm>

namespace harbex::kindglyph {

namespace {

void text(QPainter& painter, const QRectF& box, const QString& label, const QColor& colour,
          bool italic, bool mono) {
    QFont font = painter.font();
    if (mono) font.setFamily("monospace");
    font.setPixelSize(static_cast<int>(box.height() * 0.78));
    font.setBold(true);
    font.setItalic(italic);
    painter.setFont(font);
    painter.setPen(colour);
    painter.drawText(box.adjusted(-box.width(), 0, box.width(), 0), Qt::AlignCenter, label);
}

}  // namespace

QPen stroke(const QColor& colour, qreal width) {
    QPen pen(colour, width);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    return pen;
}

QColor tint(ClipKind glyph, bool dark) {
    switch (glyph) {
        case ClipKind::text: return dark ? QColor(0xb8, 0xbc, 0xc8) : QColor(0x5b, 0x63, 0x74);
        case ClipKind::richText: return dark ? QColor(0xc9, 0x9b, 0xff) : QColor(0x8e, 0x44, 0xd6);
        case ClipKind::link: return dark ? QColor(0x6c, 0xb4, 0xff) : QColor(0x1f, 0x6f, 0xd6);
        case ClipKind::image: return dark ? QColor(0x6f, 0xdc, 0x8c) : QColor(0x1e, 0x9a, 0x4a);
        case ClipKind::file: return dark ? QColor(0xff, 0xb8, 0x5c) : QColor(0xd2, 0x7a, 0x12);
        case ClipKind::color: return dark ? QColor(0xff, 0x8a, 0xc8) : QColor(0xc8, 0x2f, 0x7e);
        case ClipKind::code: return dark ? QColor(0x5e, 0xe0, 0xd2) : QColor(0x0f, 0x8c, 0x80);
    }
    return dark ? QColor(0xb8, 0xbc, 0xc8) : QColor(0x5b, 0x63, 0x74);
}

void paint(QPainter& painter, const QRectF& r, ClipKind glyph, const QColor& colour) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    const qreal w = std::max<qreal>(1.4, r.width() / 10.0);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(stroke(colour, w));
    switch (glyph) {
        case ClipKind::text: {
            const qreal step = r.height() / 3;
            for (int i = 0; i < 3; ++i) {
                const qreal y = r.top() + step * (i + 0.5);
                const qreal right = i == 2 ? r.left() + r.width() * 0.6 : r.right();
                painter.drawLine(QPointF(r.left(), y), QPointF(right, y));
            }
            break;
        }
        case ClipKind::richText: text(painter, r, "Aa", colour, true, false); break;
        case ClipKind::link: {
            // Two links of a chain, at 45 degrees.
            painter.translate(r.center());
            painter.rotate(-45);
            const qreal lw = r.width() * 0.62, lh = r.height() * 0.38;
            painter.drawRoundedRect(QRectF(-lw + lh * 0.45, -lh / 2, lw, lh), lh / 2, lh / 2);
            painter.drawRoundedRect(QRectF(-lh * 0.45, -lh / 2, lw, lh), lh / 2, lh / 2);
            break;
        }
        case ClipKind::image: {
            painter.drawRoundedRect(r, w * 1.5, w * 1.5);
            QPainterPath hills;
            hills.moveTo(r.left(), r.bottom() - r.height() * 0.15);
            hills.lineTo(r.left() + r.width() * 0.38, r.top() + r.height() * 0.48);
            hills.lineTo(r.left() + r.width() * 0.62, r.top() + r.height() * 0.72);
            hills.lineTo(r.left() + r.width() * 0.76, r.top() + r.height() * 0.6);
            hills.lineTo(r.right(), r.bottom() - r.height() * 0.2);
            painter.drawPath(hills);
            painter.setBrush(colour);
            painter.setPen(Qt::NoPen);
            painter.drawEllipse(QPointF(r.left() + r.width() * 0.7, r.top() + r.height() * 0.3),
                                w * 1.3, w * 1.3);
            break;
        }
        case ClipKind::file: {
            const qreal fold = r.width() * 0.32;
            const QRectF page = r.adjusted(r.width() * 0.12, 0, -r.width() * 0.12, 0);
            QPainterPath path;
            path.moveTo(page.left(), page.top());
            path.lineTo(page.right() - fold, page.top());
            path.lineTo(page.right(), page.top() + fold);
            path.lineTo(page.right(), page.bottom());
            path.lineTo(page.left(), page.bottom());
            path.closeSubpath();
            path.moveTo(page.right() - fold, page.top());
            path.lineTo(page.right() - fold, page.top() + fold);
            path.lineTo(page.right(), page.top() + fold);
            painter.drawPath(path);
            break;
        }
        case ClipKind::color: {
            painter.setPen(Qt::NoPen);
            const qreal d = r.width() * 0.5;
            const QColor dots[] = {QColor(0xff, 0x5f, 0x57), QColor(0x28, 0xc8, 0x40),
                                   QColor(0x3d, 0x8b, 0xff)};
            const QPointF centres[] = {{r.left() + d * 0.5, r.top() + d * 0.55},
                                       {r.right() - d * 0.5, r.top() + d * 0.55},
                                       {r.center().x(), r.bottom() - d * 0.5}};
            for (int i = 0; i < 3; ++i) {
                painter.setBrush(dots[i]);
                painter.drawEllipse(centres[i], d * 0.5, d * 0.5);
            }
            break;
        }
        case ClipKind::code: {
            const qreal mid = r.center().y();
            painter.drawPolyline(
                QPolygonF{{r.left() + r.width() * 0.3, r.top() + r.height() * 0.2},
                          {r.left(), mid},
                          {r.left() + r.width() * 0.3, r.bottom() - r.height() * 0.2}});
            painter.drawPolyline(
                QPolygonF{{r.right() - r.width() * 0.3, r.top() + r.height() * 0.2},
                          {r.right(), mid},
                          {r.right() - r.width() * 0.3, r.bottom() - r.height() * 0.2}});
            painter.drawLine(QPointF(r.center().x() + r.width() * 0.1, r.top()),
                             QPointF(r.center().x() - r.width() * 0.1, r.bottom()));
            break;
        }
    }
    painter.restore();
}

}  // namespace harbex::kindglyph
