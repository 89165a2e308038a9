#include "HarbexClipCore/Capture/ClipDetector.hpp"

#include <string>

#include "HarbexClipCore/Capture/CaptureText.hpp"
#include "HarbexClipCore/Capture/CodePatterns.hpp"
#include "HarbexClipCore/Capture/SensitiveDetector.hpp"
#include "HarbexClipCore/Capture/TextDetails.hpp"
#include "HarbexClipCore/Support/Digest.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"
#include "HarbexClipCore/Support/Url.hpp"
#include "HarbexClipCore/Text/ClipColorFormat.hpp"
#include "HarbexClipCore/Text/ColorParser.hpp"

namespace harbex {
namespace {

// Longer texts are not colours; the parser need not see them.
constexpr std::size_t kLongestColorText = 128;

std::optional<std::string> sanitized(const std::optional<std::string>& text) {
    if (!text) return std::nullopt;
    return sanitizedUtf8(*text);
}

bool startsWithWww(std::string_view text) {
    if (text.size() < 4 || text[3] != '.') return false;
    for (std::size_t i = 0; i < 3; ++i) {
        if (text[i] != 'w' && text[i] != 'W') return false;
    }
    return true;
}

ClipSource sourceOf(const PasteboardSnapshot& snapshot, const DetectionContext& context) {
    if (context.appID) return ClipSource{context.appID, context.appName};
    // No front application known: the copy's own declaration is the best guess.
    return ClipSource{sanitized(snapshot.sourceID), std::nullopt};
}

DetectedClip finish(ClipContent content, const PasteboardSnapshot& snapshot,
                    const DetectionContext& context) {
    std::vector<ClipDetail> details;
    const bool typedText = content.kind == ClipKind::text || content.kind == ClipKind::richText ||
                           content.kind == ClipKind::code;
    if (typedText && content.text) details = TextDetails::of(*content.text);

    const bool sensitive = context.sensitiveDetection == SensitiveDetection::on && content.text &&
                           content.kind != ClipKind::file && content.kind != ClipKind::image &&
                           SensitiveDetector::isSensitive(*content.text);
    DetectedClip detected{
        ClipItem::make(std::move(content), std::move(details), sourceOf(snapshot, context),
                       context.now,
                       sensitive ? ClipSensitivity::sensitive : ClipSensitivity::ordinary),
        std::nullopt, std::nullopt, std::nullopt};
    if (sensitive) detected.item.expiresAt = context.now + context.sensitiveLifetime;
    detected.appID = detected.item.appID;
    return detected;
}

ClipContent textContent(std::string text, const PasteboardSnapshot& snapshot) {
    ClipContent content;
    const std::string_view trimmed = trimmingWhiteSpace(text);
    if (trimmed.size() <= kLongestColorText) {
        if (auto color = ColorParser::parse(trimmed)) {
            content.kind = ClipKind::color;
            content.colorHex = colorText(*color, ClipColorFormat::hex);
            content.text = std::move(text);
            return content;
        }
    }
    if (ClipDetector::isWebAddress(trimmed)) {
        content.kind = ClipKind::link;
        content.text = std::string(trimmed);
        content.linkTitle = sanitized(snapshot.urlTitle);
        return content;
    }
    if (looksLikeCode(text)) {
        content.kind = ClipKind::code;
    } else if (snapshot.rtf || snapshot.html) {
        content.kind = ClipKind::richText;
        content.rtf = snapshot.rtf;
        content.html = snapshot.html;
    }
    content.text = std::move(text);
    return content;
}

}  // namespace

bool ClipDetector::isWebAddress(std::string_view text) {
    text = trimmingWhiteSpace(text);
    if (text.empty()) return false;
    if (startsWithWww(text)) {
        // "www.example.org" is an address once a scheme is put in front; "www." alone is not.
        const auto url = Url::parse("https://" + std::string(text));
        return url && url->hasHost() && url->host->size() > 4 &&
               url->host->find('.', 4) != std::string::npos;
    }
    const auto url = Url::parse(text);
    return url && (url->scheme == "http" || url->scheme == "https") && url->hasHost();
}

std::optional<DetectedClip> ClipDetector::detect(const PasteboardSnapshot& snapshot,
                                                 const DetectionContext& context) const {
    if (!snapshot.fileURLs.empty()) {
        std::vector<std::string> paths = snapshot.filePaths();
        if (!paths.empty()) {
            for (auto& path : paths) path = sanitizedUtf8(path);
            ClipContent content;
            content.kind = ClipKind::file;
            content.filePaths = std::move(paths);
            return finish(std::move(content), snapshot, context);
        }
    }
    if (snapshot.image) {
        if (auto detected = detectImage(snapshot, context)) return detected;
    }
    if (snapshot.string && !snapshot.string->empty()) {
        return finish(textContent(sanitizedUtf8(*snapshot.string), snapshot), snapshot, context);
    }
    if (snapshot.url && !snapshot.url->empty()) {
        ClipContent content;
        content.kind = ClipKind::link;
        content.text = sanitizedUtf8(*snapshot.url);
        content.linkTitle = sanitized(snapshot.urlTitle);
        return finish(std::move(content), snapshot, context);
    }
    return std::nullopt;
}

std::optional<DetectedClip> ClipDetector::detectImage(const PasteboardSnapshot& snapshot,
                                                      const DetectionContext& context) const {
    const ClipImagePayload& image = *snapshot.image;
    const auto size = codec_.imageSize(image.data, image.type);
    if (!size) return std::nullopt;

    // The digest names the copy by the bytes as copied, so the same copy always merges, whatever
    // encoding ends up stored.
    std::string digest = sha256Hex(image.data);
    EncodedImage stored{image.type, image.data};
    if (auto smaller = codec_.compressedCopy(image.data, image.type);
        smaller && !smaller->data.empty() && smaller->data.size() < image.data.size()) {
        stored = std::move(*smaller);
    }
    ClipContent content;
    content.kind = ClipKind::image;
    content.image = ClipImageInfo{stored.type, size->width, size->height,
                                  std::int64_t(stored.data.size()), std::move(digest)};
    DetectedClip detected = finish(std::move(content), snapshot, context);
    detected.imageData = std::move(stored.data);
    detected.thumbnail = codec_.thumbnail(image.data, image.type, kThumbnailMaximumSide);
    return detected;
}

}  // namespace harbex
