#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>

#include "HarbexClip/Linux/X11Pasteboard.hpp"
#include "HarbexClipCore/Capture/PrivacyMarkers.hpp"
#include "tests/Linux/X11/X11TestSupport.hpp"

namespace harbex {
namespace {

using namespace testing_x11;
using Clock = std::chrono::steady_clock;

class X11PasteboardTests : public testing::Test {
protected:
    void SetUp() override {
        HARBEX_REQUIRE_X_SERVER();
        connection_ = connect();
        ASSERT_TRUE(connection_);
        pasteboard_ = std::make_unique<X11Pasteboard>(*connection_);
    }

    const std::string& display() { return sharedServer().display(); }
    void pump() { connection_->dispatch(); }

    // Copies `data` as `target` with a command-line tool (which stays behind to serve it) and
    // waits until the pasteboard has seen the change; returns the count before the copy.
    std::int64_t copyWith(const std::vector<std::string>& command, const std::string& data) {
        const auto file = std::filesystem::temp_directory_path() /
                          ("harbex-x11-" + std::to_string(::getpid()) + ".in");
        std::ofstream(file, std::ios::binary) << data;
        const int input = ::open(file.c_str(), O_RDONLY);
        const auto before = pasteboard_->changeCount();
        tools_.emplace_back(command, display(), input);
        ::close(input);
        EXPECT_TRUE(eventually([&] { return pasteboard_->changeCount() > before; }, 10000ms))
            << command[0] << " never took the clipboard";
        std::filesystem::remove(file);
        return before;
    }

