// Arbitrary clipboard contents through the capture path: the pasteboard reading, the rules and
// detection must never crash, and whatever is detected must be storable (valid UTF-8 text).
//
// Input: records of [type byte][length, 2 bytes little-endian][data]. The type byte picks one of
// the flavours below; its high bit declares the type without data (a provider that fails).

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "HarbexClipCore/Capture/CaptureRules.hpp"
#include "HarbexClipCore/Capture/ClipDetector.hpp"
#include "HarbexClipCore/Capture/SensitiveDetector.hpp"
#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"
#include "HarbexClipCore/Testing/MemoryPasteboard.hpp"
#include "HarbexClipCore/Testing/PngHeaderImageCodec.hpp"

namespace {

using namespace harbex;

constexpr std::array<std::string_view, 17> kTypes{
    kPlainTextType,
    kRtfType,
    kHtmlType,
    kUrlType,
    kUrlTitleType,
    kFileUrlType,
    kPngType,
    kTiffType,
    kJpegType,
    kHeicType,
    kOwnWriteType,
    kConcealedType,
    kSourceType,
    kPasswordManagerHintType,
    "org.nspasteboard.TransientType",
    "com.example.private",
    "text/x-other",
};

void require(bool condition) {
    if (!condition) __builtin_trap();
}

void requireValid(const std::optional<std::string>& text) {
    if (text) require(isValidUtf8(*text));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<MemoryPasteboard::Flavour> flavours;
    std::size_t offset = 0;
    while (offset + 3 <= size) {
        const std::uint8_t selector = data[offset];
        const std::size_t length = std::size_t(data[offset + 1]) | std::size_t(data[offset + 2])
                                                                       << 8;
        offset += 3;
        const std::size_t available = std::min(length, size - offset);
        const std::string_view type = kTypes[(selector & 0x7F) % kTypes.size()];
        if (selector & 0x80) {
            flavours.push_back(MemoryPasteboard::Flavour::declaredOnly(type));
        } else {
            flavours.push_back(MemoryPasteboard::Flavour::bytes(
                type, Bytes(data + offset, data + offset + available)));
        }
        offset += available;
    }

    MemoryPasteboard pasteboard;
    pasteboard.copy(std::move(flavours));
    const auto types = pasteboard.types();
    const auto hint = passwordManagerHint(pasteboard, types);
    CaptureRuleSettings settings;
    settings.keptKinds = {ClipKind::text, ClipKind::richText, ClipKind::link, ClipKind::image,
                          ClipKind::file, ClipKind::color,    ClipKind::code};
    settings.ignoresShortCopies = true;
    const DeclaredCopy copy{types, hint, std::string_view("org.example.app")};
    (void)skipBeforeReading(copy, settings, Date{0}, CaptureMode::sampled);

    const auto snapshot = pasteboard.snapshot();
    require(snapshot.has_value() == !types.empty());
    if (!snapshot) return 0;
    require(!(snapshot->html && std::ranges::find(types, kHtmlType) == types.end()));

    PngHeaderImageCodec codec;
    DetectionContext context;
    context.now = Date{0};
    const auto detected = ClipDetector(codec).detect(*snapshot, context);
    if (snapshot->string) (void)SensitiveDetector::isSensitive(*snapshot->string);
    if (!detected) return 0;

    const ClipItem& item = detected->item;
    requireValid(item.text);
    requireValid(item.linkTitle);
    requireValid(item.appID);
    if (item.filePaths) {
        for (const auto& path : *item.filePaths) require(isValidUtf8(path));
    }
    require(item.fingerprint.size() == 64);
    (void)skipAfterDetection(item.kind, item.text, settings);
    return 0;
}
