#include <gtest/gtest.h>

#include "HarbexClipCore/Panel/ClipPanelText.hpp"
#include "HarbexClipCore/Paste/ClipPasteNotice.hpp"
#include "tests/Core/Panel/PanelTestSupport.hpp"

namespace harbex {
namespace {

using paneltest::kNow;
constexpr auto kMac = ClipKeyVocabulary::macSymbols;
constexpr auto kLinux = ClipKeyVocabulary::linuxNames;

TEST(ClipPanelTextTests, VocabularyChangesKeysAndPlatformWordsOnly) {
    EXPECT_EQ(ClipPanelText::emptyFilter(ClipFilter::pinned, kMac).body,
              "Press ⌘P on a copy to pin it. Pins never expire, and they show in Harbex Tidepool "
              "too.");
    EXPECT_EQ(ClipPanelText::emptyFilter(ClipFilter::pinned, kLinux).body,
              "Press Ctrl+P on a copy to pin it. Pins never expire, and they show in Harbex "
              "Tidepool too.");
    EXPECT_EQ(ClipPanelText::emptyFilter(ClipFilter::files, kMac).body,
              "Copy a file in Finder and it shows up here.");
    EXPECT_EQ(ClipPanelText::emptyFilter(ClipFilter::files, kLinux).body,
              "Copy a file in Files and it shows up here.");
    const ClipPanelMessage mac = ClipPanelText::emptyHistory(kMac);
    EXPECT_EQ(mac.title, "Your clipboard history starts here");
    EXPECT_EQ(mac.body,
              "Copy anything, text, links, images, colours or code, and it shows up here. It "
              "stays on this Mac, encrypted.");
    EXPECT_EQ(ClipPanelText::emptyHistory(kLinux).body,
              "Copy anything, text, links, images, colours or code, and it shows up here. It "
              "stays on this computer, encrypted.");
    EXPECT_EQ(ClipPanelText::emptyFilter(ClipFilter::all, kLinux),
              ClipPanelText::emptyHistory(kLinux));
    EXPECT_EQ(ClipPasteNotice::copied(kMac), "Copied, press ⌘V");
    EXPECT_EQ(ClipPasteNotice::copied(kLinux), "Copied, press Ctrl+V");
}

TEST(ClipPanelTextTests, NoResultsNameTheFilterAndQuoteTheQuery) {
    const std::vector<std::pair<ClipFilter, std::string>> cases{
        {ClipFilter::all, "Nothing matches “tax form”"},
        {ClipFilter::text, "No text matches “tax form”"},
        {ClipFilter::code, "No code matches “tax form”"},
        {ClipFilter::pinned, "No pinned copies match “tax form”"},
    };
    for (const auto& [filter, expected] : cases) {
        EXPECT_EQ(ClipPanelText::noResults(filter, "tax form"), expected);
    }
}

TEST(ClipPanelTextTests, HintsOfferAllAndCountWhatItHolds) {
    EXPECT_EQ(ClipPanelText::noResultsHint(ClipFilter::all, 0),
              "Try fewer words, or a time word like “last week”.");
    EXPECT_EQ(ClipPanelText::noResultsHint(ClipFilter::images, 0),
              "Try All instead of Images, fewer words, or a time word like “last week”.");
    EXPECT_EQ(ClipPanelText::noResultsHint(ClipFilter::links, 3),
              "Try All instead of Links, fewer words, or a time word like “last week”. 3 matches "
              "in All.");
    EXPECT_EQ(ClipPanelText::noResultsHint(ClipFilter::code, 1),
              "Try All instead of Code, fewer words, or a time word like “last week”. 1 match in "
              "All.");
}

TEST(ClipPanelTextTests, PauseBannerNamesTheEndInTheUsersLocale) {
    const Calendar london("Europe/London", "en_GB");
    const Calendar newYork("America/New_York", "en_US");
    EXPECT_EQ(ClipPanelText::pauseBanner(std::nullopt, kNow, london, "en_GB"), std::nullopt);
    EXPECT_EQ(ClipPanelText::pauseBanner(kNow - 1, kNow, london, "en_GB"), std::nullopt)
        << "a pause that has ended shows nothing";
    EXPECT_EQ(ClipPanelText::pauseBanner(Date::distantFuture(), kNow, london, "en_GB"),
              "New copies aren’t saved until you resume. Everything already here still pastes.");
    EXPECT_EQ(ClipPanelText::pauseBanner(kNow + 3600, kNow, london, "en_GB"),
              "New copies aren’t saved until 15:30. Everything already here still pastes.");

    EXPECT_EQ(ClipPanelText::pauseEnd(kNow + 3600, kNow, london, "en_GB"), "15:30");
    EXPECT_EQ(ClipPanelText::pauseEnd(kNow + 3600, kNow, newYork, "en_US"), "11:30 AM");
    // New York is already on summer time (UTC−4). The next local midnight and later days name
    // the day.
    EXPECT_EQ(ClipPanelText::pauseEnd(kNow + 9.5 * 3600, kNow, london, "en_GB"),
              "tomorrow at 00:00");
    EXPECT_EQ(ClipPanelText::pauseEnd(kNow + 9.5 * 3600 - 1, kNow, london, "en_GB"), "23:59");
    EXPECT_EQ(ClipPanelText::pauseEnd(kNow + 3 * 86400, kNow, london, "en_GB"),
              "Sunday, 17 March at 14:30");
    EXPECT_EQ(ClipPanelText::pauseEnd(kNow + 3 * 86400, kNow, newYork, "en_US"),
              "Sunday, March 17 at 10:30 AM");
}

}  // namespace
}  // namespace harbex
