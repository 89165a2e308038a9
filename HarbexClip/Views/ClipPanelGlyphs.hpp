#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>

#include "HarbexClip/Views/ClipPanelPalette.hpp"
#include "HarbexClipCore/Panel/ClipPanelRowLook.hpp"

namespace harbex {

// Whether a glyph sits on the selection's fill (drawn in the selected text colour).
enum class ClipGlyphTone { normal, onSelection };

// Vector marks for the panel, drawn with the painter so they stay sharp at any density.
// Thread: main (painting).
namespace panelglyph {

// The tint a kind's glyph is drawn in.
QColor tint(ClipKind glyph, const ClipPanelPalette& palette);
// The kind's mark inside a rounded well filling `well`.
void kind(QPainter& painter, const QRectF& well, ClipKind glyph, const ClipPanelPalette& palette,
          ClipGlyphTone tone);
// A colour swatch: a rounded square of `colour` with a hairline edge (white shows on white).
void swatch(QPainter& painter, const QRectF& well, const QColor& colour,
            const ClipPanelPalette& palette);
// A padlock in a well, for concealed copies.
void lock(QPainter& painter, const QRectF& well, const ClipPanelPalette& palette,
          ClipGlyphTone tone);
// A small pin, centred in `box`.
void pin(QPainter& painter, const QRectF& box, const QColor& colour);
// Two stacked sheets, centred in `box`: the copy waits in the paste stack.
void stack(QPainter& painter, const QRectF& box, const QColor& colour);
// A magnifying glass, centred in `box`.
void magnifier(QPainter& painter, const QRectF& box, const QColor& colour);

}  // namespace panelglyph

}  // namespace harbex
