#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Model/ClipLibrary.hpp"
#include "HarbexClipCore/Support/Uuid.hpp"
#include "HarbexClipCore/Text/ClipFilter.hpp"

namespace harbex {

// What the library's sidebar selects. A value; build it with the factories.
struct ClipLibrarySection {
    enum class Kind { kind, pinboard, app, all, today, pinned };

    Kind kind = Kind::all;
    ClipFilter filter = ClipFilter::all;  // for `kind`
    std::optional<Uuid> pinboardID;       // for `pinboard`
    std::optional<std::string> appID;     // for `app`: a bundle identifier

    static ClipLibrarySection ofKind(ClipFilter filter) { return {Kind::kind, filter, {}, {}}; }
    static ClipLibrarySection pinboard(const Uuid& id) { return {Kind::pinboard, {}, id, {}}; }
    static ClipLibrarySection app(std::string id) { return {Kind::app, {}, {}, std::move(id)}; }
    static ClipLibrarySection all() { return {Kind::all, {}, {}, {}}; }
    static ClipLibrarySection today() { return {Kind::today, {}, {}, {}}; }
    static ClipLibrarySection pinned() { return {Kind::pinned, {}, {}, {}}; }

    friend bool operator==(const ClipLibrarySection&, const ClipLibrarySection&) = default;
};

// The section as one line of text, so that the window reopens where it was left: "all",
// "today", "pinned", "kind:links", "pinboard:<UUID>", "app:<bundle identifier>". Thread: any.
std::string persistedName(const ClipLibrarySection& section);
// The section a persisted name stands for; nothing for a name this version does not know.
std::optional<ClipLibrarySection> sectionFromPersistedName(std::string_view name);

// What a section needs to decide membership, gathered once per listing.
struct ClipSectionContext {
    Date startOfToday;
    const std::unordered_set<Uuid>* pinnedIDs = nullptr;
    const Pinboard* board = nullptr;  // the selected pinboard, for `pinboard`
};

// Whether `item` belongs to `section`. `pinned` takes the pins only; a pinboard's own order is
// applied by the caller. Thread: any.
bool sectionHolds(const ClipLibrarySection& section, const ClipItem& item,
                  const ClipSectionContext& context);

}  // namespace harbex
