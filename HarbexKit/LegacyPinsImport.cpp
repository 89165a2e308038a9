#include "HarbexKit/LegacyPinsImport.hpp"

#include "HarbexClipCore/Support/AtomicFile.hpp"
#include "HarbexKit/SharedFolder.hpp"

namespace harbex {

std::filesystem::path legacyTidepoolClipboardFolder() {
    return userDataFolder() / "Harbex Tidepool" / "Clipboard";
}

std::expected<std::size_t, ClipPinsError> importLegacyPins(
    ClipDefaults& defaults, ClipPinsBridge& bridge, const std::filesystem::path& legacyFolder) {
    if (defaults.boolean(kLegacyTidepoolClipboardKey).value_or(false)) return 0;
    const auto fail = [](std::string detail) {
        return std::unexpected(ClipPinsError{ClipPinsError::Code::writeFailed, std::move(detail)});
    };
    const std::filesystem::path path = legacyFolder / ClipboardPins::kDocumentName;
    auto bytes = readFile(path);
    if (!bytes) {
        if (!bytes.error().isNotFound()) return fail(bytes.error().description());
        defaults.setBool(kLegacyTidepoolClipboardKey, true);
        return 0;
    }
    auto json =
        parseJson(std::string_view(reinterpret_cast<const char*>(bytes->data()), bytes->size()));
    if (!json) return fail(path.string() + ": " + json.error().description());
    auto old = decodeJsonAs<ClipboardPins>(*json);
    if (!old) return fail(path.string() + ": " + old.error().description());
    auto added = bridge.addMissingPins(old->pins);
    if (!added) return std::unexpected(added.error());
    defaults.setBool(kLegacyTidepoolClipboardKey, true);
    return *added;
}

}  // namespace harbex
