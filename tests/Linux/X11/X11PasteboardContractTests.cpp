#include <map>

#include "HarbexClip/Linux/X11Pasteboard.hpp"
#include "tests/Linux/X11/X11TestSupport.hpp"
#include "tests/Support/PasteboardContract.hpp"

namespace harbex {
namespace {

using namespace testing_x11;

// "Another application" is a scripted owner on its own connection; the roles the contract
// speaks in become the X targets real applications offer.
class X11PasteboardHarness final : public PasteboardHarness {
public:
    X11PasteboardHarness()
        : connection_(connect()),
          pasteboard_(std::make_unique<X11Pasteboard>(*connection_)),
          owner_(std::make_unique<ScriptedOwner>(sharedServer().display())) {}

    ClipPasteboard& pasteboard() override { return *pasteboard_; }

    void copyFromAnotherApp(const std::vector<PasteboardFlavour>& flavours) override {
        std::vector<ScriptedOwner::Offer> offers;
        std::optional<std::string> url;
        std::optional<std::string> title;
        for (const auto& flavour : flavours) {
            if (flavour.type == kUrlType || flavour.type == kUrlTitleType) {
                auto& slot = flavour.type == kUrlType ? url : title;
                slot = flavour.data ? stringOf(*flavour.data) : "";
                continue;
            }
            offers.push_back({targetFor(flavour.type), flavour.data});
        }
        if (url || title) {
            // Firefox's form: the URL, a newline, the title.
            std::string mozUrl = url.value_or("");
            if (title) mozUrl += "\n" + *title;
            offers.push_back({"text/x-moz-url", bytesOf(mozUrl)});
        }
        const auto before = pasteboard_->changeCount();
        owner_->offer(std::move(offers));
        ASSERT_TRUE(eventually([&] { return pasteboard_->changeCount() > before; }))
            << "the owner change never arrived";
    }

    std::vector<std::string> requestedTypes() override {
        std::vector<std::string> roles;
        for (const auto& target : owner_->requested()) {
            for (auto& role : X11Pasteboard::rolesForTarget(target)) roles.push_back(role);
        }
        return roles;
    }

    bool quitAnotherApp() override {
        const auto before = pasteboard_->changeCount();
        owner_.reset();  // its connection closes, as when a program exits
        EXPECT_TRUE(eventually([&] { return pasteboard_->changeCount() > before; }));
        owner_ = std::make_unique<ScriptedOwner>(sharedServer().display());
        return true;
    }

private:
    static std::string targetFor(std::string_view role) {
        static const std::map<std::string_view, std::string> kTargets{
            {kPlainTextType, "UTF8_STRING"}, {kHtmlType, "text/html"}, {kRtfType, "text/rtf"},
            {kFileUrlType, "text/uri-list"}, {kPngType, "image/png"},  {kTiffType, "image/tiff"},
            {kJpegType, "image/jpeg"},       {kHeicType, "image/heic"}};
        auto it = kTargets.find(role);
        return it == kTargets.end() ? std::string(role) : it->second;
    }

    std::unique_ptr<X11Connection> connection_;
    std::unique_ptr<X11Pasteboard> pasteboard_;
    std::unique_ptr<ScriptedOwner> owner_;
};

std::unique_ptr<PasteboardHarness> makeX11Harness() {
    if (!sharedServer().ready()) {
        [] { GTEST_SKIP() << "Xvfb could not be started, so there is no display to test"; }();
        return nullptr;
    }
    return std::make_unique<X11PasteboardHarness>();
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(X11Pasteboard, ClipPasteboardContract,
                         testing::Values(PasteboardImplementation{"X11Pasteboard",
                                                                  makeX11Harness}));

}  // namespace harbex
