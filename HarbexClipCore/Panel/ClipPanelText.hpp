#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "HarbexClipCore/Settings/ClipKeyCodes.hpp"
#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Support/Date.hpp"
#include "HarbexClipCore/Text/ClipFilter.hpp"

namespace harbex {

// A heading with the sentence under it (the empty states).
struct ClipPanelMessage {
    std::string title;  // may be empty: the filters' empty states have no heading
    std::string body;

    friend bool operator==(const ClipPanelMessage&, const ClipPanelMessage&) = default;
};

// The panel's fixed texts. Key names and the few platform words come from the key vocabulary
// (see ClipPlatformWords.hpp): "Press ⌘P on a copy…" reads "Press Ctrl+P on a copy…" and "this
// Mac" reads "this computer" in the Linux vocabulary. Thread: any.
struct ClipPanelText {
    static constexpr std::string_view kSearchPlaceholder = "Search your clipboard";
    static constexpr std::string_view kDoesNotApply = "That doesn’t work on this copy";
    static constexpr std::string_view kSavedAsNewCopy = "Saved as a new copy";

    // The filter's name on its tab: "All", "Pinned", "Text", "Links", "Images", "Files",
    // "Colours", "Code".
    static std::string_view filterTitle(ClipFilter filter);

    // "Your clipboard history starts here" and the sentence under it.
    static ClipPanelMessage emptyHistory(ClipKeyVocabulary vocabulary);
    // What an empty filter shows; `all` shows the empty history.
    static ClipPanelMessage emptyFilter(ClipFilter filter, ClipKeyVocabulary vocabulary);

    // "Nothing matches “notes”" under All, "No images match “notes”" and so on under a kind.
    // Links, files and pins read "No links match …", "No files match …", "No pinned copies
    // match …".
    static std::string noResults(ClipFilter filter, std::string_view query);
    // The hint under it; `matchesInAll` (the matches the filter hides) adds "<n> matches in
    // All." ("1 match in All.") when above zero under a filter other than All.
    static std::string noResultsHint(ClipFilter filter, std::size_t matchesInAll);

    // The banner while capture is paused at `now`, or nothing when it is not. A pause at or
    // beyond `Date::distantFuture()` has no end ("…until you resume…"); a timed one names its
    // end as the user's locale writes a time ("14:30", "2:30 PM"), with "tomorrow at" before it
    // when it ends on the next calendar day and the weekday and date when later still. `locale`
    // is an ICU locale id; empty means the default locale.
    static std::optional<std::string> pauseBanner(std::optional<Date> pausedUntil, Date now,
                                                  const Calendar& calendar,
                                                  const std::string& locale = {});
    // The end of a pause as the banner writes it ("14:30", "tomorrow at 2:30 PM",
    // "Friday, 14 March at 09:00").
    static std::string pauseEnd(Date end, Date now, const Calendar& calendar,
                                const std::string& locale = {});
};

}  // namespace harbex
