#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "HarbexClipCore/Panel/ClipPanelKey.hpp"
#include "HarbexClipCore/Support/EnumNames.hpp"

namespace harbex {

// A text-editing command for the panel's search field.
enum class ClipEditCommand { cut, copy, paste, selectAll, undo, redo };

// Where a key press that reached the panel goes. A value.
struct ClipPanelKeyRoute {
    enum class Kind {
        panel,           // a panel command: `key`
        edit,            // an editing command for the search field: `command`
        field,           // let the search field take the key as typing
        closeQuickLook,  // close the preview that is showing
        close,           // close the panel
        settings,        // open the settings window
        swallow,         // consume the key and do nothing
    };

    Kind kind = Kind::swallow;
    std::optional<ClipPanelKey> key;
    std::optional<ClipEditCommand> command;

    static ClipPanelKeyRoute panel(ClipPanelKey key) { return {Kind::panel, key, std::nullopt}; }
    static ClipPanelKeyRoute edit(ClipEditCommand command) {
        return {Kind::edit, std::nullopt, command};
    }
    static ClipPanelKeyRoute field() { return {Kind::field, std::nullopt, std::nullopt}; }
    static ClipPanelKeyRoute closeQuickLook() {
        return {Kind::closeQuickLook, std::nullopt, std::nullopt};
    }
    static ClipPanelKeyRoute close() { return {Kind::close, std::nullopt, std::nullopt}; }
    static ClipPanelKeyRoute settings() { return {Kind::settings, std::nullopt, std::nullopt}; }
    static ClipPanelKeyRoute swallow() { return {Kind::swallow, std::nullopt, std::nullopt}; }

    friend bool operator==(const ClipPanelKeyRoute&, const ClipPanelKeyRoute&) = default;
};

template <>
struct EnumNames<ClipEditCommand> {
    static constexpr std::array values{
        std::pair{ClipEditCommand::cut, std::string_view("cut")},
        std::pair{ClipEditCommand::copy, std::string_view("copy")},
        std::pair{ClipEditCommand::paste, std::string_view("paste")},
        std::pair{ClipEditCommand::selectAll, std::string_view("selectAll")},
        std::pair{ClipEditCommand::undo, std::string_view("undo")},
        std::pair{ClipEditCommand::redo, std::string_view("redo")},
    };
};

template <>
struct EnumNames<ClipPanelKeyRoute::Kind> {
    using K = ClipPanelKeyRoute::Kind;
    static constexpr std::array values{
        std::pair{K::panel, std::string_view("panel")},
        std::pair{K::edit, std::string_view("edit")},
        std::pair{K::field, std::string_view("field")},
        std::pair{K::closeQuickLook, std::string_view("closeQuickLook")},
        std::pair{K::close, std::string_view("close")},
        std::pair{K::settings, std::string_view("settings")},
        std::pair{K::swallow, std::string_view("swallow")},
    };
};

}  // namespace harbex
