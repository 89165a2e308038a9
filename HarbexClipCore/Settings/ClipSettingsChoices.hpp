#pragma once

// The small closed choices of the settings record. Each is persisted as its case name; the cases
// are declared in the order the settings pages list them.

#include <array>
#include <string_view>
#include <utility>

#include "HarbexClipCore/Support/EnumNames.hpp"

namespace harbex {

// The modifier whose double tap opens the panel.
enum class ClipPanelTrigger { doubleCommand, doubleOption, doubleControl, doubleShift, off };

enum class ClipPanelSize { compact, regular, large };

// Where the panel opens.
enum class ClipPanelPosition { centre, nearPointer, whereItWas };

// How the paste stack is pasted.
enum class ClipStackMode { onePerPaste, newLines, commas, spaces };

enum class ClipAppearance { system, light, dark };

// The library window's order and layout.
enum class ClipLibrarySort { newest, mostPasted, name };
enum class ClipLibraryLayout { list, grid };

// Whether captured images are kept as copied or as compressed copies.
enum class ClipImageKeeping { original, compressed };

// The pages of the settings window.
enum class ClipSettingsPage {
    general,
    panel,
    capture,
    privacy,
    history,
    pinboards,
    shortcuts,
    about
};

// What a shortcut being edited is for; also the order in which clashes are looked for.
enum class ClipShortcutSlot { panel, mainWindow, pause };

template <>
struct EnumNames<ClipPanelTrigger> {
    static constexpr std::array values{
        std::pair{ClipPanelTrigger::doubleCommand, std::string_view("doubleCommand")},
        std::pair{ClipPanelTrigger::doubleOption, std::string_view("doubleOption")},
        std::pair{ClipPanelTrigger::doubleControl, std::string_view("doubleControl")},
        std::pair{ClipPanelTrigger::doubleShift, std::string_view("doubleShift")},
        std::pair{ClipPanelTrigger::off, std::string_view("off")},
    };
};

template <>
struct EnumNames<ClipPanelSize> {
    static constexpr std::array values{
        std::pair{ClipPanelSize::compact, std::string_view("compact")},
        std::pair{ClipPanelSize::regular, std::string_view("regular")},
        std::pair{ClipPanelSize::large, std::string_view("large")},
    };
};

template <>
struct EnumNames<ClipPanelPosition> {
    static constexpr std::array values{
        std::pair{ClipPanelPosition::centre, std::string_view("centre")},
        std::pair{ClipPanelPosition::nearPointer, std::string_view("nearPointer")},
        std::pair{ClipPanelPosition::whereItWas, std::string_view("whereItWas")},
    };
};

template <>
struct EnumNames<ClipStackMode> {
    static constexpr std::array values{
        std::pair{ClipStackMode::onePerPaste, std::string_view("onePerPaste")},
        std::pair{ClipStackMode::newLines, std::string_view("newLines")},
        std::pair{ClipStackMode::commas, std::string_view("commas")},
        std::pair{ClipStackMode::spaces, std::string_view("spaces")},
    };
};

template <>
struct EnumNames<ClipAppearance> {
    static constexpr std::array values{
        std::pair{ClipAppearance::system, std::string_view("system")},
        std::pair{ClipAppearance::light, std::string_view("light")},
        std::pair{ClipAppearance::dark, std::string_view("dark")},
    };
};

template <>
struct EnumNames<ClipLibrarySort> {
    static constexpr std::array values{
        std::pair{ClipLibrarySort::newest, std::string_view("newest")},
        std::pair{ClipLibrarySort::mostPasted, std::string_view("mostPasted")},
        std::pair{ClipLibrarySort::name, std::string_view("name")},
    };
};

template <>
struct EnumNames<ClipLibraryLayout> {
    static constexpr std::array values{
        std::pair{ClipLibraryLayout::list, std::string_view("list")},
        std::pair{ClipLibraryLayout::grid, std::string_view("grid")},
    };
};

template <>
struct EnumNames<ClipImageKeeping> {
    static constexpr std::array values{
        std::pair{ClipImageKeeping::original, std::string_view("original")},
        std::pair{ClipImageKeeping::compressed, std::string_view("compressed")},
    };
};

template <>
struct EnumNames<ClipSettingsPage> {
    static constexpr std::array values{
        std::pair{ClipSettingsPage::general, std::string_view("general")},
        std::pair{ClipSettingsPage::panel, std::string_view("panel")},
        std::pair{ClipSettingsPage::capture, std::string_view("capture")},
        std::pair{ClipSettingsPage::privacy, std::string_view("privacy")},
        std::pair{ClipSettingsPage::history, std::string_view("history")},
        std::pair{ClipSettingsPage::pinboards, std::string_view("pinboards")},
        std::pair{ClipSettingsPage::shortcuts, std::string_view("shortcuts")},
        std::pair{ClipSettingsPage::about, std::string_view("about")},
    };
};

// Never persisted; the names serve logs and tests.
template <>
struct EnumNames<ClipShortcutSlot> {
    static constexpr std::array values{
        std::pair{ClipShortcutSlot::panel, std::string_view("panel")},
        std::pair{ClipShortcutSlot::mainWindow, std::string_view("mainWindow")},
        std::pair{ClipShortcutSlot::pause, std::string_view("pause")},
    };
};

// Labels shown in the settings window.

constexpr std::string_view label(ClipPanelSize size) {
    switch (size) {
        case ClipPanelSize::compact: return "Compact";
        case ClipPanelSize::regular: return "Regular";
        case ClipPanelSize::large: return "Large";
    }
    return {};
}

// The line under a size's label: what that size shows.
constexpr std::string_view detail(ClipPanelSize size) {
    switch (size) {
        case ClipPanelSize::compact: return "List only";
        case ClipPanelSize::regular: return "List and preview";
        case ClipPanelSize::large: return "Bigger preview";
    }
    return {};
}

constexpr std::string_view label(ClipPanelPosition position) {
    switch (position) {
        case ClipPanelPosition::centre: return "Centre of the screen with the pointer";
        case ClipPanelPosition::nearPointer: return "Near the pointer";
        case ClipPanelPosition::whereItWas: return "Where it was last";
    }
    return {};
}

constexpr std::string_view label(ClipImageKeeping keeping) {
    switch (keeping) {
        case ClipImageKeeping::original: return "Originals";
        case ClipImageKeeping::compressed: return "Compressed copies";
    }
    return {};
}

// What the shortcut in a slot does, as it ends a sentence: "⌃⌘V already opens the panel."
constexpr std::string_view purpose(ClipShortcutSlot slot) {
    switch (slot) {
        case ClipShortcutSlot::panel: return "opens the panel";
        case ClipShortcutSlot::mainWindow: return "opens the main window";
        case ClipShortcutSlot::pause: return "pauses saving copies";
    }
    return {};
}

}  // namespace harbex
