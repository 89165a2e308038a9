#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace harbex {

// One `name=value` piece of a query, kept exactly as written (percent escapes not decoded).
struct UrlQueryItem {
    std::string name;
    std::optional<std::string> value;  // absent for a bare `name` without "="

    friend bool operator==(const UrlQueryItem&, const UrlQueryItem&) = default;
};

// An absolute URL split into its parts: scheme ":" ["//" [user [":" password] "@"] host
// [":" port]] path ["?" query] ["#" fragment]. Parts are kept as written, except that the scheme
// and the host of the web schemes (http, https, ws, wss, ftp, file) are lower-cased, as a browser
// does. Non-ASCII text is kept as UTF-8. Thread: any (a value).
struct Url {
    std::string scheme;
    std::optional<std::string> user;
    std::optional<std::string> password;
    // Present when the URL has an authority ("//"); empty for "file:///path".
    std::optional<std::string> host;
    std::optional<std::uint16_t> port;
    std::string path;
    std::optional<std::string> query;
    std::optional<std::string> fragment;

    // Parses absolute URLs only. Nothing comes back for a relative reference, for text with
    // spaces, control characters, quotes or angle brackets, for a bad port, a bad IPv6 literal,
    // or for a web scheme (http, https, ws, wss, ftp) without "//" and a non-empty host. Never
    // throws.
    static std::optional<Url> parse(std::string_view text);

    // Whether the URL names a host: "https://example.com" does, "mailto:a@b.c" and
    // "file:///tmp" do not.
    bool hasHost() const { return host && !host->empty(); }

    // Whether the scheme is one that browsers treat as hierarchical with a host.
    bool isWebScheme() const;

    // The query split at "&" (empty pieces dropped); empty when there is no query.
    std::vector<UrlQueryItem> queryItems() const;
    // Rewrites the query from items; no items leaves the URL without a query.
    void setQueryItems(const std::vector<UrlQueryItem>& items);

    // The URL written back; parse(string()) gives an equal value.
    std::string string() const;

    friend bool operator==(const Url&, const Url&) = default;
};

}  // namespace harbex
