#include "HarbexClipCore/Support/Url.hpp"

#include <array>
#include <charconv>

namespace harbex {

namespace {

constexpr std::array<std::string_view, 6> kWebSchemes{"http", "https", "ws", "wss", "ftp", "file"};

bool isAlpha(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isHexDigit(char c) { return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F'); }
char lowered(char c) { return (c >= 'A' && c <= 'Z') ? static_cast<char>(c - 'A' + 'a') : c; }

std::string lowercasedAscii(std::string_view text) {
    std::string out(text);
    for (char& c : out) c = lowered(c);
    return out;
}

// Characters no URL of ours may hold anywhere: white space and controls end a link, and quotes,
// angle brackets and backslashes are what surrounds one in prose or markup.
bool isForbiddenAnywhere(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte <= 0x20 || byte == 0x7F || c == '"' || c == '<' || c == '>' || c == '\\';
}

bool isForbiddenInHost(char c, bool webScheme) {
    switch (c) {
        case '#':
        case '/':
        case ':':
        case '?':
        case '@':
        case '[':
        case ']':
        case '^':
        case '|': return true;
        // Browsers decode escapes in hosts and then check again; such hosts are not worth
        // accepting as a copied link.
        case '%': return webScheme;
        default: return false;
    }
}

bool isValidIpv6(std::string_view inner) {
    if (inner.empty() || inner.size() > 45) return false;
    int colons = 0;
    std::size_t doubleColons = 0;
    for (std::size_t i = 0; i < inner.size(); ++i) {
        const char c = inner[i];
        if (c == ':') {
            ++colons;
            if (i + 1 < inner.size() && inner[i + 1] == ':') ++doubleColons;
        } else if (!isHexDigit(c) && c != '.') {
            return false;
        }
    }
    if (colons < 2 || colons > 7 || doubleColons > 1) return false;
    return inner.find(":::") == std::string_view::npos;
}

bool parsePort(std::string_view text, std::optional<std::uint16_t>& port) {
    if (text.empty()) return true;  // "host:" means the default port
    unsigned value = 0;
    for (char c : text) {
        if (!isDigit(c)) return false;
        value = value * 10 + static_cast<unsigned>(c - '0');
        if (value > 65535) return false;
    }
    port = static_cast<std::uint16_t>(value);
    return true;
}

bool parseAuthority(std::string_view authority, bool webScheme, Url& url) {
    const std::size_t at = authority.rfind('@');
    if (at != std::string_view::npos) {
        const std::string_view userInfo = authority.substr(0, at);
        const std::size_t colon = userInfo.find(':');
        url.user = std::string(userInfo.substr(0, colon));
        if (colon != std::string_view::npos) url.password = std::string(userInfo.substr(colon + 1));
        authority.remove_prefix(at + 1);
    }

    std::string_view hostPart = authority;
    std::string_view portPart;
    bool hasPort = false;
    if (!authority.empty() && authority.front() == '[') {
        const std::size_t close = authority.find(']');
        if (close == std::string_view::npos) return false;
        if (!isValidIpv6(authority.substr(1, close - 1))) return false;
        hostPart = authority.substr(0, close + 1);
        const std::string_view after = authority.substr(close + 1);
        if (!after.empty()) {
            if (after.front() != ':') return false;
            portPart = after.substr(1);
            hasPort = true;
        }
        url.host = lowercasedAscii(hostPart);
    } else {
        const std::size_t colon = authority.rfind(':');
        if (colon != std::string_view::npos) {
            hostPart = authority.substr(0, colon);
            portPart = authority.substr(colon + 1);
            hasPort = true;
        }
        for (char c : hostPart) {
            if (isForbiddenInHost(c, webScheme)) return false;
        }
        url.host = webScheme ? lowercasedAscii(hostPart) : std::string(hostPart);
    }
    if (hasPort && !parsePort(portPart, url.port)) return false;
    // A port or user without a host names nothing.
    if (url.host->empty() && (url.port || url.user)) return false;
    return true;
}

}  // namespace

bool Url::isWebScheme() const {
    for (const auto web : kWebSchemes) {
        if (scheme == web) return true;
    }
    return false;
}

std::optional<Url> Url::parse(std::string_view text) {
    for (char c : text) {
        if (isForbiddenAnywhere(c)) return std::nullopt;
    }
    const std::size_t colon = text.find(':');
    if (colon == std::string_view::npos || colon == 0 || !isAlpha(text[0])) return std::nullopt;
    for (std::size_t i = 1; i < colon; ++i) {
        const char c = text[i];
        if (!isAlpha(c) && !isDigit(c) && c != '+' && c != '-' && c != '.') return std::nullopt;
    }

    Url url;
    url.scheme = lowercasedAscii(text.substr(0, colon));
    const bool webScheme = url.isWebScheme();
    std::string_view rest = text.substr(colon + 1);

    if (rest.starts_with("//")) {
        rest.remove_prefix(2);
        const std::size_t end = rest.find_first_of("/?#");
        const std::string_view authority = rest.substr(0, end);
        if (!parseAuthority(authority, webScheme, url)) return std::nullopt;
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end);
    }
    if (webScheme && url.scheme != "file" && !url.hasHost()) return std::nullopt;

    const std::size_t hash = rest.find('#');
    if (hash != std::string_view::npos) {
        url.fragment = std::string(rest.substr(hash + 1));
        rest = rest.substr(0, hash);
    }
    const std::size_t question = rest.find('?');
    if (question != std::string_view::npos) {
        url.query = std::string(rest.substr(question + 1));
        rest = rest.substr(0, question);
    }
    url.path = std::string(rest);
    return url;
}

std::vector<UrlQueryItem> Url::queryItems() const {
    std::vector<UrlQueryItem> items;
    if (!query) return items;
    std::string_view rest = *query;
    while (!rest.empty()) {
        const std::size_t amp = rest.find('&');
        const std::string_view piece = rest.substr(0, amp);
        rest = amp == std::string_view::npos ? std::string_view() : rest.substr(amp + 1);
        if (piece.empty()) continue;
        const std::size_t equals = piece.find('=');
        UrlQueryItem item{std::string(piece.substr(0, equals)), std::nullopt};
        if (equals != std::string_view::npos) item.value = std::string(piece.substr(equals + 1));
        items.push_back(std::move(item));
    }
    return items;
}

void Url::setQueryItems(const std::vector<UrlQueryItem>& items) {
    if (items.empty()) {
        query.reset();
        return;
    }
    std::string joined;
    for (const auto& item : items) {
        if (!joined.empty()) joined += '&';
        joined += item.name;
        if (item.value) {
            joined += '=';
            joined += *item.value;
        }
    }
    query = std::move(joined);
}

std::string Url::string() const {
    std::string out = scheme;
    out += ':';
    if (host) {
        out += "//";
        if (user) {
            out += *user;
            if (password) {
                out += ':';
                out += *password;
            }
            out += '@';
        }
        out += *host;
        if (port) {
            char digits[8];
            const auto result = std::to_chars(digits, digits + sizeof digits, *port);
            out += ':';
            out.append(digits, result.ptr);
        }
    }
    out += path;
    if (query) {
        out += '?';
        out += *query;
    }
    if (fragment) {
        out += '#';
        out += *fragment;
    }
    return out;
}

}  // namespace harbex
