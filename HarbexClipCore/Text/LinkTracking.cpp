#include "HarbexClipCore/Text/LinkTracking.hpp"

#include <algorithm>
#include <array>
#include <vector>

#include "HarbexClipCore/Support/Url.hpp"

namespace harbex {

namespace {

constexpr std::array<std::string_view, 3> kTrackingPrefixes = {"utm_", "mtm_", "hsa_"};

constexpr std::string_view kTrackingNames[] = {
    "fbclid",        "gclid",     "gclsrc",    "dclid",      "gbraid",     "wbraid",
    "msclkid",       "mc_eid",    "mc_cid",    "igshid",     "igsh",       "yclid",
    "ysclid",        "_hsenc",    "_hsmi",     "__hstc",     "__hssc",     "__hsfp",
    "hsctatracking", "mkt_tok",   "vero_id",   "vero_conv",  "oly_enc_id", "oly_anon_id",
    "ref_src",       "ref_url",   "s_cid",     "_ga",        "_gl",        "twclid",
    "ttclid",        "li_fat_id", "epik",      "rb_clickid", "wickedid",   "srsltid",
    "pk_campaign",   "pk_kwd",    "pk_source", "pk_medium",  "pk_content",
};

bool isSpace(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool equalsIgnoringCase(std::string_view a, std::string_view b) {
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return lowered(x) == lowered(y);
           });
}

}  // namespace

bool isTrackingParameter(std::string_view name) {
    for (std::string_view prefix : kTrackingPrefixes) {
        if (name.size() > prefix.size() &&
            equalsIgnoringCase(name.substr(0, prefix.size()), prefix))
            return true;
    }
    return std::any_of(std::begin(kTrackingNames), std::end(kTrackingNames),
                       [&](std::string_view known) { return equalsIgnoringCase(name, known); });
}

std::optional<std::string> linkWithoutTracking(std::string_view text) {
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    auto url = Url::parse(text);
    if (!url || (url->scheme != "http" && url->scheme != "https") || !url->hasHost())
        return std::nullopt;

    std::vector<UrlQueryItem> items = url->queryItems();
    const auto firstTracker = std::remove_if(items.begin(), items.end(), [](const auto& item) {
        return isTrackingParameter(item.name);
    });
    // Untouched links come back byte for byte, as the user copied them.
    if (firstTracker == items.end()) return std::string(text);
    items.erase(firstTracker, items.end());
    url->setQueryItems(items);
    return url->string();
}

}  // namespace harbex
