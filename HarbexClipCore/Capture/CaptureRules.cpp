#include "HarbexClipCore/Capture/CaptureRules.hpp"

#include <algorithm>

#include "HarbexClipCore/Capture/CaptureText.hpp"
#include "HarbexClipCore/Capture/PrivacyMarkers.hpp"
#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"
#include "HarbexClipCore/Text/ClipTransform.hpp"

namespace harbex {

CaptureRuleSettings CaptureRuleSettings::from(const ClipSettings& settings) {
    CaptureRuleSettings rules;
    rules.excludedApps = settings.excludedApps;
    rules.skipPasswordManagers = settings.skipPasswordManagers;
    rules.pausedUntil = settings.pausedUntil;
    rules.keptKinds.assign(settings.keptKinds.begin(), settings.keptKinds.end());
    rules.ignoresShortCopies = settings.ignoresShortCopies;
    rules.minimumLength = settings.window.minimumLength;
    rules.ignoresSpacesOnly = settings.window.ignoresSpacesOnly;
    rules.recognisesDetails = settings.window.recognisesDetails;
    rules.stripsTrackingOnCopy = settings.window.stripsTrackingOnCopy;
    rules.keepsImages = settings.window.keepsImages;
    rules.imageLimit = settings.imageLimit;
    rules.textLimit = settings.textLimit;
    return rules;
}

std::optional<SkipReason> skipBeforeReading(const DeclaredCopy& copy,
                                            const CaptureRuleSettings& settings, Date now,
                                            CaptureMode mode) {
    if (std::ranges::find(copy.types, kOwnWriteType) != copy.types.end())
        return SkipReason::ownCopy();
    if (isPrivate(copy.types, copy.passwordManagerHint)) return SkipReason::markedPrivate();
    if (mode == CaptureMode::forced) return std::nullopt;

    if (settings.pausedUntil && *settings.pausedUntil > now) return SkipReason::paused();
    if (!copy.frontAppID) return std::nullopt;
    const std::string_view app = *copy.frontAppID;
    if (std::ranges::find(settings.excludedApps, app) != settings.excludedApps.end())
        return SkipReason::excludedApp(std::string(app));
    if (settings.skipPasswordManagers && isPasswordManager(app))
        return SkipReason::excludedApp(std::string(app));
    return std::nullopt;
}

std::optional<SkipReason> skipAfterDetection(ClipKind kind, const std::optional<std::string>& text,
                                             const CaptureRuleSettings& settings) {
    if (std::ranges::find(settings.keptKinds, kind) == settings.keptKinds.end())
        return SkipReason::kindOff();
    const bool typedText =
        kind == ClipKind::text || kind == ClipKind::richText || kind == ClipKind::code;
    if (!settings.ignoresShortCopies || !typedText) return std::nullopt;

    const std::int64_t minimum =
        settings.minimumLength > 0 ? settings.minimumLength : kDefaultMinimumLength;
    const std::string_view trimmed = trimmingWhiteSpace(text ? std::string_view(*text) : "");
    if (!hasMoreCharactersThan(trimmed, std::size_t(minimum - 1))) return SkipReason::tooShort();
    return std::nullopt;
}

namespace {

bool isTypedText(ClipKind kind) {
    return kind == ClipKind::text || kind == ClipKind::richText || kind == ClipKind::code;
}

}  // namespace

std::optional<SkipReason> shapeForSettings(DetectedClip& detected,
                                           const PasteboardSnapshot& snapshot,
                                           const CaptureRuleSettings& settings) {
    ClipItem& item = detected.item;
    if (settings.ignoresSpacesOnly && isTypedText(item.kind) &&
        trimmingWhiteSpace(item.text ? std::string_view(*item.text) : "").empty()) {
        return SkipReason::tooShort();
    }
    if (!settings.recognisesDetails) item.details.clear();
    if (settings.stripsTrackingOnCopy && item.kind == ClipKind::link && item.text) {
        if (auto stripped = applyTransform(ClipTransform::stripTrackingFromLink, *item.text);
            stripped && *stripped != *item.text) {
            item.text = std::move(*stripped);
            item.fingerprint = fingerprint(item.kind, item.text, item.filePaths, std::nullopt);
        }
    }
    // Detection stores a smaller lossless encoding when there is one; keeping originals undoes
    // that. The digest names the bytes as copied either way, so repeats still merge.
    if (settings.keepsImages == ClipImageKeeping::original && item.image && snapshot.image &&
        detected.imageData && *detected.imageData != snapshot.image->data) {
        item.image->type = snapshot.image->type;
        item.image->byteCount = std::int64_t(snapshot.image->data.size());
        detected.imageData = snapshot.image->data;
    }
    return std::nullopt;
}

}  // namespace harbex
