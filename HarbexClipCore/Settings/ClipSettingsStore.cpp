#include "HarbexClipCore/Settings/ClipSettingsStore.hpp"

#include <cmath>

namespace harbex {

namespace {

// JSON has no infinities or NaN; Boost.JSON would quietly write them as numbers that read back
// differently, so such a record is refused instead.
bool isEncodable(const ClipSettings& settings) {
    if (!std::isfinite(settings.sensitiveLifetime)) return false;
    if (settings.pausedUntil && !std::isfinite(settings.pausedUntil->seconds)) return false;
    return true;
}

}  // namespace

ClipSettings ClipSettingsStore::load(const ClipDefaults& defaults) {
    const auto data = defaults.data(kSettingsKey);
    if (!data) return ClipSettings::defaults();
    const auto json =
        parseJson(std::string_view(reinterpret_cast<const char*>(data->data()), data->size()));
    if (!json) return ClipSettings::defaults();
    ClipSettings settings;
    if (!decodeJson(*json, settings)) return ClipSettings::defaults();
    return settings;
}

void ClipSettingsStore::save(const ClipSettings& settings, ClipDefaults& defaults) {
    if (!isEncodable(settings)) return;
    std::string text;
    try {
        text = serializeJson(encodeJson(settings));
    } catch (const std::exception&) {
        return;  // out of memory: the previous record stays
    }
    defaults.setData(kSettingsKey, bytesOf(text));
}

ClipSettingsPage ClipSettingsStore::loadPage(const ClipDefaults& defaults) {
    if (const auto name = defaults.string(kPageKey)) {
        if (const auto page = enumFromName<ClipSettingsPage>(*name)) return *page;
    }
    return ClipSettingsPage::general;
}

void ClipSettingsStore::savePage(ClipSettingsPage page, ClipDefaults& defaults) {
    defaults.setString(kPageKey, enumName(page));
}

}  // namespace harbex
