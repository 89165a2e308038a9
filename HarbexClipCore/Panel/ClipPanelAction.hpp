#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "HarbexClipCore/Support/EnumNames.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"
#include "HarbexClipCore/Text/ClipColorFormat.hpp"
#include "HarbexClipCore/Text/ClipTransform.hpp"

namespace harbex {

// The filter tabs over the action list. Persisted and compared by case name.
enum class ClipActionCategory { all, paste, transform, organise, share };

template <>
struct EnumNames<ClipActionCategory> {
    static constexpr std::array values{
        std::pair{ClipActionCategory::all, std::string_view("all")},
        std::pair{ClipActionCategory::paste, std::string_view("paste")},
        std::pair{ClipActionCategory::transform, std::string_view("transform")},
        std::pair{ClipActionCategory::organise, std::string_view("organise")},
        std::pair{ClipActionCategory::share, std::string_view("share")},
    };
};

// What an action does. `transform`, `colour` and `addToPinboard` carry their argument; the other
// cases carry nothing. A value; build it with the factories.
struct ClipPanelActionKind {
    enum class Case {
        transform,
        colour,
        addToPinboard,
        paste,
        pastePlain,
        copy,
        addToStack,
        pin,
        delete_,  // "delete"
        openLink,
        showInFinder,
        quickLook,
        saveImage,
    };

    Case kind = Case::paste;
    std::optional<ClipTransform> transform{};
    std::optional<ClipColorFormat> colour{};
    std::optional<Uuid> pinboard{};

    constexpr ClipPanelActionKind(Case kind = Case::paste) : kind(kind) {}  // NOLINT
    static ClipPanelActionKind transformWith(ClipTransform transform);
    static ClipPanelActionKind colourAs(ClipColorFormat format);
    static ClipPanelActionKind addTo(const Uuid& pinboard);

    // A stable identifier that survives rebuilding the list: "paste", "transform.titleCase",
    // "colour.hex", "addToPinboard.<UUID>".
    std::string id() const;

    friend bool operator==(const ClipPanelActionKind&, const ClipPanelActionKind&) = default;
};

// One entry of the action list. A value.
struct ClipPanelAction {
    using Kind = ClipPanelActionKind;

    Kind kind{};
    std::string title{};
    std::string section{};  // the heading it is listed under
    ClipActionCategory category = ClipActionCategory::paste;
    std::string symbol{};                // system symbol name drawn beside it
    std::optional<std::string> glyph{};  // short text drawn instead of the symbol ("#")
    std::optional<std::string> shortcut{};
    std::optional<std::string> example{};  // preview of a transform's result
    bool isDestructive = false;

    std::string id() const { return kind.id(); }

    friend bool operator==(const ClipPanelAction&, const ClipPanelAction&) = default;
};

template <>
struct EnumNames<ClipPanelActionKind::Case> {
    using C = ClipPanelActionKind::Case;
    static constexpr std::array values{
        std::pair{C::transform, std::string_view("transform")},
        std::pair{C::colour, std::string_view("colour")},
        std::pair{C::addToPinboard, std::string_view("addToPinboard")},
        std::pair{C::paste, std::string_view("paste")},
        std::pair{C::pastePlain, std::string_view("pastePlain")},
        std::pair{C::copy, std::string_view("copy")},
        std::pair{C::addToStack, std::string_view("addToStack")},
        std::pair{C::pin, std::string_view("pin")},
        std::pair{C::delete_, std::string_view("delete")},
        std::pair{C::openLink, std::string_view("openLink")},
        std::pair{C::showInFinder, std::string_view("showInFinder")},
        std::pair{C::quickLook, std::string_view("quickLook")},
        std::pair{C::saveImage, std::string_view("saveImage")},
    };
};

}  // namespace harbex
