#pragma once

#include <QColor>
#include <QPainter>
#include <QPen>
#include <QRectF>

#include "HarbexClipCore/Model/ClipKind.hpp"

namespace harbex {

// The one picture and colour of each kind of copy, shared by the panel and the library so that a
// kind looks the same wherever it is shown. Drawn with the painter so it stays sharp at any size
// and density. Thread: main (painting).
namespace kindglyph {

// The colour a kind is drawn in, on a light or a dark background.
QColor tint(ClipKind kind, bool dark);
// The kind's mark filling the square `box`.
void paint(QPainter& painter, const QRectF& box, ClipKind kind, const QColor& colour);
// A pen with round ends and joins, as every mark is stroked.
QPen stroke(const QColor& colour, qreal width);

}  // namespace kindglyph
}  // namespace harbex
