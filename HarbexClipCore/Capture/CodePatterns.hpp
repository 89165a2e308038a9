#pragma once

#include <string_view>

namespace harbex {

// Text shapes shared by the details, the sensitive test and the kind decision. Pure; any thread.

// Four to eight digits and nothing else: a one-time code.
bool isOneTimeCodeText(std::string_view text);

// A single line in the form of a function call, such as `print(value)` or `os.exit(1);`.
bool isFunctionCallLine(std::string_view text);

// Whether a text reads as source code: a function-call line, or several lines of which most
// carry a statement ending (";", "{", "}"), a declaration keyword or an indented block, with a
// few of them at least. Conservative, because a copy taken for code is filed apart from text.
bool looksLikeCode(std::string_view text);

}  // namespace harbex
