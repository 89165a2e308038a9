#include <gtest/gtest.h>

#include <string>
#include <unordered_set>
#include <vector>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Model/ClipLibrary.hpp"
#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Text/ClipFilter.hpp"
#include "HarbexClipCore/Text/ClipSearchIndex.hpp"

namespace harbex {
namespace {

const Date kNow = Date::fromUnix(1'762'180'200);  // Monday 3 November 2025, 14:30 UTC

ClipItem item(ClipKind kind, std::string text, double ageSeconds) {
    ClipItem out;
    out.id = Uuid::random();
    out.kind = kind;
    out.text = std::move(text);
    out.date = kNow - ageSeconds;
    out.firstCopied = out.date;
    return out;
}

std::vector<Uuid> ids(const ClipSearchOutcome& outcome) {
    std::vector<Uuid> out;
    for (const ClipSearchResult& result : outcome.results) out.push_back(result.id);
    return out;
}

class ClipSearchIndexTests : public ::testing::Test {
protected:
    ClipSearchOutcome find(const std::string& query, ClipFilter filter = ClipFilter::all) {
        return index.search({query, filter, std::nullopt}, pinned, kNow, calendar);
    }

    ClipSearchIndex index;
    std::unordered_set<Uuid> pinned;
    Calendar calendar{"UTC", "en_US"};
};

TEST_F(ClipSearchIndexTests, OrdersByScoreThenNewestFirst) {
    const ClipItem exact = item(ClipKind::text, "budget", 500);
    const ClipItem olderPrefix = item(ClipKind::text, "budget for 2026", 300);
    const ClipItem newerPrefix = item(ClipKind::text, "budget review", 100);
    const ClipItem inBody = item(ClipKind::text, "first line\nthe budget", 10);
    const ClipItem unrelated = item(ClipKind::text, "holiday photos", 5);
    index.rebuild({unrelated, inBody, newerPrefix, olderPrefix, exact});

    const ClipSearchOutcome outcome = find("Budget");
    EXPECT_EQ(ids(outcome),
              (std::vector<Uuid>{exact.id, newerPrefix.id, olderPrefix.id, inBody.id}));
    EXPECT_EQ(outcome.results[0].score, 3000);
    EXPECT_EQ(outcome.results[1].score, 2400);
    EXPECT_EQ(outcome.results[3].score, 600);
    EXPECT_EQ(find("budget zebra").results.size(), 0u);
}

TEST_F(ClipSearchIndexTests, TimeWordAloneListsItsRangeNewestFirst) {
    const ClipItem today = item(ClipKind::text, "made this morning", 3600);
    const ClipItem justNow = item(ClipKind::text, "made just now", 0);
    const ClipItem yesterday = item(ClipKind::text, "made yesterday", 86400);
    const ClipItem lastWeek = item(ClipKind::text, "old notes", 5 * 86400);
    index.rebuild({justNow, today, yesterday, lastWeek});

    const ClipSearchOutcome todays = find("today");
    EXPECT_EQ(todays.timeWord, ClipTimeWord::today);
    EXPECT_EQ(ids(todays), (std::vector<Uuid>{justNow.id, today.id}));
    for (const ClipSearchResult& result : todays.results) EXPECT_EQ(result.score, 0);

    EXPECT_EQ(ids(find("Yesterday")), (std::vector<Uuid>{yesterday.id}));
    EXPECT_EQ(ids(find("notes last week")), (std::vector<Uuid>{lastWeek.id}));
    EXPECT_EQ(ids(find("made last week")), (std::vector<Uuid>{}));
    // Written as one word it is an ordinary word, which nothing contains.
    EXPECT_EQ(ids(find("lastweek")), (std::vector<Uuid>{}));
}

TEST_F(ClipSearchIndexTests, FiltersAdmitTheirKinds) {
    std::vector<ClipItem> items;
    for (ClipKind kind : allCases<ClipKind>()) items.push_back(item(kind, "sample", 60));
    ClipItem pinnedCode = item(ClipKind::code, "sample", 30);
    ClipItem onBoard = item(ClipKind::image, "sample", 20);
    items.push_back(pinnedCode);
    items.push_back(onBoard);
    index.rebuild(items);
    Pinboard board;
    board.itemIDs = {onBoard.id};
    pinned = pinnedOrOnPinboard({pinnedCode.id}, {board});

    const auto kindsFound = [&](ClipFilter filter) {
        std::vector<ClipKind> kinds;
        for (const ClipSearchResult& result : find("", filter).results) {
            kinds.push_back(index.entry(result.id)->kind);
        }
        std::sort(kinds.begin(), kinds.end());
        return kinds;
    };
    using K = ClipKind;
    EXPECT_EQ(kindsFound(ClipFilter::all).size(), items.size());
    EXPECT_EQ(kindsFound(ClipFilter::pinned), (std::vector<K>{K::image, K::code}));
    EXPECT_EQ(kindsFound(ClipFilter::text), (std::vector<K>{K::text, K::richText}));
    EXPECT_EQ(kindsFound(ClipFilter::links), (std::vector<K>{K::link}));
    EXPECT_EQ(kindsFound(ClipFilter::images), (std::vector<K>{K::image, K::image}));
    EXPECT_EQ(kindsFound(ClipFilter::files), (std::vector<K>{K::file}));
    EXPECT_EQ(kindsFound(ClipFilter::colours), (std::vector<K>{K::color}));
    EXPECT_EQ(kindsFound(ClipFilter::code), (std::vector<K>{K::code, K::code}));
    EXPECT_EQ(enumName(ClipFilter::colours), "colours");
    EXPECT_EQ(enumFromName<ClipFilter>("pinned"), ClipFilter::pinned);
}

TEST_F(ClipSearchIndexTests, ApplicationFilterUsesTheBundleIdentifier) {
    ClipItem fromMail = item(ClipKind::text, "hello", 10);
    fromMail.appID = "com.example.mail";
    fromMail.appName = "Mail";
    ClipItem fromNotes = item(ClipKind::text, "hello", 5);
    fromNotes.appID = "com.example.notes";
    index.rebuild({fromNotes, fromMail});
    const ClipSearchOutcome outcome =
        index.search({"hello", ClipFilter::all, "com.example.mail"}, pinned, kNow, calendar);
    EXPECT_EQ(ids(outcome), (std::vector<Uuid>{fromMail.id}));
    EXPECT_EQ(ids(find("mail")), (std::vector<Uuid>{fromMail.id}));  // the name is searched
}

TEST_F(ClipSearchIndexTests, StaysInStepWithEditsAndDeletes) {
    ClipItem a = item(ClipKind::text, "alpha report", 30);
    const ClipItem b = item(ClipKind::text, "beta report", 20);
    const ClipItem c = item(ClipKind::text, "gamma report", 10);
    index.rebuild({c, b, a});
    EXPECT_EQ(find("report").results.size(), 3u);

    index.remove(b.id);
    EXPECT_EQ(index.size(), 2u);
    EXPECT_EQ(index.entry(b.id), nullptr);
    EXPECT_EQ(ids(find("report")), (std::vector<Uuid>{c.id, a.id}));
    EXPECT_EQ(ids(find("beta")), (std::vector<Uuid>{}));

    a.text = "alpha summary";
    index.put(a);
    EXPECT_EQ(index.size(), 2u);
    EXPECT_EQ(ids(find("report")), (std::vector<Uuid>{c.id}));
    EXPECT_EQ(ids(find("summary")), (std::vector<Uuid>{a.id}));

    const ClipItem d = item(ClipKind::text, "delta report", 0);
    index.put(d);
    EXPECT_EQ(ids(find("report")), (std::vector<Uuid>{d.id, c.id}));
    index.remove(Uuid::random());  // unknown ids are ignored
    index.clear();
    EXPECT_EQ(find("").results.size(), 0u);
}

TEST_F(ClipSearchIndexTests, TypingGivesWhatAFreshSearchGives) {
    const std::vector<std::string> texts = {
        "meeting notes monday", "Notes on the budget", "mtg nts",         "notebook order",
        "résumé draft",         "shopping list",       "meet me at noon", "N. O. T. E. S."};
    std::vector<ClipItem> items;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        items.push_back(item(ClipKind::text, texts[i], 10.0 * static_cast<double>(i)));
    }
    index.rebuild(items);
    ClipSearchIndex fresh;
    fresh.rebuild(items);

    // Growing words, a new word, a backspace, an edit in the middle and a filter switch.
    const std::vector<std::string> typed = {"m",       "me",     "mee",   "meet", "meet n",
                                            "meet no", "meet n", "mt no", "mtg",  "resume",
                                            "n",       "no",     "not",   "note", "notes"};
    for (const std::string& query : typed) {
        fresh.forgetPreviousQuery();
        EXPECT_EQ(find(query),
                  fresh.search({query, ClipFilter::all, std::nullopt}, pinned, kNow, calendar))
            << query;
    }
    const ClipSearchOutcome codeOnly = find("notes", ClipFilter::code);
    EXPECT_TRUE(codeOnly.results.empty());
    EXPECT_EQ(find("notes").results.size(),
              fresh.search({"notes", ClipFilter::all, std::nullopt}, pinned, kNow, calendar)
                  .results.size());
}

TEST(ClipSearchEntryTests, BodyJoinsTheSearchedPiecesByLine) {
    ClipItem link;
    link.kind = ClipKind::link;
    link.text = "https://example.com/Page";
    link.linkTitle = "Example Page";
    link.appName = "Safari";
    const ClipSearchEntry entry = ClipSearchEntry::make(link);
    EXPECT_EQ(entry.body.bytes(), "https://example.com/page\nexample page");
    EXPECT_EQ(entry.title, FoldedText::fold(link.title()));
    EXPECT_EQ(entry.appName.bytes(), "safari");

    ClipItem files;
    files.kind = ClipKind::file;
    files.filePaths = std::vector<std::string>{"/tmp/A.txt", "/tmp/B.txt"};
    files.ocrText = "Scanned";
    EXPECT_EQ(ClipSearchEntry::make(files).body.bytes(), "scanned\n/tmp/a.txt\n/tmp/b.txt");

    ClipItem longText;
    longText.text = std::string(25'000, 'x') + "needle";
    const ClipSearchEntry longEntry = ClipSearchEntry::make(longText);
    EXPECT_EQ(longEntry.body.bytes().size(), ClipSearchEntry::kSearchedCharacters);
    EXPECT_TRUE(longEntry.appName.empty());

    ClipItem accented;
    accented.text = std::string(19'999, 'x') + "é\xCC\x81" + "z";  // one character, two marks
    EXPECT_EQ(ClipSearchEntry::make(accented).body.bytes(), std::string(19'999, 'x') + "e");
}

}  // namespace
}  // namespace harbex