    RunResult read(std::vector<std::string> command) {
        return run(command, display(), {}, [this] { pump(); });
    }

    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<X11Pasteboard> pasteboard_;
    std::vector<Process> tools_;
};

// Whether `output` has `line` as one whole line (UTF8_STRING must not stand in for STRING).
bool hasLine(const std::string& output, std::string_view line) {
    return ("\n" + output).find("\n" + std::string(line) + "\n") != std::string::npos;
}

std::string pngBytes() {
    return std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\x01\0\0\0\x01", 24);
}

TEST_F(X11PasteboardTests, ACopyByAnotherToolIsOneChangeWithItsTypesAndContents) {
    struct Case {
        const char* name;
        std::vector<std::string> command;
        std::string data;
        std::string_view role;
        std::function<void(const PasteboardSnapshot&)> check;
    };
    const std::string uriList = "file:///tmp/a%20b.txt\r\nfile:///tmp/c.txt\r\n";
    const std::vector<Case> cases{
        {"xclip text",
         {"xclip", "-selection", "clipboard", "-i"},
         "héllo wörld",
         kPlainTextType,
         [](const PasteboardSnapshot& s) { EXPECT_EQ(s.string, "héllo wörld"); }},
        {"xsel text",
         {"xsel", "--clipboard", "--input"},
         "from xsel",
         kPlainTextType,
         [](const PasteboardSnapshot& s) { EXPECT_EQ(s.string, "from xsel"); }},
        {"html",
         {"xclip", "-selection", "clipboard", "-t", "text/html", "-i"},
         "<b>bold</b>",
         kHtmlType,
         [](const PasteboardSnapshot& s) {
             EXPECT_EQ(s.html, bytesOf("<b>bold</b>"));
             EXPECT_FALSE(s.string.has_value());
         }},
        {"files",
         {"xclip", "-selection", "clipboard", "-t", "text/uri-list", "-i"},
         uriList,
         kFileUrlType,
         [](const PasteboardSnapshot& s) {
             EXPECT_EQ(s.filePaths(), (std::vector<std::string>{"/tmp/a b.txt", "/tmp/c.txt"}));
         }},
        // PCManFM's bytes: its lists end with the C string's NUL.
        {"pcmanfm files",
         {"xclip", "-selection", "clipboard", "-t", "text/uri-list", "-i"},
         std::string("file:///tmp/a%20b.txt\r\nfile:///tmp/c.txt\r\n\0", 43),
         kFileUrlType,
         [](const PasteboardSnapshot& s) {
             EXPECT_EQ(s.filePaths(), (std::vector<std::string>{"/tmp/a b.txt", "/tmp/c.txt"}));
         }},
        {"pcmanfm cut files",
         {"xclip", "-selection", "clipboard", "-t", "x-special/gnome-copied-files", "-i"},
         std::string("cut\nfile:///tmp/a%20b.txt\nfile:///tmp/c.txt\0", 44),
         kFileUrlType,
         [](const PasteboardSnapshot& s) {
             EXPECT_EQ(s.filePaths(), (std::vector<std::string>{"/tmp/a b.txt", "/tmp/c.txt"}));
         }},
        {"png",
         {"xclip", "-selection", "clipboard", "-t", "image/png", "-i"},
         pngBytes(),
         kPngType,
         [](const PasteboardSnapshot& s) {
             ASSERT_TRUE(s.image.has_value());
             EXPECT_EQ(s.image->type, kPngType);
             EXPECT_EQ(s.image->data, bytesOf(pngBytes()));
         }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto before = copyWith(c.command, c.data);
        // Let any straggling notifications arrive before counting.
        eventually([] { return false; }, 100ms, [this] { pump(); });
        EXPECT_EQ(pasteboard_->changeCount(), before + 1);
        const auto types = pasteboard_->types();
        EXPECT_NE(std::ranges::find(types, c.role), types.end());
        EXPECT_FALSE(isPrivate(types, passwordManagerHint(*pasteboard_, types)));
        const auto snapshot = pasteboard_->snapshot();
        ASSERT_TRUE(snapshot.has_value());
        c.check(*snapshot);
    }
}

TEST_F(X11PasteboardTests, ATwentyMegabyteCopyArrivesWhole) {
    std::string data(20 * 1024 * 1024, 'x');
    for (std::size_t i = 0; i < data.size(); i += 4096) data[i] = char('a' + (i / 4096) % 26);
    copyWith({"xclip", "-selection", "clipboard", "-i"}, data);
    const auto start = Clock::now();
    const auto snapshot = pasteboard_->snapshot();
    const auto elapsed = std::chrono::duration<double>(Clock::now() - start).count();
    ASSERT_TRUE(snapshot.has_value());
    ASSERT_TRUE(snapshot->string.has_value());
    EXPECT_EQ(snapshot->string->size(), data.size());
    EXPECT_TRUE(*snapshot->string == data);
    RecordProperty("seconds", std::to_string(elapsed));
}

TEST_F(X11PasteboardTests, OurWriteCarriesItsMarkersForOtherTools) {
    struct Case {
        ClipPayload payload;
        std::optional<std::string_view> source;
        std::vector<std::string_view> targets;
        std::vector<std::string_view> absent;
    };
    const std::vector<Case> cases{
        {ClipPayload{.text = "ours"},
         "app.harbexapps.clip",
         {"app.harbexapps.clip.own", "UTF8_STRING", "STRING", "org.nspasteboard.source"},
         {"org.nspasteboard.ConcealedType", "x-kde-passwordManagerHint"}},
        {ClipPayload{.text = "hunter2", .concealed = true},
         std::nullopt,
         {"app.harbexapps.clip.own", "org.nspasteboard.ConcealedType", "x-kde-passwordManagerHint"},
         {"org.nspasteboard.source"}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(*c.payload.text);
        pasteboard_->write(c.payload, c.source);
        const auto targets = read({"xclip", "-selection", "clipboard", "-o", "-t", "TARGETS"});
        for (auto target : c.targets)
            EXPECT_TRUE(hasLine(targets.output, target)) << target << " in " << targets.output;
        for (auto target : c.absent) EXPECT_FALSE(hasLine(targets.output, target)) << target;
        EXPECT_EQ(read({"xclip", "-selection", "clipboard", "-o"}).output, *c.payload.text);
        EXPECT_EQ(read({"xsel", "--clipboard", "--output"}).output, *c.payload.text);
        // Older clients ask for Latin-1 STRING by name.
        EXPECT_EQ(read({"xclip", "-selection", "clipboard", "-o", "-t", "STRING"}).output,
                  *c.payload.text);
        if (c.payload.concealed) {
            EXPECT_EQ(
                read({"xclip", "-selection", "clipboard", "-o", "-t", "x-kde-passwordManagerHint"})
                    .output,
                "secret");
        }
        if (c.source) {
            EXPECT_EQ(
                read({"xclip", "-selection", "clipboard", "-o", "-t", "org.nspasteboard.source"})
                    .output,
                *c.source);
        }
    }
}

TEST_F(X11PasteboardTests, ALargeWriteTravelsToOtherToolsInChunks) {
    std::string text(3 * 1024 * 1024 + 17, 'q');
    for (std::size_t i = 0; i < text.size(); i += 1000) text[i] = char('0' + (i / 1000) % 10);
    pasteboard_->write(ClipPayload{.text = text}, std::nullopt);
    const auto result = read({"xclip", "-selection", "clipboard", "-o"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output.size(), text.size());
    EXPECT_TRUE(result.output == text);
    EXPECT_EQ(pasteboard_->activeTransfers(), 0u) << "the finished transfer is forgotten";
}

TEST_F(X11PasteboardTests, ACopyMarkedSecretIsPrivateWhateverWroteIt) {
    // A password manager's copy with several targets, first from a scripted owner and then from
    // a second instance of our own adapter on another connection.
    ScriptedOwner owner(display());
    auto other = connect();
    ASSERT_TRUE(other);
    X11Pasteboard otherPasteboard(*other);
    struct Case {
        const char* name;
        std::function<void()> copy;
        bool isPrivateCopy;
    };
    const std::vector<Case> cases{
        {"secret hint",
         [&] {
             owner.offer({{"UTF8_STRING", bytesOf("hunter2")},
                          {"x-kde-passwordManagerHint", bytesOf("secret")}});
         },
         true},
        {"public hint",
         [&] {
             owner.offer({{"UTF8_STRING", bytesOf("hunter2")},
                          {"x-kde-passwordManagerHint", bytesOf("public")}});
         },
         false},
        {"concealed write",
         [&] {
             otherPasteboard.write(ClipPayload{.text = "hunter2", .concealed = true}, std::nullopt);
         },
         true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto before = pasteboard_->changeCount();
        c.copy();
        // The second adapter answers only when its connection is pumped.
        auto pumpBoth = [&] {
            other->dispatch();
            pump();
        };
        ASSERT_TRUE(
            eventually([&] { return pasteboard_->changeCount() > before; }, 5000ms, pumpBoth));
        std::atomic<bool> done = false;
        std::thread server([&] {
            // Our reads block this thread, so the other adapter serves from a helper thread.
            eventually([&] { return done.load(); }, 5000ms, [&] { other->dispatch(); });
        });
        const auto types = pasteboard_->types();
        const auto hint = passwordManagerHint(*pasteboard_, types).value_or("");
        done = true;
        server.join();
        EXPECT_EQ(isPrivate(types, hint), c.isPrivateCopy) << hint;
    }
}

TEST_F(X11PasteboardTests, OddEncodingsAreDecoded) {
    ScriptedOwner owner(display());
    auto utf16le = [](std::u16string_view text, bool bom) {
        Bytes out;
        if (bom) out = {0xFF, 0xFE};
        for (char16_t unit : text) {
            out.push_back(std::uint8_t(unit & 0xFF));
            out.push_back(std::uint8_t(unit >> 8));
        }
        return out;
    };
    struct Case {
        const char* name;
        std::vector<ScriptedOwner::Offer> offers;
        std::function<void(const PasteboardSnapshot&)> check;
    };
    const std::vector<Case> cases{
        {"Latin-1 STRING",
         {{"STRING", Bytes{'c', 'a', 'f', 0xE9}}},
         [](const PasteboardSnapshot& s) { EXPECT_EQ(s.string, "café"); }},
        {"UTF-16 html with a byte-order mark",
         {{"text/html", utf16le(u"<i>é😀</i>", true)}},
         [](const PasteboardSnapshot& s) { EXPECT_EQ(s.html, bytesOf("<i>é😀</i>")); }},
        {"UTF-16 link without a mark",
         {{"text/x-moz-url", utf16le(u"https://a.example/\nA page", false)}},
         [](const PasteboardSnapshot& s) {
             EXPECT_EQ(s.url, "https://a.example/");
             EXPECT_EQ(s.urlTitle, "A page");
         }},
        {"GNOME file list",
         {{"x-special/gnome-copied-files", bytesOf("copy\nfile:///tmp/x.txt")}},
         [](const PasteboardSnapshot& s) {
             EXPECT_EQ(s.filePaths(), std::vector<std::string>{"/tmp/x.txt"});
         }},
        {"UTF8 preferred over STRING",
         {{"STRING", bytesOf("latin")}, {"UTF8_STRING", bytesOf("utf8 ✓")}},
         [](const PasteboardSnapshot& s) { EXPECT_EQ(s.string, "utf8 ✓"); }},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto before = pasteboard_->changeCount();
        owner.offer(c.offers);
        ASSERT_TRUE(eventually([&] { return pasteboard_->changeCount() > before; }));
        const auto snapshot = pasteboard_->snapshot();
        ASSERT_TRUE(snapshot.has_value());
        c.check(*snapshot);
    }
}

TEST_F(X11PasteboardTests, AnOwnerThatNeverAnswersCostsOneBoundedWait) {
    ScriptedOwner owner(display());
    const auto before = pasteboard_->changeCount();
    owner.offer({{"UTF8_STRING", bytesOf("never sent")}}, ScriptedOwner::Answers::never);
    ASSERT_TRUE(eventually([&] { return pasteboard_->changeCount() > before; }));

    const auto start = Clock::now();
    EXPECT_TRUE(pasteboard_->types().empty());
    EXPECT_FALSE(pasteboard_->snapshot().has_value());
    EXPECT_FALSE(pasteboard_->markerValue(kPasswordManagerHintType).has_value());
    const auto elapsed = Clock::now() - start;
    EXPECT_GE(elapsed, X11Pasteboard::kRequestTimeout);
    EXPECT_LT(elapsed, 2 * X11Pasteboard::kRequestTimeout) << "one wait, not one per read";
    EXPECT_EQ(owner.requested(), std::vector<std::string>{"TARGETS"});

    // The next copy is read normally again.
    owner.offer({{"UTF8_STRING", bytesOf("answered")}});
    ASSERT_TRUE(eventually([&] { return pasteboard_->changeCount() > before + 1; }));
    const auto snapshot = pasteboard_->snapshot();
    ASSERT_TRUE(snapshot.has_value());
    EXPECT_EQ(snapshot->string, "answered");
}

}  // namespace
}  // namespace harbex
