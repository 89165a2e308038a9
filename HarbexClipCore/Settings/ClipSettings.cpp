#include "HarbexClipCore/Settings/ClipSettings.hpp"

#include <cmath>

namespace harbex {

namespace {

JsonStatus notAnObject() { return std::unexpected(JsonError{{}, "expected an object"}); }

// A shortcut that the user may have turned off: null is written so that "none" survives a load
// instead of turning back into the default.
struct NullableShortcut {
    const std::optional<ClipShortcut>& shortcut;
};

JsonValue encodeJson(const NullableShortcut& value) {
    return value.shortcut ? encodeJson(*value.shortcut) : JsonValue(nullptr);
}

// Absent → unchanged; null → none; a value that decodes → it; anything else → unchanged.
template <class T>
void readOptional(const JsonLenientReader& reader, std::string_view key, std::optional<T>& out) {
    const JsonValue* value = reader.find(key);
    if (!value) return;
    if (value->is_null()) {
        out.reset();
        return;
    }
    T decoded{};
    if (decodeJson(*value, decoded)) out = std::move(decoded);
}

// Kinds a newer version added are dropped rather than costing the user the whole choice.
void readKinds(const JsonLenientReader& reader, std::string_view key, std::set<ClipKind>& out) {
    const JsonValue* value = reader.find(key);
    if (!value) return;
    const auto* array = value->if_array();
    if (!array) return;
    std::set<ClipKind> kinds;
    for (const auto& element : *array) {
        const auto* name = element.if_string();
        if (!name) return;
        if (auto kind = enumFromName<ClipKind>(std::string_view(name->data(), name->size()))) {
            kinds.insert(*kind);
        }
    }
    out = std::move(kinds);
}

}  // namespace

JsonValue encodeJson(const ClipPanelSettings& settings) {
    return JsonObjectWriter()
        .field("trigger", settings.trigger)
        .field("fallback", NullableShortcut{settings.fallback})
        .field("size", settings.size)
        .field("position", settings.position)
        .field("showsPreview", settings.showsPreview)
        .field("showsAppIcons", settings.showsAppIcons)
        .field("returnCopiesOnly", settings.returnCopiesOnly)
        .field("stackMode", settings.stackMode)
        .take();
}

JsonStatus decodeJson(const JsonValue& json, ClipPanelSettings& out) {
    const JsonLenientReader reader(json);
    if (!reader.isObject()) return notAnObject();
    ClipPanelSettings value;
    reader.read("trigger", value.trigger);
    readOptional(reader, "fallback", value.fallback);
    reader.read("size", value.size);
    reader.read("position", value.position);
    reader.read("showsPreview", value.showsPreview);
    reader.read("showsAppIcons", value.showsAppIcons);
    reader.read("returnCopiesOnly", value.returnCopiesOnly);
    reader.read("stackMode", value.stackMode);
    out = std::move(value);
    return {};
}

JsonValue encodeJson(const ClipWindowSettings& settings) {
    return JsonObjectWriter()
        .field("appearance", settings.appearance)
        .field("soundOnCopy", settings.soundOnCopy)
        .field("hapticOnCopy", settings.hapticOnCopy)
        .field("sort", settings.sort)
        .field("layout", settings.layout)
        .field("recognisesDetails", settings.recognisesDetails)
        .field("stripsTrackingOnCopy", settings.stripsTrackingOnCopy)
        .field("keepsImages", settings.keepsImages)
        .field("ignoresSpacesOnly", settings.ignoresSpacesOnly)
        .field("minimumLength", settings.minimumLength)
        .optional("pauseShortcut", settings.pauseShortcut)
        .field("clearKeepsPins", settings.clearKeepsPins)
        .field("keepsClipboardOnQuit", settings.keepsClipboardOnQuit)
        .take();
}

JsonStatus decodeJson(const JsonValue& json, ClipWindowSettings& out) {
    const JsonLenientReader reader(json);
    if (!reader.isObject()) return notAnObject();
    ClipWindowSettings value;
    reader.read("appearance", value.appearance);
    reader.read("soundOnCopy", value.soundOnCopy);
    reader.read("hapticOnCopy", value.hapticOnCopy);
    reader.read("sort", value.sort);
    reader.read("layout", value.layout);
    reader.read("recognisesDetails", value.recognisesDetails);
    reader.read("stripsTrackingOnCopy", value.stripsTrackingOnCopy);
    reader.read("keepsImages", value.keepsImages);
    reader.read("ignoresSpacesOnly", value.ignoresSpacesOnly);
    reader.read("minimumLength", value.minimumLength);
    readOptional(reader, "pauseShortcut", value.pauseShortcut);
    reader.read("clearKeepsPins", value.clearKeepsPins);
    reader.read("keepsClipboardOnQuit", value.keepsClipboardOnQuit);
    out = std::move(value);
    return {};
}

JsonValue encodeJson(const ClipSettings& settings) {
    return JsonObjectWriter()
        .field("retention", settings.retention)
        .field("maxItems", settings.maxItems)
        .field("imageLimit", settings.imageLimit)
        .field("textLimit", settings.textLimit)
        .field("excludedApps", settings.excludedApps)
        .field("skipPasswordManagers", settings.skipPasswordManagers)
        .field("detectSensitive", settings.detectSensitive)
        .field("sensitiveLifetime", settings.sensitiveLifetime)
        .field("hideFromScreenSharing", settings.hideFromScreenSharing)
        .optional("pausedUntil", settings.pausedUntil)
        .field("panel", settings.panel)
        .field("libraryShortcut", NullableShortcut{settings.libraryShortcut})
        .field("showsInDock", settings.showsInDock)
        .field("pastesPlainByDefault", settings.pastesPlainByDefault)
        .field("closesAfterPasting", settings.closesAfterPasting)
        .field("remembersFilter", settings.remembersFilter)
        .field("ignoresShortCopies", settings.ignoresShortCopies)
        .field("keptKinds", settings.keptKinds)
        .field("welcomeFinished", settings.welcomeFinished)
        .field("window", settings.window)
        .take();
}

JsonStatus decodeJson(const JsonValue& json, ClipSettings& out) {
    const JsonLenientReader reader(json);
    if (!reader.isObject()) return notAnObject();
    ClipSettings value;
    reader.read("retention", value.retention);
    reader.read("maxItems", value.maxItems);
    reader.read("imageLimit", value.imageLimit);
    reader.read("textLimit", value.textLimit);
    reader.read("excludedApps", value.excludedApps);
    reader.read("skipPasswordManagers", value.skipPasswordManagers);
    reader.read("detectSensitive", value.detectSensitive);
    // 1e400 parses as infinity, which could never be saved again: keep the default instead.
    if (double lifetime = 0;
        reader.read("sensitiveLifetime", lifetime) && std::isfinite(lifetime)) {
        value.sensitiveLifetime = lifetime;
    }
    reader.read("hideFromScreenSharing", value.hideFromScreenSharing);
    readOptional(reader, "pausedUntil", value.pausedUntil);
    reader.read("panel", value.panel);
    readOptional(reader, "libraryShortcut", value.libraryShortcut);
    reader.read("showsInDock", value.showsInDock);
    reader.read("pastesPlainByDefault", value.pastesPlainByDefault);
    reader.read("closesAfterPasting", value.closesAfterPasting);
    reader.read("remembersFilter", value.remembersFilter);
    reader.read("ignoresShortCopies", value.ignoresShortCopies);
    readKinds(reader, "keptKinds", value.keptKinds);
    reader.read("welcomeFinished", value.welcomeFinished);
    reader.read("window", value.window);
    out = std::move(value);
    return {};
}

}  // namespace harbex
