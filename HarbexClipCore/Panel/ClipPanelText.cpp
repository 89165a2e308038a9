#include "HarbexClipCore/Panel/ClipPanelText.hpp"

#include <unicode/dtptngen.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>
#include <unicode/timezone.h>

#include <memory>

#include "HarbexClipCore/Paste/ClipStackSequence.hpp"
#include "HarbexClipCore/Settings/ClipPlatformWords.hpp"

namespace harbex {

namespace {

constexpr std::string_view kOpenQuote = "“";
constexpr std::string_view kCloseQuote = "”";

std::string quoted(std::string_view text) {
    return std::string(kOpenQuote) + std::string(text) + std::string(kCloseQuote);
}

// The subject of "No … match": a kind filter's plural noun.
std::string_view noResultsSubject(ClipFilter filter) {
    switch (filter) {
        case ClipFilter::all: return {};
        case ClipFilter::pinned: return "pinned copies";
        case ClipFilter::text: return "text";
        case ClipFilter::links: return "links";
        case ClipFilter::images: return "images";
        case ClipFilter::files: return "files";
        case ClipFilter::colours: return "colours";
        case ClipFilter::code: return "code";
    }
    return {};
}

// Uncountable subjects take "matches".
bool takesSingularVerb(ClipFilter filter) {
    return filter == ClipFilter::text || filter == ClipFilter::code;
}

// ICU (from 72) puts a narrow no-break space before AM/PM; the panel's texts use plain spaces.
std::string withPlainSpaces(std::string text) {
    static constexpr std::string_view kNarrowNoBreakSpace = "\u202F";
    for (std::size_t at = text.find(kNarrowNoBreakSpace); at != std::string::npos;
         at = text.find(kNarrowNoBreakSpace, at)) {
        text.replace(at, kNarrowNoBreakSpace.size(), " ");
    }
    return text;
}

// `date` written by the locale's best pattern for `skeleton` in the calendar's zone.
std::string formatted(Date date, const char* skeleton, const Calendar& calendar,
                      const std::string& locale) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::Locale where =
        locale.empty() ? icu::Locale::getDefault() : icu::Locale(locale.c_str());
    std::unique_ptr<icu::DateTimePatternGenerator> generator(
        icu::DateTimePatternGenerator::createInstance(where, status));
    if (U_FAILURE(status) || !generator) return {};
    const icu::UnicodeString pattern =
        generator->getBestPattern(icu::UnicodeString(skeleton, -1, US_INV), status);
    if (U_FAILURE(status)) return {};
    icu::SimpleDateFormat format(pattern, where, status);
    if (U_FAILURE(status)) return {};
    format.adoptTimeZone(
        icu::TimeZone::createTimeZone(icu::UnicodeString::fromUTF8(calendar.zoneID())));
    icu::UnicodeString text;
    format.format(date.unixSeconds() * 1000.0, text);
    std::string out;
    text.toUTF8String(out);
    return withPlainSpaces(std::move(out));
}

}  // namespace

std::string_view ClipPanelText::filterTitle(ClipFilter filter) {
    switch (filter) {
        case ClipFilter::all: return "All";
        case ClipFilter::pinned: return "Pinned";
        case ClipFilter::text: return "Text";
        case ClipFilter::links: return "Links";
        case ClipFilter::images: return "Images";
        case ClipFilter::files: return "Files";
        case ClipFilter::colours: return "Colours";
        case ClipFilter::code: return "Code";
    }
    return {};
}

ClipPanelMessage ClipPanelText::emptyHistory(ClipKeyVocabulary vocabulary) {
    return {"Your clipboard history starts here",
            "Copy anything, text, links, images, colours or code, and it shows up here. It stays "
            "on this " +
                std::string(computerName(vocabulary)) + ", encrypted."};
}

ClipPanelMessage ClipPanelText::emptyFilter(ClipFilter filter, ClipKeyVocabulary vocabulary) {
    switch (filter) {
        case ClipFilter::all: return emptyHistory(vocabulary);
        case ClipFilter::images: return {{}, "Copy an image or a screenshot and it shows up here."};
        case ClipFilter::files:
            return {{},
                    "Copy a file in " + std::string(fileManagerName(vocabulary)) +
                        " and it shows up here."};
        case ClipFilter::text: return {{}, "Copy some words and they show up here."};
        case ClipFilter::links:
            return {{},
                    "Copy a link and it shows up here, with its page title when the browser "
                    "shares it."};
        case ClipFilter::colours:
            return {{}, "Copy a colour like #5E5CE6 or rgb(94, 92, 230) and it shows up here."};
        case ClipFilter::code:
            return {{}, "Copy some code and it shows up here, coloured, with its language."};
        case ClipFilter::pinned:
            return {{},
                    "Press " + commandKeys(keycode::kP, vocabulary) +
                        " on a copy to pin it. Pins never expire, and they show in Harbex "
                        "Tidepool too."};
    }
    return {};
}

std::string ClipPanelText::noResults(ClipFilter filter, std::string_view query) {
    if (filter == ClipFilter::all) return "Nothing matches " + quoted(query);
    return "No " + std::string(noResultsSubject(filter)) +
           (takesSingularVerb(filter) ? " matches " : " match ") + quoted(query);
}

std::string ClipPanelText::noResultsHint(ClipFilter filter, std::size_t matchesInAll) {
    const std::string timeWord = quoted("last week");
    if (filter == ClipFilter::all) return "Try fewer words, or a time word like " + timeWord + ".";
    std::string hint = "Try All instead of " + std::string(filterTitle(filter)) +
                       ", fewer words, or a time word like " + timeWord + ".";
    if (matchesInAll > 0) {
        hint += " " + std::to_string(matchesInAll) + (matchesInAll == 1 ? " match" : " matches") +
                " in All.";
    }
    return hint;
}

std::string ClipPanelText::pauseEnd(Date end, Date now, const Calendar& calendar,
                                    const std::string& locale) {
    const Date today = calendar.startOfDay(now);
    const Date tomorrow = calendar.addingDays(today, 1);
    const Date dayAfter = calendar.addingDays(today, 2);
    const std::string time = formatted(end, "jmm", calendar, locale);
    if (end < tomorrow) return time;
    if (end < dayAfter) return "tomorrow at " + time;
    return formatted(end, "EEEEdMMMM", calendar, locale) + " at " + time;
}

std::optional<std::string> ClipPanelText::pauseBanner(std::optional<Date> pausedUntil, Date now,
                                                      const Calendar& calendar,
                                                      const std::string& locale) {
    if (!pausedUntil || *pausedUntil <= now) return std::nullopt;
    static constexpr std::string_view kStillPastes = ". Everything already here still pastes.";
    if (*pausedUntil >= Date::distantFuture()) {
        return "New copies aren’t saved until you resume" + std::string(kStillPastes);
    }
    return "New copies aren’t saved until " + pauseEnd(*pausedUntil, now, calendar, locale) +
           std::string(kStillPastes);
}

}  // namespace harbex
