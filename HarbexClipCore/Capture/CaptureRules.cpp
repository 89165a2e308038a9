#include "HarbexClipCore/Capture/CaptureRules.hpp"

#include <algorithm>

#include "HarbexClipCore/Capture/CaptureText.hpp"
#include "HarbexClipCore/Capture/PrivacyMarkers.hpp"
#include "HarbexClipCore/Pasteboard/PasteboardTypes.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"

namespace harbex {

CaptureRuleSettings CaptureRuleSettings::from(const ClipSettings& settings) {
    CaptureRuleSettings rules;
    rules.excludedApps = settings.excludedApps;
    rules.skipPasswordManagers = settings.skipPasswordManagers;
    rules.pausedUntil = settings.pausedUntil;
    rules.keptKinds.assign(settings.keptKinds.begin(), settings.keptKinds.end());
    rules.ignoresShortCopies = settings.ignoresShortCopies;
    rules.minimumLength = settings.window.minimumLength;
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

}  // namespace harbex
