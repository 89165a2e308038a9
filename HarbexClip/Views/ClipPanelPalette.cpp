#include "HarbexClip/Views/ClipPanelPalette.hpp"

namespace harbex {

namespace {

// The accent when the platform's is missing or too dull to mark a selection.
const QColor kDefaultAccent(0x5e, 0x5c, 0xe6);

QColor usableAccent(const QColor& platform, bool dark) {
    if (!platform.isValid() || platform.hslSaturationF() < 0.25) return kDefaultAccent;
    if (dark && platform.lightnessF() < 0.45) return platform.lighter(140);
    return platform;
}

}  // namespace

ClipPanelPalette ClipPanelPalette::make(ClipAppearance appearance, const QPalette& system) {
    bool dark = appearance == ClipAppearance::dark;
    if (appearance == ClipAppearance::system) {
        dark = system.color(QPalette::Active, QPalette::Window).lightnessF() < 0.5;
    }
    ClipPanelPalette p;
    p.isDark = dark;
    p.accent = usableAccent(system.color(QPalette::Active, QPalette::Highlight), dark);
    if (dark) {
        p.background = QColor(0x1f, 0x20, 0x24);
        p.field = QColor(0x2a, 0x2b, 0x30);
        p.text = QColor(0xf0, 0xf0, 0xf3);
        p.secondaryText = QColor(0x9a, 0x9b, 0xa3);
        p.separator = QColor(0xff, 0xff, 0xff, 0x1c);
        p.chip = QColor(0xff, 0xff, 0xff, 0x14);
        p.banner = QColor(0x4a, 0x3b, 0x12);
        p.notice = QColor(0x34, 0x35, 0x3b);
        p.destructive = QColor(0xff, 0x6b, 0x61);
        p.codeText = QColor(0xd6, 0xe2, 0xff);
    } else {
        p.background = QColor(0xfb, 0xfb, 0xfc);
        p.field = QColor(0xf0, 0xf0, 0xf3);
        p.text = QColor(0x1d, 0x1d, 0x1f);
        p.secondaryText = QColor(0x6e, 0x6e, 0x76);
        p.separator = QColor(0x00, 0x00, 0x00, 0x17);
        p.chip = QColor(0x00, 0x00, 0x00, 0x0c);
        p.banner = QColor(0xff, 0xf1, 0xc9);
        p.notice = QColor(0x2c, 0x2c, 0x30);
        p.destructive = QColor(0xd7, 0x34, 0x2a);
        p.codeText = QColor(0x1f, 0x3a, 0x73);
    }
    p.selection = p.accent;
    p.selectedText = Qt::white;
    return p;
}

QPalette ClipPanelPalette::qtPalette() const {
    QPalette palette;
    for (const QPalette::ColorGroup group :
         {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
        palette.setColor(group, QPalette::Window, background);
        palette.setColor(group, QPalette::WindowText, text);
        palette.setColor(group, QPalette::Base, background);
        palette.setColor(group, QPalette::AlternateBase, field);
        palette.setColor(group, QPalette::Text, text);
        palette.setColor(group, QPalette::PlaceholderText, secondaryText);
        palette.setColor(group, QPalette::Button, field);
        palette.setColor(group, QPalette::ButtonText, text);
        palette.setColor(group, QPalette::Highlight, accent);
        palette.setColor(group, QPalette::HighlightedText, selectedText);
        palette.setColor(group, QPalette::Mid, separator);
        palette.setColor(group, QPalette::Link, accent);
    }
    return palette;
}

}  // namespace harbex
