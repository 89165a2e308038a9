#include "HarbexClipCore/Pasteboard/FileUrls.hpp"

#include <cstdio>

#include "HarbexClipCore/Support/Url.hpp"

namespace harbex {
namespace {

bool keepsUnescaped(unsigned char c) {
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9')) return true;
    switch (c) {
        case '-':
        case '.':
        case '_':
        case '~':
        case '/':
        case '!':
        case '$':
        case '&':
        case '\'':
        case '(':
        case ')':
        case '*':
        case '+':
        case ',':
        case ';':
        case '=':
        case ':':
        case '@': return true;
        default: return false;
    }
}

int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

bool equalsIgnoringAsciiCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        auto lower = [](char c) { return (c >= 'A' && c <= 'Z') ? char(c - 'A' + 'a') : c; };
        if (lower(a[i]) != lower(b[i])) return false;
    }
    return true;
}

std::string_view trimmed(std::string_view text) {
    auto isSpace = [](char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; };
    while (!text.empty() && isSpace(text.front())) text.remove_prefix(1);
    while (!text.empty() && isSpace(text.back())) text.remove_suffix(1);
    return text;
}

}  // namespace

std::string fileUrlFromPath(std::string_view path) {
    std::string url = "file://";
    url.reserve(url.size() + path.size());
    for (unsigned char c : path) {
        if (keepsUnescaped(c)) {
            url.push_back(char(c));
        } else {
            char escaped[4];
            std::snprintf(escaped, sizeof escaped, "%%%02X", c);
            url.append(escaped);
        }
    }
    return url;
}

std::optional<std::string> filePathFromUrl(std::string_view url) {
    const auto colon = url.find(':');
    if (colon == std::string_view::npos || !equalsIgnoringAsciiCase(url.substr(0, colon), "file"))
        return std::nullopt;
    std::string_view rest = url.substr(colon + 1);
    if (rest.starts_with("//")) {
        rest.remove_prefix(2);
        const auto slash = rest.find('/');
        if (slash == std::string_view::npos) return std::nullopt;
        const std::string_view host = rest.substr(0, slash);
        if (!host.empty() && !equalsIgnoringAsciiCase(host, "localhost")) return std::nullopt;
        rest.remove_prefix(slash);
    }
    // A query or fragment is not part of the path.
    rest = rest.substr(0, rest.find_first_of("?#"));
    if (!rest.starts_with('/')) return std::nullopt;

    std::string path;
    path.reserve(rest.size());
    for (std::size_t i = 0; i < rest.size(); ++i) {
        if (rest[i] != '%') {
            path.push_back(rest[i]);
            continue;
        }
        if (i + 2 >= rest.size()) return std::nullopt;
        const int high = hexValue(rest[i + 1]);
        const int low = hexValue(rest[i + 2]);
        if (high < 0 || low < 0) return std::nullopt;
        const char decoded = char(high * 16 + low);
        if (decoded == '\0') return std::nullopt;
        path.push_back(decoded);
        i += 2;
    }
    return path;
}

std::vector<std::string> urlsFromUriList(std::string_view uriList) {
    std::vector<std::string> urls;
    // Producers end lines with LF or CRLF, and some (PCManFM) end the list with a NUL, which
    // C strings would have ended at: each of them ends a line here.
    while (!uriList.empty()) {
        const auto end = uriList.find_first_of(std::string_view("\n\0", 2));
        const std::string_view line = trimmed(uriList.substr(0, end));
        if (!line.empty() && !line.starts_with('#')) urls.emplace_back(line);
        if (end == std::string_view::npos) break;
        uriList.remove_prefix(end + 1);
    }
    return urls;
}

std::string uriListFromUrls(const std::vector<std::string>& urls) {
    std::string list;
    for (const auto& url : urls) {
        list += url;
        list += "\r\n";
    }
    return list;
}

bool parsesAsUrl(std::string_view text) { return Url::parse(text).has_value(); }

}  // namespace harbex
