#include "tests/Support/PasteboardContract.hpp"

namespace harbex {
namespace {

class MemoryPasteboardHarness final : public PasteboardHarness {
public:
    ClipPasteboard& pasteboard() override { return pasteboard_; }
    void copyFromAnotherApp(const std::vector<PasteboardFlavour>& flavours) override {
        pasteboard_.copy(flavours);
        pasteboard_.forgetRequests();
    }
    std::vector<std::string> requestedTypes() override { return pasteboard_.requestedTypes(); }
    bool quitAnotherApp() override {
        pasteboard_.ownerQuits();
        return true;
    }

private:
    MemoryPasteboard pasteboard_;
};

INSTANTIATE_TEST_SUITE_P(MemoryPasteboard, ClipPasteboardContract,
                         testing::Values(PasteboardImplementation{
                             "MemoryPasteboard",
                             [] { return std::make_unique<MemoryPasteboardHarness>(); }}));

}  // namespace
}  // namespace harbex
