#pragma once

#include <QColor>
#include <QIcon>
#include <QPainter>
#include <QRectF>

#include <string_view>

#include "HarbexClipCore/Model/ClipKind.hpp"

namespace harbex {

// The library's pictures, drawn as vector paths so they stay sharp at any size and screen
// density: the pinboard symbols, the sidebar's own marks, and icons of the kinds' marks
// (KindGlyphs.hpp). No
// icon theme is needed. Main thread (QPainter on widgets).
namespace LibraryGlyphs {

enum class Mark { all, today, pinned, app, newBoard, list, grid };

// A pinboard colour by its stored name (the first colour for a name this version lacks).
QColor boardColor(std::string_view name);
// The text colour that reads on `background`.
QColor onColor(const QColor& background);

// Draws the pinboard symbol `name` in `box` with `color`.
void paintSymbol(QPainter& painter, const QRectF& box, std::string_view name, const QColor& color);
void paintMark(QPainter& painter, const QRectF& box, Mark mark, const QColor& color);

// Icons that draw themselves at whatever size and density they are asked for.
QIcon kindIcon(ClipKind kind);
QIcon markIcon(Mark mark, const QColor& color);
// A filled circle of the board's colour with its symbol in it.
QIcon boardIcon(std::string_view color, std::string_view symbol);
// A plain swatch of `color`, for the colour menu.
QIcon swatchIcon(const QColor& color);

}  // namespace LibraryGlyphs
}  // namespace harbex
