#pragma once

#include <QColor>
#include <QPalette>

#include "HarbexClipCore/Settings/ClipSettingsChoices.hpp"

namespace harbex {

// The colours the quick panel draws with, light or dark. A value.
struct ClipPanelPalette {
    bool isDark = false;
    QColor background;     // the panel's body
    QColor field;          // the search field's well
    QColor text;           // titles
    QColor secondaryText;  // subtitles, details, headers
    QColor separator;      // hairlines between areas
    QColor accent;         // the selection, the chosen filter
    QColor selection;      // the selected row's fill
    QColor selectedText;   // text on the selection
    QColor chip;           // an unchosen filter's fill on hover, glyph wells
    QColor banner;         // the pause banner's fill
    QColor notice;         // the notice's fill
    QColor destructive;    // "Delete"
    QColor codeText;       // fixed-width text in the preview

    // The palette for the appearance setting; `system` follows the lightness of `system`'s
    // window colour. The accent is the platform's when it reads well on the background.
    static ClipPanelPalette make(ClipAppearance appearance, const QPalette& system);
    // The Qt palette for the panel's standard widgets (field, scroll bars, text views).
    QPalette qtPalette() const;
};

}  // namespace harbex
