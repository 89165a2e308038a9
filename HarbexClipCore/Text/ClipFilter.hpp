#pragma once

#include <array>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "HarbexClipCore/Model/ClipKind.hpp"
#include "HarbexClipCore/Support/EnumNames.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"

namespace harbex {

struct Pinboard;

// The filters offered above the list, persisted by case name.
enum class ClipFilter { all, pinned, text, links, images, files, colours, code };

template <>
struct EnumNames<ClipFilter> {
    static constexpr std::array values{
        std::pair{ClipFilter::all, std::string_view("all")},
        std::pair{ClipFilter::pinned, std::string_view("pinned")},
        std::pair{ClipFilter::text, std::string_view("text")},
        std::pair{ClipFilter::links, std::string_view("links")},
        std::pair{ClipFilter::images, std::string_view("images")},
        std::pair{ClipFilter::files, std::string_view("files")},
        std::pair{ClipFilter::colours, std::string_view("colours")},
        std::pair{ClipFilter::code, std::string_view("code")},
    };
};

// Whether a copy counts as pinned for the `pinned` filter.
enum class ClipPinState { unpinned, pinned };

// Whether `filter` lets a copy of `kind` through. Text takes plain and rich text; `pinned` takes
// pinned copies of any kind (see `keptIDs`). Thread: any.
constexpr bool admits(ClipFilter filter, ClipKind kind, ClipPinState pin) {
    switch (filter) {
        case ClipFilter::all: return true;
        case ClipFilter::pinned: return pin == ClipPinState::pinned;
        case ClipFilter::text: return kind == ClipKind::text || kind == ClipKind::richText;
        case ClipFilter::links: return kind == ClipKind::link;
        case ClipFilter::images: return kind == ClipKind::image;
        case ClipFilter::files: return kind == ClipKind::file;
        case ClipFilter::colours: return kind == ClipKind::color;
        case ClipFilter::code: return kind == ClipKind::code;
    }
    return false;
}

// The copies the `pinned` filter shows: the pinned ones and every copy on a pinboard.
// Thread: any.
std::unordered_set<Uuid> pinnedOrOnPinboard(const std::vector<Uuid>& pinnedIDs,
                                            const std::vector<Pinboard>& pinboards);

}  // namespace harbex
