#include "HarbexClipCore/Settings/ClipSettingsStore.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "HarbexClipCore/Testing/MemoryDefaults.hpp"

namespace harbex {
namespace {

TEST(ClipSettingsStoreTests, UnusableStoredValuesLoadAsDefaults) {
    const char* stored[] = {"", "not json", "[1,2]", "null", "\"{}\"", "{\"maxItems\": 5"};
    for (const char* text : stored) {
        MemoryDefaults defaults;
        defaults.setData("clipSettings", bytesOf(text));
        EXPECT_EQ(ClipSettingsStore::load(defaults), ClipSettings::defaults()) << text;
    }
    MemoryDefaults empty;
    EXPECT_EQ(ClipSettingsStore::load(empty), ClipSettings::defaults());
    MemoryDefaults wrongType;
    wrongType.setString("clipSettings", "{\"maxItems\":5}");
    EXPECT_EQ(ClipSettingsStore::load(wrongType), ClipSettings::defaults());
}

TEST(ClipSettingsStoreTests, SavedSettingsLoadBackAndReplaceTheWholeRecord) {
    MemoryDefaults defaults;
    ClipSettings first;
    first.maxItems = 20;
    first.window.pauseShortcut = ClipShortcut{35, ClipShortcut::Modifiers{9}};
    ClipSettingsStore::save(first, defaults);
    EXPECT_EQ(ClipSettingsStore::load(defaults), first);

    ClipSettings second;
    second.panel.fallback.reset();
    second.sensitiveLifetime = 0.125;
    ClipSettingsStore::save(second, defaults);
    EXPECT_EQ(ClipSettingsStore::load(defaults), second);
}

TEST(ClipSettingsStoreTests, ARecordThatCannotBeWrittenLeavesThePreviousOne) {
    MemoryDefaults defaults;
    ClipSettings previous;
    previous.maxItems = 77;
    ClipSettingsStore::save(previous, defaults);
    const auto writes = defaults.writeCount();

    ClipSettings notANumber;
    notANumber.sensitiveLifetime = std::nan("");
    ClipSettings infinitePause;
    infinitePause.pausedUntil = Date{std::numeric_limits<double>::infinity()};
    for (const auto& bad : {notANumber, infinitePause}) ClipSettingsStore::save(bad, defaults);

    EXPECT_EQ(defaults.writeCount(), writes);
    EXPECT_EQ(ClipSettingsStore::load(defaults), previous);
}

TEST(ClipSettingsStoreTests, TheLastPageIsRememberedByItsPersistedName) {
    MemoryDefaults defaults;
    EXPECT_EQ(ClipSettingsStore::loadPage(defaults), ClipSettingsPage::general);
    ClipSettingsStore::savePage(ClipSettingsPage::pinboards, defaults);
    EXPECT_EQ(defaults.string("harbex-clip-settings:page"), "pinboards");
    EXPECT_EQ(ClipSettingsStore::loadPage(defaults), ClipSettingsPage::pinboards);
    defaults.setString("harbex-clip-settings:page", "appearance");
    EXPECT_EQ(ClipSettingsStore::loadPage(defaults), ClipSettingsPage::general);
}

}  // namespace
}  // namespace harbex
