#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Model/ClipLibrary.hpp"
#include "HarbexClipCore/Support/Calendar.hpp"
#include "HarbexClipCore/Testing/ReferenceSearchScore.hpp"
#include "HarbexClipCore/Text/ClipFilter.hpp"
#include "HarbexClipCore/Text/ClipSearchIndex.hpp"
#include "HarbexClipCore/Text/ClipSearchScore.hpp"

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
    EXPECT_FALSE(index.entry(b.id).has_value());
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

// Replaced and removed texts are dropped from the index's block once they are a good part of
// it, which moves every text that stays.
TEST_F(ClipSearchIndexTests, RepackingItsTextsKeepsEveryCopyAsMade) {
    std::vector<ClipItem> items;
    for (int i = 0; i < 40; ++i) {
        // Long enough for a pair table; short ones ride along between them.
        std::string text = i % 3 == 0 ? "note " + std::to_string(i)
                                      : std::string(30'000, static_cast<char>('a' + i % 26)) +
                                            " report " + std::to_string(i);
        items.push_back(item(ClipKind::text, std::move(text), 1000 - i));
        items.back().appID = i % 2 == 0 ? "com.example.even" : "com.example.odd";
        items.back().appName = i % 2 == 0 ? "Even" : "Odd";
    }
    index.rebuild(items);
    for (int round = 0; round < 4; ++round) {
        for (std::size_t i = round % 2; i < items.size(); i += 2) {
            *items[i].text += " edited" + std::to_string(round);
            items[i].date = items[i].date + 1;
            index.put(items[i]);
        }
    }
    index.remove(items[5].id);
    items.erase(items.begin() + 5);

    ClipSearchIndex fresh;
    fresh.rebuild(items);
    // Without repacking, the replaced texts alone would take twice what the copies need.
    EXPECT_LT(index.textBytes(), 2 * fresh.textBytes());
    for (const ClipItem& copy : items) {
        ASSERT_TRUE(index.entry(copy.id).has_value());
        EXPECT_EQ(*index.entry(copy.id), ClipSearchEntry::make(copy));
    }
    for (const char* query : {"report", "edited3 report", "note", "even", "odd edited2", "bbb"}) {
        for (const std::optional<std::string>& app :
             {std::optional<std::string>{}, std::optional<std::string>{"com.example.odd"}}) {
            const ClipSearchRequest request{query, ClipFilter::all, app};
            EXPECT_EQ(index.search(request, pinned, kNow, calendar),
                      fresh.search(request, pinned, kNow, calendar))
                << query;
        }
    }
}

// One step of a search session: the query as typed and the filters around it.
struct Step {
    Step(std::string typed, ClipFilter kinds = ClipFilter::all,
         std::optional<std::string> app = std::nullopt)
        : query(std::move(typed)), filter(kinds), appID(std::move(app)) {}

    std::string query;
    ClipFilter filter;
    std::optional<std::string> appID;
};

TEST_F(ClipSearchIndexTests, TypingAndGoingBackGiveWhatAFreshSearchGives) {
    ClipItem link = item(ClipKind::link, "https://notes.example/meeting", 40);
    link.appID = "com.example.browser";
    ClipItem code = item(ClipKind::code, "meeting_notes = load()", 30);
    code.appID = "com.example.editor";
    ClipItem old = item(ClipKind::text, "meeting notes from last month", 20 * 86'400);
    old.appID = "com.example.editor";
    const std::vector<ClipItem> items = {link,
                                         code,
                                         old,
                                         item(ClipKind::text, "Notes on the budget", 10),
                                         item(ClipKind::text, "mtg nts", 5),
                                         item(ClipKind::text, "meet me at noon", 1),
                                         item(ClipKind::text, "notebook order", 2),
                                         item(ClipKind::text, "résumé draft", 3),
                                         item(ClipKind::text, "N. O. T. E. S.", 4)};
    index.rebuild(items);
    ClipSearchIndex fresh;
    fresh.rebuild(items);

    struct Session {
        const char* name;
        std::vector<Step> steps;
    };
    const std::vector<Session> sessions = {
        {"typing forward, a backspace and an edit in the middle",
         {{"m"}, {"mee"}, {"meet n"}, {"meet no"}, {"meet n"}, {"mt no"}, {"mtg"}, {"resume"}}},
        {"backspace to the first character",
         {{"n"}, {"no"}, {"not"}, {"note"}, {"notes"}, {"note"}, {"not"}, {"no"}, {"n"}}},
        {"backspace over a second word",
         {{"meet"}, {"meet n"}, {"meet no"}, {"meet n"}, {"meet "}, {"meet"}, {"mee"}}},
        {"backspace after a filter change",
         {{"m"},
          {"me"},
          {"mee"},
          {"mee", ClipFilter::code},
          {"me", ClipFilter::code},
          {"m", ClipFilter::code},
          {"me"},
          {"m"}}},
        {"backspace after the application filter changes",
         {{"no"},
          {"not"},
          {"not", ClipFilter::all, "com.example.editor"},
          {"no", ClipFilter::all, "com.example.editor"},
          {"n", ClipFilter::all, "com.example.browser"},
          {"no"}}},
        {"backspace into and out of a time word",
         {{"notes"},
          {"notes today"},
          {"notes toda"},
          {"notes"},
          {"notes last week"},
          {"notes last wee"},
          {"notes"}}},
        {"an edit in the middle, then back",
         {{"meet no"}, {"mt no"}, {"mt n"}, {"mt"}, {"m"}, {"me"}, {"meet"}}},
        {"the pinned filter never reuses",
         {{"no"},
          {"no", ClipFilter::pinned},
          {"not", ClipFilter::pinned},
          {"no", ClipFilter::pinned},
          {"no"}}},
    };
    for (const Session& session : sessions) {
        index.forgetPreviousQuery();
        pinned = {items[3].id};
        for (const Step& step : session.steps) {
            fresh.forgetPreviousQuery();
            const ClipSearchRequest request{step.query, step.filter, step.appID};
            EXPECT_EQ(index.search(request, pinned, kNow, calendar),
                      fresh.search(request, pinned, kNow, calendar))
                << session.name << ": \"" << step.query << "\"";
            // The pinned set may change between searches without the index knowing.
            if (step.filter == ClipFilter::pinned) pinned.clear();
        }
    }
}

TEST_F(ClipSearchIndexTests, BackspaceDropsTheLongerQueries) {
    index.rebuild({item(ClipKind::text, "budget review", 10)});
    for (const char* query : {"b", "bu", "bud", "budg"}) find(query);
    EXPECT_EQ(index.rememberedQueries(), 4u);
    EXPECT_EQ(find("bu").results.size(), 1u);
    EXPECT_EQ(index.rememberedQueries(), 2u);
    find("bux");
    EXPECT_EQ(index.rememberedQueries(), 3u);
    find("zebra");  // narrows none of them
    EXPECT_EQ(index.rememberedQueries(), 1u);
}

TEST_F(ClipSearchIndexTests, HistoryChangesForgetWhatBackspaceWouldGiveBack) {
    struct Change {
        const char* name;
        std::function<void(std::vector<ClipItem>&, ClipSearchIndex&)> apply;
    };
    const std::vector<Change> changes = {
        {"a new copy matches",
         [](std::vector<ClipItem>& items, ClipSearchIndex& target) {
             items.push_back(item(ClipKind::text, "budgie photos", 0));
             target.put(items.back());
         }},
        {"an edit stops a copy matching",
         [](std::vector<ClipItem>& items, ClipSearchIndex& target) {
             items[0].text = "holiday plans";
             target.put(items[0]);
         }},
        {"an edit makes a copy match",
         [](std::vector<ClipItem>& items, ClipSearchIndex& target) {
             items[2].text = "budding ideas";
             target.put(items[2]);
         }},
        {"a matching copy is deleted",
         [](std::vector<ClipItem>& items, ClipSearchIndex& target) {
             target.remove(items[1].id);
             items.erase(items.begin() + 1);
         }},
        {"the history is loaded again",
         [](std::vector<ClipItem>& items, ClipSearchIndex& target) {
             items.resize(1);
             target.rebuild(items);
         }},
        {"the history is emptied",
         [](std::vector<ClipItem>& items, ClipSearchIndex& target) {
             items.clear();
             target.clear();
         }},
    };
    for (const Change& change : changes) {
        std::vector<ClipItem> items = {item(ClipKind::text, "budget 2026", 30),
                                       item(ClipKind::text, "the budget meeting", 20),
                                       item(ClipKind::text, "shopping list", 10)};
        index.rebuild(items);
        for (const char* query : {"b", "bu", "bud", "budg"}) find(query);
        change.apply(items, index);
        ClipSearchIndex fresh;
        fresh.rebuild(items);
        for (const char* query : {"bud", "bu", "budg"}) {
            EXPECT_EQ(find(query),
                      fresh.search({query, ClipFilter::all, std::nullopt}, pinned, kNow, calendar))
                << change.name << ": \"" << query << "\"";
        }
    }
}

// The search passes over copies none of whose texts holds all of a word's characters; folding
// must never let that drop a copy the plain scorer finds.
TEST_F(ClipSearchIndexTests, CharacterPrefilterNeverDropsAMatch) {
    struct Case {
        std::string query;
        std::string text;
        bool matches;
    };
    const std::vector<Case> cases = {
        {"cafe", "CAFÉ au lait", true},
        {"café", "cafe", true},
        {"ｃａｆｅ", "Café", true},  // full-width query
        {"cafe", "ｃａｆé", true},   // full-width text
        {"ＨＥＬＬＯ", "hello", true},
        {"strasse", "Straße", true},
        {"ß", "STRASSE", true},
        {"e", "e\u0301", true},  // a combining mark folds away
        {"ete", "e\u0301t\u0301e\u0301", true},
        {"naive", "naïve", true},
        {"ü", "tu", true},
        {"Å", "a", true},  // the ångström sign
        {"οδος", "ΟΔΟΣ", true},
        {"東京", "会議は東京で", true},
        {"👍🏽", "great 👍🏽 job", true},
        {"👍", "great 👍🏽 job", false},  // a skin tone makes another character
        {"🇩🇪", "flags 🇫🇷🇩🇪", true},
        {"🇩", "flags 🇫🇷🇩🇪", false},
        {"ab", "a\r\nb", true},  // CR LF is one character, one skipped
        {"na", "Señor", false},
        {"résumé", "RESUME", true},
        {"rsm", "résumé", true},
        {"zebra", "ｚｅｂｒａ crossing", true},
        {"q", "ｐｅｂｒａ", false},
    };
    int matched = 0;
    for (const Case& c : cases) {
        ClipItem copy = item(ClipKind::text, c.text, 1);
        copy.appName = "Notes";
        index.rebuild({copy});
        const ClipSearchEntry entry = *index.entry(copy.id);
        std::optional<std::int64_t> expected = 0;
        for (const ClipSearchWord& word : ClipSearchQuery::make(c.query).words) {
            std::optional<int> best;
            const auto weigh = [&](const FoldedText& text, int weight) {
                if (auto score = referenceWordScore(word.folded(), text)) {
                    best = std::max(best.value_or(0), weight * *score);
                }
            };
            weigh(entry.title, 3);
            weigh(entry.appName, 2);
            weigh(entry.body, 1);
            if (!best) expected.reset();
            if (expected) *expected += *best;
        }
        EXPECT_EQ(expected.has_value(), c.matches) << c.query << " in " << c.text;
        const ClipSearchOutcome outcome = find(c.query);
        ASSERT_EQ(outcome.results.size(), expected ? 1u : 0u) << c.query << " in " << c.text;
        if (expected) {
            EXPECT_EQ(outcome.results[0].score, *expected) << c.query << " in " << c.text;
            ++matched;
        }
    }
    EXPECT_EQ(matched, 20);
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
