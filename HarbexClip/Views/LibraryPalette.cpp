#include "HarbexClip/Views/LibraryPalette.hpp"

namespace harbex {
namespace {

struct Colours {
    QColor window, base, alternate, text, placeholder, button, highlightedText, mid, tooltip;
};

QPalette paletteOf(const Colours& c, const QColor& accent) {
    QPalette palette;
    for (const QPalette::ColorGroup group : {QPalette::Active, QPalette::Inactive}) {
        palette.setColor(group, QPalette::Window, c.window);
        palette.setColor(group, QPalette::WindowText, c.text);
        palette.setColor(group, QPalette::Base, c.base);
        palette.setColor(group, QPalette::AlternateBase, c.alternate);
        palette.setColor(group, QPalette::Text, c.text);
        palette.setColor(group, QPalette::PlaceholderText, c.placeholder);
        palette.setColor(group, QPalette::Button, c.button);
        palette.setColor(group, QPalette::ButtonText, c.text);
        palette.setColor(group, QPalette::Highlight, accent);
        palette.setColor(group, QPalette::HighlightedText, c.highlightedText);
        palette.setColor(group, QPalette::Mid, c.mid);
        palette.setColor(group, QPalette::Midlight, c.mid.lighter(120));
        palette.setColor(group, QPalette::Dark, c.mid.darker(150));
        palette.setColor(group, QPalette::Light, c.button.lighter(120));
        palette.setColor(group, QPalette::Shadow, QColor(0, 0, 0, 120));
        palette.setColor(group, QPalette::ToolTipBase, c.tooltip);
        palette.setColor(group, QPalette::ToolTipText, c.text);
        palette.setColor(group, QPalette::Link, accent);
        palette.setColor(group, QPalette::BrightText, Qt::white);
    }
    QColor disabled = c.placeholder;
    palette.setColor(QPalette::Disabled, QPalette::WindowText, disabled);
    palette.setColor(QPalette::Disabled, QPalette::Text, disabled);
    palette.setColor(QPalette::Disabled, QPalette::ButtonText, disabled);
    palette.setColor(QPalette::Disabled, QPalette::PlaceholderText, disabled);
    palette.setColor(QPalette::Disabled, QPalette::Window, c.window);
    palette.setColor(QPalette::Disabled, QPalette::Base, c.window);
    palette.setColor(QPalette::Disabled, QPalette::Button, c.button);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, c.mid);
    return palette;
}

}  // namespace

QPalette libraryPalette(ClipAppearance appearance, const QPalette& system) {
    QColor accent = system.color(QPalette::Active, QPalette::Highlight);
    switch (appearance) {
        case ClipAppearance::system: return system;
        case ClipAppearance::light:
            return paletteOf(
                {QColor(0xf3, 0xf3, 0xf5), QColor(0xff, 0xff, 0xff), QColor(0xf7, 0xf7, 0xf9),
                 QColor(0x1d, 0x1d, 0x1f), QColor(0x86, 0x86, 0x8b), QColor(0xfb, 0xfb, 0xfc),
                 Qt::white, QColor(0xc8, 0xc8, 0xcc), QColor(0xff, 0xff, 0xf0)},
                accent);
        case ClipAppearance::dark:
            // A dark accent stays readable on a dark page only when it is light enough.
            if (accent.lightnessF() < 0.45) accent = accent.lighter(140);
            return paletteOf(
                {QColor(0x24, 0x25, 0x29), QColor(0x1b, 0x1c, 0x1f), QColor(0x28, 0x29, 0x2e),
                 QColor(0xec, 0xec, 0xee), QColor(0x8e, 0x8e, 0x95), QColor(0x33, 0x34, 0x39),
                 Qt::white, QColor(0x48, 0x49, 0x50), QColor(0x30, 0x31, 0x36)},
                accent);
    }
    return system;
}

}  // namespace harbex
