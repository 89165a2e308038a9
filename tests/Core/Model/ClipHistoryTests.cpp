#include "HarbexClipCore/Model/ClipHistory.hpp"

#include <gtest/gtest.h>

#include <random>

namespace harbex {
namespace {

constexpr double kDay = 86400;

ClipItem copyAt(Date date, std::string text = "copy") {
    return ClipItem::make(ClipContent{.kind = ClipKind::text, .text = std::move(text)}, {}, {},
                          date, ClipSensitivity::ordinary);
}

Pinboard board(std::string name, std::vector<Uuid> ids = {}) {
    return Pinboard{Uuid::random(), std::move(name), "blue", "star", std::move(ids)};
}

std::vector<Uuid> idsOf(const std::vector<ClipItem>& items) {
    std::vector<Uuid> ids;
    for (const auto& item : items) ids.push_back(item.id);
    return ids;
}

// Items newest first, one a minute apart, the newest at `now`.
std::vector<ClipItem> minuteApart(std::size_t count, Date now) {
    std::vector<ClipItem> items;
    for (std::size_t i = 0; i < count; ++i) items.push_back(copyAt(now - 60.0 * double(i)));
    return items;
}

void expectIndexMatches(const ClipHistory& history) {
    for (std::size_t i = 0; i < history.items().size(); ++i) {
        ASSERT_EQ(history.indexOf(history.items()[i].id), i);
    }
}

TEST(ClipHistoryTests, LookupsStayRightThroughEveryKindOfChange) {
    // Random operations against the plain list: the id index must never drift from it.
    std::mt19937_64 random(7);
    ClipHistory history;
    std::vector<Uuid> gone;
    for (int step = 0; step < 2000; ++step) {
        const auto& items = history.items();
        const std::size_t size = items.size();
        switch (random() % 6) {
            case 0:
            case 1: history.insertAtFront(copyAt(Date{double(step)})); break;
            case 2:
                if (size > 0) {
                    ClipItem moved = items[random() % size];
                    moved.timesCopied += 1;
                    const Uuid id = moved.id;
                    ASSERT_TRUE(history.moveToFront(moved));
                    ASSERT_EQ(history.items().front().id, id);
                    ASSERT_EQ(history.items().front().timesCopied, moved.timesCopied);
                }
                break;
            case 3:
                if (size > 0) {
                    const Uuid id = items[size - 1 - random() % std::min<std::size_t>(size, 3)].id;
                    ASSERT_EQ(history.remove(id).size(), 1u);
                    gone.push_back(id);
                }
                break;
            case 4: history.prune(Date{double(step)}, ClipRetention::forever, 40, {}); break;
            case 5:
                if (size > 0) {
                    ClipItem edited = items[random() % size];
                    edited.customTitle = "step " + std::to_string(step);
                    ASSERT_TRUE(history.replace(edited));
                    ASSERT_EQ(history.item(edited.id)->customTitle, edited.customTitle);
                }
                break;
        }
        expectIndexMatches(history);
        if (HasFatalFailure()) return;
    }
    for (const auto& id : gone) EXPECT_FALSE(history.indexOf(id));
    EXPECT_FALSE(history.moveToFront(copyAt(Date{})));
    EXPECT_FALSE(history.replace(copyAt(Date{})));
}

TEST(ClipHistoryTests, ALoadedLibraryIsIndexedAndFindsContent) {
    ClipLibrary library;
    library.items = minuteApart(5, Date{1000});
    library.items[3].fingerprint = "needle";
    const Uuid third = library.items[2].id;
    ClipHistory history(library);
    EXPECT_EQ(history.indexOf(third), 2u);
    EXPECT_EQ(history.itemWithFingerprint("needle"), &history.items()[3]);
    EXPECT_EQ(history.itemWithFingerprint("hay"), nullptr);
    history.setItems({});
    EXPECT_FALSE(history.indexOf(third));
    history.setLibrary(library);
    EXPECT_EQ(history.indexOf(third), 2u);
}

TEST(ClipHistoryTests, DeletingACopyTakesItOffEveryBoard) {
    ClipHistory history;
    for (auto& item : minuteApart(4, Date{1000})) history.insertAtFront(std::move(item));
    const auto ids = idsOf(history.items());
    history.addPinboard(board("Work", {ids[0], ids[1], ids[0]}));
    history.addPinboard(board("Home", {ids[2], ids[0]}));

    const auto removed = history.remove(std::vector<Uuid>{ids[0], ids[2], Uuid::random()});
    EXPECT_EQ(idsOf(removed), (std::vector<Uuid>{ids[0], ids[2]}));
    EXPECT_EQ(idsOf(history.items()), (std::vector<Uuid>{ids[1], ids[3]}));
    EXPECT_EQ(history.pinboards()[0].itemIDs, std::vector<Uuid>{ids[1]});
    EXPECT_TRUE(history.pinboards()[1].itemIDs.empty());
    expectIndexMatches(history);
}

TEST(ClipHistoryTests, BoardsAreEditedByID) {
    ClipHistory history;
    const Pinboard work = board("Work");
    history.addPinboard(work);
    const Uuid stranger = Uuid::random();
    EXPECT_TRUE(history.renamePinboard(work.id, "Jobs"));
    EXPECT_EQ(history.pinboard(work.id)->name, "Jobs");
    EXPECT_FALSE(history.renamePinboard(stranger, "x"));
    EXPECT_FALSE(history.setPinboardColor(stranger, "x"));
    EXPECT_FALSE(history.setPinboardSymbol(stranger, "x"));
    EXPECT_FALSE(history.addToPinboard(stranger, work.id));
    EXPECT_FALSE(history.removePinboard(stranger));

    const Uuid a = Uuid::random();
    const Uuid b = Uuid::random();
    EXPECT_TRUE(history.addToPinboard(work.id, a));
    EXPECT_TRUE(history.addToPinboard(work.id, b));
    EXPECT_TRUE(history.addToPinboard(work.id, a));  // already there: not added twice
    EXPECT_EQ(history.pinboard(work.id)->itemIDs, (std::vector<Uuid>{a, b}));
    const Pinboard mixed = board("Mixed", {a, b, a, Uuid{}, a});
    history.addPinboard(mixed);
    EXPECT_TRUE(history.removeFromPinboard(mixed.id, a)) << "every occurrence, order kept";
    EXPECT_EQ(history.pinboard(mixed.id)->itemIDs, (std::vector<Uuid>{b, Uuid{}}));
    EXPECT_TRUE(history.removePinboard(mixed.id));
    EXPECT_TRUE(history.removePinboard(work.id));
    EXPECT_TRUE(history.pinboards().empty());
}

TEST(ClipHistoryTests, MovesWorkLikeDragAndDropInAList) {
    struct Case {
        std::vector<std::size_t> from;
        std::size_t to;
        std::string order;
    };
    const Case cases[] = {
        {{0}, 2, "bacd"},    {{0}, 4, "bcda"},    {{3}, 0, "dabc"},    {{1, 3}, 0, "bdac"},
        {{0, 2}, 4, "bdac"}, {{1, 2}, 2, "abcd"}, {{2, 0}, 3, "bacd"}, {{9}, 0, "abcd"},
        {{1}, 99, "acdb"},   {{1, 1}, 0, "bacd"}, {{}, 0, "abcd"},
    };
    for (const auto& c : cases) {
        ClipHistory history;
        std::vector<Uuid> ids(4);
        for (auto& id : ids) id = Uuid::random();
        for (const char name : std::string("abcd"))
            history.addPinboard(board(std::string(1, name)));
        history.addPinboard(board("items", ids));
        const Uuid itemsBoard = history.pinboards().back().id;

        std::vector<std::size_t> from = c.from;
        history.movePinboards(from, c.to);
        std::string order;
        for (const auto& moved : history.pinboards()) {
            if (moved.name.size() == 1) order += moved.name;
        }
        // The board named "items" sits at offset 4 and moves only when asked to.
        EXPECT_EQ(order, c.order) << "boards to " << c.to;

        ASSERT_TRUE(history.moveOnPinboard(itemsBoard, from, c.to));
        std::string itemOrder;
        for (const auto& id : history.pinboard(itemsBoard)->itemIDs) {
            itemOrder +=
                static_cast<char>('a' + (std::find(ids.begin(), ids.end(), id) - ids.begin()));
        }
        EXPECT_EQ(itemOrder, c.order) << "items to " << c.to;
    }
}

struct PruneCase {
    const char* name;
    double ageDays;
    std::optional<double> expiresIn;  // seconds after now
    ClipRetention retention;
    bool kept;
};

TEST(ClipHistoryTests, PruningByAgeAndExpiry) {
    const Date now{800'000'000};
    const PruneCase cases[] = {
        {"expires now", 0, 0.0, ClipRetention::forever, false},
        {"expired before", 0, -5.0, ClipRetention::forever, false},
        {"expires a second later", 0, 1.0, ClipRetention::forever, true},
        {"month keeps 30 days", 30, {}, ClipRetention::month, true},
        {"month keeps 31 days exactly", 31, {}, ClipRetention::month, true},
        {"month drops 32 days", 32, {}, ClipRetention::month, false},
        {"day drops a day and a second", 1 + 1 / kDay, {}, ClipRetention::day, false},
        {"week keeps 7 days", 7, {}, ClipRetention::week, true},
        {"three months keep 92 days", 92, {}, ClipRetention::threeMonths, true},
        {"three months drop 93 days", 93, {}, ClipRetention::threeMonths, false},
        {"year keeps 366 days", 366, {}, ClipRetention::year, true},
        {"year drops 367 days", 367, {}, ClipRetention::year, false},
        {"forever keeps ten years", 3653, {}, ClipRetention::forever, true},
    };
    for (const auto& c : cases) {
        ClipItem item = copyAt(now - c.ageDays * kDay);
        if (c.expiresIn) item.expiresAt = now + *c.expiresIn;
        ClipHistory history(ClipLibrary{1, {item}, {}});
        const auto removed = history.prune(now, c.retention, 100, {});
        EXPECT_EQ(history.items().size(), c.kept ? 1u : 0u) << c.name;
        EXPECT_EQ(removed.size(), c.kept ? 0u : 1u) << c.name;

        // Protection outranks expiry and age.
        ClipHistory pinned(ClipLibrary{1, {item}, {}});
        EXPECT_TRUE(pinned.prune(now, c.retention, 0, {item.id}).empty()) << c.name;
    }
}

TEST(ClipHistoryTests, PruningKeepsTheNewestAndNeverCountsProtectedCopies) {
    const Date now{800'000'000};
    ClipLibrary library;
    library.items = minuteApart(7, now);
    const auto ids = idsOf(library.items);
    // Two copies on a board, one among the newest and one the oldest.
    library.pinboards.push_back(board("Keep", {ids[1], ids[6]}));
    ClipHistory history(library);

    const auto plan = history.pruned(now, ClipRetention::forever, 3, {});
    EXPECT_EQ(idsOf(plan.kept), (std::vector<Uuid>{ids[0], ids[1], ids[2], ids[3], ids[6]}));
    EXPECT_EQ(idsOf(plan.removed), (std::vector<Uuid>{ids[4], ids[5]}));
    EXPECT_EQ(history.items().size(), 7u) << "pruned() only plans";

    const auto removed = history.prune(now, ClipRetention::forever, 3, {});
    EXPECT_EQ(idsOf(removed), idsOf(plan.removed));
    EXPECT_EQ(history.items(), plan.kept);
    expectIndexMatches(history);

    // Pinned ids from outside protect as boards do.
    ClipHistory pinnedHistory(library);
    pinnedHistory.prune(now, ClipRetention::forever, 1, {ids[5]});
    EXPECT_EQ(idsOf(pinnedHistory.items()), (std::vector<Uuid>{ids[0], ids[1], ids[5], ids[6]}));
    EXPECT_EQ(pinnedHistory.protectedIDs({ids[5]}), (ClipIDSet{ids[1], ids[5], ids[6]}));
}

TEST(ClipHistoryTests, ClearingLastHourIncludesTheExactHour) {
    const Date now{800'000'000};
    ClipLibrary library;
    library.items = {copyAt(now), copyAt(now - 3600), copyAt(now - 3600.001), copyAt(now - 7200)};
    const auto ids = idsOf(library.items);
    ClipHistory history(library);
    const auto removed = history.clear(ClipHistory::ClearRange::lastHour, now, Calendar("UTC"), {});
    EXPECT_EQ(idsOf(removed), (std::vector<Uuid>{ids[0], ids[1]}));
    EXPECT_EQ(idsOf(history.items()), (std::vector<Uuid>{ids[2], ids[3]}));
    expectIndexMatches(history);
}

TEST(ClipHistoryTests, ClearingTodayStartsAtTheLocalMidnightAcrossDaylightSaving) {
    const Calendar berlin("Europe/Berlin", "de_DE");
    struct Case {
        const char* name;
        Date now;
        Date midnight;  // the local start of that day, in UTC
    };
    const Case cases[] = {
        // 31 March 2024, 10:00 CEST: the day began at 00:00 CET, 23 hours long.
        {"spring", Date::fromUnix(1711872000), Date::fromUnix(1711839600)},
        // 27 October 2024, 23:30 CET: the day began at 00:00 CEST, 25 hours long, so 24 hours
        // before now is already today.
        {"autumn", Date::fromUnix(1730068200), Date::fromUnix(1729980000)},
    };
    for (const auto& c : cases) {
        ClipLibrary library;
        library.items = {copyAt(c.now), copyAt(c.midnight + 1800), copyAt(c.midnight),
                         copyAt(c.midnight - 0.5), copyAt(c.midnight - kDay)};
        const auto ids = idsOf(library.items);
        library.pinboards.push_back(board("Board", {ids[1]}));
        ClipHistory history(library);

        EXPECT_EQ(ClipHistory::clearCutoff(ClipHistory::ClearRange::today, c.now, berlin),
                  c.midnight)
            << c.name;
        const auto removed = history.clear(ClipHistory::ClearRange::today, c.now, berlin, {});
        EXPECT_EQ(idsOf(removed), (std::vector<Uuid>{ids[0], ids[2]})) << c.name;
        EXPECT_EQ(idsOf(history.items()), (std::vector<Uuid>{ids[1], ids[3], ids[4]})) << c.name;
    }
}

TEST(ClipHistoryTests, ClearingEverythingSparesPinsOnlyWhenTheyArePassedIn) {
    const Date now{800'000'000};
    ClipLibrary library;
    library.items = minuteApart(4, now);
    library.items.push_back(copyAt(now - 3000 * kDay));
    const auto ids = idsOf(library.items);
    library.pinboards.push_back(board("Board", {ids[3]}));

    ClipHistory keepingPins(library);
    keepingPins.clear(ClipHistory::ClearRange::everything, now, Calendar("UTC"), {ids[0]});
    EXPECT_EQ(idsOf(keepingPins.items()), (std::vector<Uuid>{ids[0], ids[3]}));

    // "Keep pinned copies" off: the caller passes no pins; boards still protect.
    ClipHistory droppingPins(library);
    const auto removed =
        droppingPins.clear(ClipHistory::ClearRange::everything, now, Calendar("UTC"), {});
    EXPECT_EQ(removed.size(), 4u);
    EXPECT_EQ(idsOf(droppingPins.items()), std::vector<Uuid>{ids[3]});
    EXPECT_EQ(droppingPins.pinboards(), library.pinboards);
}

}  // namespace
}  // namespace harbex
