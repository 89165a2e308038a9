#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace harbex {

// File references travel as URL strings: NSURL file URLs on macOS, text/uri-list (RFC 2483) on
// X11. These helpers convert between those and the plain paths kept in the history. Pure; any
// thread.

// "file://" plus the path, percent-encoding every byte outside the unreserved and path
// characters (so spaces, '%', '#', '?' and non-ASCII bytes are escaped). Requires an absolute path.
std::string fileUrlFromPath(std::string_view path);

// The local path of a file URL: scheme "file" (any case), empty or "localhost" authority,
// percent escapes decoded. Nothing for other schemes, remote hosts, relative paths, malformed
// escapes and escaped NUL bytes.
std::optional<std::string> filePathFromUrl(std::string_view url);

// The URLs of a text/uri-list: lines split at CR LF, LF or NUL, comments ('#') and blank lines left
// out, surrounding white space trimmed.
std::vector<std::string> urlsFromUriList(std::string_view uriList);

// A text/uri-list: each URL followed by CR LF.
std::string uriListFromUrls(const std::vector<std::string>& urls);

// Whether a pasteboard writer may put `text` on the pasteboard as a URL: an absolute URL that
// Url::parse accepts (a text that does not parse is dropped from the write).
bool parsesAsUrl(std::string_view text);

}  // namespace harbex
