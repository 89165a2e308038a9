#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>

#include "HarbexClip/Wayland/WaylandPasteboard.hpp"
#include "HarbexClipCore/Capture/PrivacyMarkers.hpp"
#include "HarbexClipCore/Pasteboard/FileUrls.hpp"
#include "tests/Linux/Wayland/WaylandTestServer.hpp"

namespace harbex {
namespace {

using namespace testing_wayland;
using Clock = std::chrono::steady_clock;

class WaylandPasteboardTests : public testing::Test {
protected:
    void SetUp() override {
        if (!sharedSway().ready()) GTEST_SKIP() << "headless sway could not be started";
        auto opened = WaylandPasteboard::open(sharedSway().display().c_str());
        ASSERT_TRUE(opened.has_value()) << describe(opened.error());
        pasteboard_ = std::move(*opened);
    }

    // Copies `data` with wl-copy `arguments` (kept running to serve it) and waits until the
    // pasteboard has seen the change; returns the count before the copy.
    std::int64_t wlCopy(const std::vector<std::string>& arguments, const std::string& data) {
        const auto file = std::filesystem::temp_directory_path() /
                          ("harbex-wayland-" + std::to_string(::getpid()) + ".in");
        std::ofstream(file, std::ios::binary) << data;
        const int input = ::open(file.c_str(), O_RDONLY);
        const auto before = pasteboard_->changeCount();
        std::vector<std::string> command{"wl-copy", "--foreground"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        tools_.emplace_back(command, sharedSway().environment(), input);
        ::close(input);
        EXPECT_TRUE(eventually([&] { return pasteboard_->changeCount() > before; }, 10000ms))
            << "wl-copy never took the clipboard";
        std::filesystem::remove(file);
        return before;
    }

    // Runs wl-paste while this thread serves our own selection to it.
    std::string wlPaste(const std::vector<std::string>& arguments) {
        std::vector<std::string> command{"wl-paste"};
        command.insert(command.end(), arguments.begin(), arguments.end());
        auto result = testing_x11::run(command, sharedSway().environment(), {},
                                       [this] { pasteboard_->dispatch(); });
        EXPECT_EQ(result.status, 0) << command.back();
        return result.output;
    }

    std::unique_ptr<WaylandPasteboard> pasteboard_;
    std::vector<Process> tools_;
};

std::string pngBytes() {
    return std::string("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\x01\0\0\0\x01", 24);
}

TEST_F(WaylandPasteboardTests, ACopyByWlCopyIsOneChangeWithItsContents) {
    EXPECT_EQ(pasteboard_->protocol(), "zwlr_data_control_manager_v1");
    const std::string large(4 * 1024 * 1024 + 7, 'x');
    const auto file = fileUrlFromPath("/home/me/a b.txt");
    struct Case {
        const char* name;
        std::vector<std::string> arguments;
        std::string data;
        std::function<void(const PasteboardSnapshot&)> check;
    };
    const std::vector<Case> cases{
        {"text",
         {},
         "grüße from wl-copy",
         [](const PasteboardSnapshot& s) { EXPECT_EQ(s.string, "grüße from wl-copy"); }},
        {"html",
         {"-t", "text/html"},
         "<b>bold</b>",
         [](const PasteboardSnapshot& s) {
             EXPECT_EQ(s.html, bytesOf("<b>bold</b>"));
             EXPECT_NE(std::ranges::find(s.types, kHtmlType), s.types.end());
         }},
        {"png",
         {"-t", "image/png"},
         pngBytes(),
         [](const PasteboardSnapshot& s) {
             ASSERT_TRUE(s.image.has_value());
             EXPECT_EQ(s.image->type, kPngType);
             EXPECT_EQ(s.image->data, bytesOf(pngBytes()));
         }},
        {"uri-list",
         {"-t", "text/uri-list"},
         file + "\r\n",
         [&](const PasteboardSnapshot& s) {
             EXPECT_EQ(s.fileURLs, std::vector<std::string>{file});
         }},
        {"invalid UTF-8 arrives as it was",
         {},
         "bad \xff\xfe bytes",
         [](const PasteboardSnapshot& s) { EXPECT_EQ(s.string, "bad \xff\xfe bytes"); }},
        {"4 MB of text, many pipe-fulls", {}, large, [&](const PasteboardSnapshot& s) {
             EXPECT_EQ(s.string, large);
         }}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto before = wlCopy(c.arguments, c.data);
        const auto snapshot = pasteboard_->snapshot();
        ASSERT_TRUE(snapshot.has_value());
        c.check(*snapshot);
        EXPECT_EQ(pasteboard_->changeCount(), before + 1) << "one copy, one change";
        EXPECT_FALSE(isPrivate(snapshot->types, snapshot->passwordManagerHint));
    }
}

TEST_F(WaylandPasteboardTests, OurWriteIsMarkedAndWlPasteReadsBackEveryFormat) {
    const ClipImagePayload png{std::string(kPngType), bytesOf(pngBytes())};
    const std::vector<ClipPayload> payloads{
        ClipPayload{.text = "naïve café",
                    .rtf = bytesOf("{\\rtf1 caf\\'e9}"),
                    .html = bytesOf("<i>café</i>"),
                    .concealed = true},
        ClipPayload{.url = "https://example.org/a?b=c"},
        ClipPayload{.fileURLs = {fileUrlFromPath("/tmp/a b.txt"), fileUrlFromPath("/tmp/ü.txt")}},
        ClipPayload{.image = png},
        ClipPayload{.text = std::string(3 * 1024 * 1024, 'w')},
    };
    for (const ClipPayload& payload : payloads) {
        const auto before = pasteboard_->changeCount();
        EXPECT_EQ(pasteboard_->write(payload, "app.harbexapps.clip"), before + 1);
        EXPECT_TRUE(pasteboard_->ownsClipboard());
        const auto types = pasteboard_->types();
        EXPECT_NE(std::ranges::find(types, kOwnWriteType), types.end());
        EXPECT_EQ(isPrivate(types, passwordManagerHint(*pasteboard_, types)), payload.concealed);

        const std::string listed = wlPaste({"--list-types"});
        for (const auto& flavour : flavoursForPayload(payload, "app.harbexapps.clip")) {
            SCOPED_TRACE(flavour.name);
            EXPECT_NE(listed.find(flavour.name + "\n"), std::string::npos);
            EXPECT_EQ(wlPaste({"--no-newline", "--type", flavour.name}), stringOf(flavour.data));
        }
        EXPECT_EQ(pasteboard_->activeTransfers(), 0u);
        EXPECT_EQ(pasteboard_->changeCount(), before + 1) << "serving is not a change";
    }

    // Someone else taking the selection is a change, and ours is let go.
    const auto before = wlCopy({}, "theirs");
    EXPECT_FALSE(pasteboard_->ownsClipboard());
    EXPECT_GT(pasteboard_->changeCount(), before);
}

TEST_F(WaylandPasteboardTests, AWriterThatNeverAnswersCostsOneBoundedWait) {
    ScriptedSource owner(sharedSway().display());
    const auto before = pasteboard_->changeCount();
    owner.offer({{"text/plain;charset=utf-8", bytesOf("never sent")},
                 {"text/html", bytesOf("<p>never</p>")},
                 {std::string(kSourceType), bytesOf("org.example.stuck")}},
                ScriptedSource::Answers::never);
    ASSERT_TRUE(eventually([&] { return pasteboard_->changeCount() > before; }));

    const auto start = Clock::now();
    const auto snapshot = pasteboard_->snapshot();
    const auto elapsed = Clock::now() - start;
    ASSERT_TRUE(snapshot.has_value());
    EXPECT_FALSE(snapshot->string.has_value());
    EXPECT_FALSE(snapshot->html.has_value());
    // The marker's read used up the one wait; nothing else was asked of a writer that stalled.
    EXPECT_LT(elapsed, 2 * WaylandPasteboard::kRequestTimeout) << "one wait, not one per read";
    EXPECT_EQ(owner.requested(), std::vector<std::string>{std::string(kSourceType)});

    // The next copy is read normally again.
    owner.offer({{"text/plain;charset=utf-8", bytesOf("answered")}});
    ASSERT_TRUE(eventually([&] { return pasteboard_->changeCount() > before + 1; }));
    EXPECT_EQ(pasteboard_->snapshot().value_or(PasteboardSnapshot{}).string, "answered");
}

TEST_F(WaylandPasteboardTests, AnOfferOfHundredsOfTypesKeepsABoundedList) {
    ScriptedSource owner(sharedSway().display());
    std::vector<ScriptedSource::Offer> offers{{"text/plain;charset=utf-8", bytesOf("first")}};
    for (int i = 0; i < 600; ++i) offers.push_back({"application/x-junk-" + std::to_string(i), {}});
    const auto before = pasteboard_->changeCount();
    owner.offer(std::move(offers));
    ASSERT_TRUE(eventually([&] { return pasteboard_->changeCount() > before; }));
    EXPECT_EQ(pasteboard_->offeredTypes().size(), WaylandPasteboard::kMaxTypes);
    EXPECT_EQ(pasteboard_->snapshot().value_or(PasteboardSnapshot{}).string, "first");
}

TEST_F(WaylandPasteboardTests, TheCompositorGoingAwayIsReportedOnceAndNothingSpins) {
    SwayServer own;
    ASSERT_TRUE(own.ready());
    auto opened = WaylandPasteboard::open(own.display().c_str());
    ASSERT_TRUE(opened.has_value());
    auto& pasteboard = **opened;
    pasteboard.write(ClipPayload{.text = "kept"}, std::nullopt);
    const auto count = pasteboard.changeCount();
    own.stop();

    ASSERT_TRUE(eventually([&] {
        pollfd descriptor{pasteboard.fd(), POLLIN, 0};
        if (::poll(&descriptor, 1, 0) > 0) pasteboard.dispatch();
        return pasteboard.failure().has_value();
    }));
    EXPECT_EQ(pasteboard.failure(), WaylandError::connectionLost);
    EXPECT_FALSE(pasteboard.dispatch());
    pollfd descriptor{pasteboard.fd(), POLLIN, 0};
    EXPECT_EQ(::poll(&descriptor, 1, 50), 0) << "a lost connection must not keep waking the loop";
    EXPECT_EQ(pasteboard.changeCount(), count);
    EXPECT_FALSE(pasteboard.snapshot().has_value());
    EXPECT_EQ(pasteboard.write(ClipPayload{.text = "nowhere"}, std::nullopt), count);
}

}  // namespace
}  // namespace harbex
