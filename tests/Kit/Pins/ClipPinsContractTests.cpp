// The behaviour every ClipPins must share, run against the in-memory double and the bridge over
// the shared file, so that engine tests written against the double hold for the real thing.

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "HarbexClipCore/Testing/MemoryClipPins.hpp"
#include "HarbexKit/ClipPinsBridge.hpp"
#include "HarbexKit/Testing/MemoryDocumentNotifier.hpp"

namespace harbex {
namespace {

namespace fs = std::filesystem;

// Owns whatever the implementation needs (a folder, a bus) for the length of one test.
struct PinsUnderTest {
    virtual ~PinsUnderTest() = default;
    virtual ClipPins& pins() = 0;
};

struct MemoryPins final : PinsUnderTest {
    ClipPins& pins() override { return memory; }
    MemoryClipPins memory;
};

struct BridgePins final : PinsUnderTest {
    BridgePins() {
        std::string pattern = (fs::temp_directory_path() / "harbex-contract-XXXXXX").string();
        folder = ::mkdtemp(pattern.data());
        bridge = std::make_unique<ClipPinsBridge>(notifier, folder);
    }
    ~BridgePins() override {
        bridge.reset();
        std::error_code error;
        fs::remove_all(folder, error);
    }
    ClipPins& pins() override { return *bridge; }

    fs::path folder;
    MemoryDocumentBus bus;
    MemoryDocumentNotifier notifier{bus};
    std::unique_ptr<ClipPinsBridge> bridge;
};

struct Implementation {
    const char* name;
    std::function<std::unique_ptr<PinsUnderTest>()> make;
};

ClipItem copyOf(ClipKind kind, std::string text) {
    ClipContent content;
    content.kind = kind;
    content.text = std::move(text);
    return ClipItem::make(std::move(content), {}, ClipSource{"org.example.App", "Example"},
                          Date{720000000}, ClipSensitivity::ordinary);
}

class ClipPinsContractTests : public ::testing::TestWithParam<Implementation> {
protected:
    void SetUp() override { subject = GetParam().make(); }
    ClipPins& pins() { return subject->pins(); }

    std::unique_ptr<PinsUnderTest> subject;
};

TEST_P(ClipPinsContractTests, PinsKeepTheirOrderAndOneEntryPerCopy) {
    const ClipItem first = copyOf(ClipKind::text, "first");
    ClipItem second = copyOf(ClipKind::link, "https://example.com/");
    const ClipItem third = copyOf(ClipKind::code, "x = 1");
    ASSERT_TRUE(pins().pin(first));
    ASSERT_TRUE(pins().pin(second));
    ASSERT_TRUE(pins().pin(third));
    second.text = "https://example.com/changed";
    ASSERT_TRUE(pins().pin(second));

    EXPECT_EQ(pins().pinnedIDs(), (std::vector<Uuid>{first.id, second.id, third.id}));
    const auto items = pins().pinnedItems();
    ASSERT_EQ(items.size(), 3u);
    EXPECT_EQ(items[1].text, "https://example.com/changed");
    for (const auto& item : items) EXPECT_TRUE(pins().isPinned(item.id));
}

TEST_P(ClipPinsContractTests, PinnedCopiesComeBackWithTheirContentKey) {
    const ClipItem item = copyOf(ClipKind::text, "keep me");
    ASSERT_TRUE(pins().pin(item));
    const auto items = pins().pinnedItems();
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(items[0].id, item.id);
    EXPECT_EQ(items[0].kind, item.kind);
    EXPECT_EQ(items[0].text, item.text);
    EXPECT_EQ(items[0].date, item.date);
    EXPECT_EQ(items[0].appName, item.appName);
    EXPECT_EQ(items[0].fingerprint, item.fingerprint);
}

TEST_P(ClipPinsContractTests, UnpinningRemovesOnlyThatPinAndToleratesRepeats) {
    const ClipItem kept = copyOf(ClipKind::text, "kept");
    const ClipItem dropped = copyOf(ClipKind::text, "dropped");
    ASSERT_TRUE(pins().pin(kept));
    ASSERT_TRUE(pins().pin(dropped));

    ASSERT_TRUE(pins().unpin(dropped.id));
    ASSERT_TRUE(pins().unpin(dropped.id));
    ASSERT_TRUE(pins().unpin(Uuid::random()));

    EXPECT_FALSE(pins().isPinned(dropped.id));
    EXPECT_EQ(pins().pinnedIDs(), std::vector<Uuid>{kept.id});
}

TEST_P(ClipPinsContractTests, ASensitiveCopyIsRefused) {
    ClipItem card = copyOf(ClipKind::text, "5555 5555 5555 4444");
    card.isSensitive = true;
    const auto pinned = pins().pin(card);
    ASSERT_FALSE(pinned);
    EXPECT_EQ(pinned.error().code, ClipPinsError::Code::sensitive);
    EXPECT_FALSE(pins().isPinned(card.id));
}

TEST_P(ClipPinsContractTests, OurOwnChangesAreNotReportedAsOutsideChanges) {
    int changes = 0;
    pins().setOnChange([&] { ++changes; });
    const ClipItem item = copyOf(ClipKind::text, "mine");
    ASSERT_TRUE(pins().pin(item));
    ASSERT_TRUE(pins().unpin(item.id));
    EXPECT_EQ(changes, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Implementations, ClipPinsContractTests,
    ::testing::Values(Implementation{"Memory", [] { return std::make_unique<MemoryPins>(); }},
                      Implementation{"Bridge", [] { return std::make_unique<BridgePins>(); }}),
    [](const ::testing::TestParamInfo<Implementation>& info) { return info.param.name; });

}  // namespace
}  // namespace harbex
