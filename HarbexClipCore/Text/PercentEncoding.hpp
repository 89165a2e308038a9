#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace harbex {

// Every byte other than the unreserved characters of URIs (A–Z a–z 0–9 - . _ ~) as %XX with
// upper-case hexadecimal digits. Thread: any.
std::string percentEncoded(std::string_view text);

// Each %XX as its byte; nothing when a "%" is not followed by two hexadecimal digits. "+" stays
// "+" (it means a space only in HTML forms). The bytes are not checked for UTF-8. Thread: any.
std::optional<std::string> percentDecoded(std::string_view text);

}  // namespace harbex
