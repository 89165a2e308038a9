#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Model/ClipLibrary.hpp"
#include "HarbexClipCore/Panel/ClipPanelAction.hpp"
#include "HarbexClipCore/Settings/ClipKeyCodes.hpp"
#include "HarbexClipCore/Text/ClipFilter.hpp"

namespace harbex {

// Whether a copy already waits in the paste stack.
enum class ClipStackState { unstacked, stacked };

// Builds the list of things that can be done to one copy, in section order: paste, "Organise",
// "Open", "Colour" (colour copies), then the text transforms under "Change case", "Clean up" and
// "Encode and format" (text, rich text and code). Stateless; thread: any.
//
// Which copy gets what:
// - "Paste as Plain Text" only for copies that carry formatting (rich text or HTML): for the
//   others it would paste exactly what "Paste in …" pastes.
// - "Add to Paste Stack" for every copy but images, whose stacked text would be empty; a copy
//   already stacked offers "Remove from Paste Stack" in its place.
// - Pinboards that already hold the copy are left out: adding it again would change nothing.
// - "Quick Look" for every copy; "Open Link" for links, "Show in Finder"/"Show in Files" for
//   files, "Save Image" for images.
// - Transforms are listed for text whether or not they apply (the panel says "That doesn’t work
//   on this copy" when one does not); the colour text forms of the transforms are left to the
//   "Colour" section. A transform that applies carries a one-line preview of its result.
// Categories: paste entries and "Copy" are `paste`; transforms and colour conversions
// `transform`; pin, pinboards and delete `organise`; the "Open" section `share`.
class ClipPanelActions {
public:
    // How a transform entry is drawn.
    struct Style {
        std::string_view title;
        std::string_view section;
        std::string_view symbol;
        std::optional<std::string_view> glyph;
        bool showsExample = true;  // multi-line results (sorting, JSON) preview badly
    };

    // What besides the copy decides the list.
    struct Context {
        std::optional<std::string> targetName;  // the application that receives the paste
        ClipPinState pin = ClipPinState::unpinned;
        ClipStackState stack = ClipStackState::unstacked;
        std::span<const Pinboard> pinboards{};
        ClipKeyVocabulary vocabulary = ClipKeyVocabulary::linuxNames;
    };

    // Previews are made for texts up to this many bytes; larger ones show none.
    static constexpr std::size_t kPreviewedBytes = 64 * 1024;
    // A preview shows at most this many characters of the result's first line.
    static constexpr std::size_t kPreviewCharacters = 60;

    static Style style(ClipTransform transform);

    // The whole list for `item`, in section order.
    static std::vector<ClipPanelAction> actions(const ClipItem& item, const Context& context);

    // The entries of `category` (every entry for `all`) whose title holds every word of `query`
    // at the start of one of its words, folded as search folds ("plain" finds "Paste as Plain
    // Text", "ase" does not). An empty query keeps them all.
    static std::vector<ClipPanelAction> filtered(const std::vector<ClipPanelAction>& actions,
                                                 ClipActionCategory category,
                                                 std::string_view query);

    // The one-line preview of a result: its first non-blank line, cut to kPreviewCharacters with
    // "…" when longer, "…" added when more lines follow.
    static std::string preview(std::string_view result);
};

}  // namespace harbex
