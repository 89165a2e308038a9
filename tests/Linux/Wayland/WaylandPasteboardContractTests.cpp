#include <map>

#include "HarbexClip/Wayland/WaylandPasteboard.hpp"
#include "tests/Linux/Wayland/WaylandTestServer.hpp"
#include "tests/Support/PasteboardContract.hpp"

namespace harbex {
namespace {

using namespace testing_wayland;

// "Another application" is a scripted data-control source on its own connection (wl-copy can
// offer one flavour only and cannot say what was asked of it); the roles the contract speaks in
// become the MIME types Wayland applications offer.
class WaylandPasteboardHarness final : public PasteboardHarness {
public:
    WaylandPasteboardHarness()
        : pasteboard_(WaylandPasteboard::open(sharedSway().display().c_str()).value_or(nullptr)),
          owner_(sharedSway().display()) {}

    bool ready() const { return pasteboard_ && owner_.ready(); }
    ClipPasteboard& pasteboard() override { return *pasteboard_; }

    void copyFromAnotherApp(const std::vector<PasteboardFlavour>& flavours) override {
        std::vector<ScriptedSource::Offer> offers;
        for (auto& offer : linuxOffers(flavours, mimeFor))
            offers.push_back({std::move(offer.name), std::move(offer.data)});
        const auto before = pasteboard_->changeCount();
        owner_.offer(std::move(offers));
        ASSERT_TRUE(eventually([&] { return pasteboard_->changeCount() > before; }))
            << "the selection event never arrived";
    }

    std::vector<std::string> requestedTypes() override { return owner_.requested(); }

private:
    static std::string mimeFor(std::string_view role) {
        static const std::map<std::string_view, std::string> kMimeTypes{
            {kPlainTextType, "text/plain;charset=utf-8"},
            {kHtmlType, "text/html"},
            {kRtfType, "text/rtf"},
            {kFileUrlType, "text/uri-list"},
            {kPngType, "image/png"},
            {kTiffType, "image/tiff"},
            {kJpegType, "image/jpeg"},
            {kHeicType, "image/heic"}};
        auto it = kMimeTypes.find(role);
        return it == kMimeTypes.end() ? std::string(role) : it->second;
    }

    std::unique_ptr<WaylandPasteboard> pasteboard_;
    ScriptedSource owner_;
};

std::unique_ptr<PasteboardHarness> makeWaylandHarness() {
    if (!sharedSway().ready()) {
        [] { GTEST_SKIP() << "headless sway could not be started"; }();
        return nullptr;
    }
    auto harness = std::make_unique<WaylandPasteboardHarness>();
    EXPECT_TRUE(harness->ready()) << "no data-control client could connect to sway";
    return harness;
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(WaylandPasteboard, ClipPasteboardContract,
                         testing::Values(PasteboardImplementation{"WaylandPasteboard",
                                                                  makeWaylandHarness}));

}  // namespace harbex
