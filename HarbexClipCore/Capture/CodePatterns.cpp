#include "HarbexClipCore/Capture/CodePatterns.hpp"

#include <array>

#include "HarbexClipCore/Capture/CaptureRegex.hpp"
#include "HarbexClipCore/Capture/CaptureText.hpp"

namespace harbex {
namespace {

// Longer lines are not weighed as calls: generated or minified text is not a snippet.
constexpr std::size_t kLongestCallLine = 10'000;
// Enough lines to judge a snippet without scanning a whole file.
constexpr std::size_t kLinesJudged = 400;

const CaptureRegex& oneTimeCodePattern() {
    static const CaptureRegex pattern("^\\d{4,8}$");
    return pattern;
}

const CaptureRegex& callPattern() {
    static const CaptureRegex pattern("^[A-Za-z_][A-Za-z0-9_.]*\\(.*\\)\\s*;?$");
    return pattern;
}

constexpr std::array<std::string_view, 30> kStatementStarts{
    "def ",    "class ", "import ", "from ",    "#include", "#import",  "#define", "function ",
    "func ",   "fn ",    "let ",    "const ",   "var ",     "return",   "if (",    "for (",
    "while (", "} else", "public ", "private ", "static ",  "package ", "using ",  "namespace ",
    "struct ", "enum ",  "//",      "/*",       "#!/",      "SELECT ",
};

bool carriesCodeSignal(std::string_view line) {
    if (line.ends_with(';') || line.ends_with('{') || line.ends_with('}')) return true;
    for (std::string_view start : kStatementStarts) {
        if (line.starts_with(start)) return true;
    }
    return line.size() <= kLongestCallLine && isFunctionCallLine(line);
}

}  // namespace

bool isOneTimeCodeText(std::string_view text) {
    return text.size() <= 64 && oneTimeCodePattern().matchesWhole(text);
}

bool isFunctionCallLine(std::string_view text) {
    if (text.size() > kLongestCallLine || containsLineBreak(text)) return false;
    return callPattern().matchesWhole(text);
}

bool looksLikeCode(std::string_view text) {
    text = trimmingWhiteSpace(text);
    if (text.empty()) return false;
    if (!containsLineBreak(text)) return isFunctionCallLine(text);

    std::size_t lines = 0;
    std::size_t signals = 0;
    while (!text.empty() && lines < kLinesJudged) {
        const auto end = text.find('\n');
        const std::string_view line = trimmingWhiteSpace(text.substr(0, end));
        if (!line.empty()) {
            ++lines;
            if (carriesCodeSignal(line)) ++signals;
        }
        if (end == std::string_view::npos) break;
        text.remove_prefix(end + 1);
    }
    return lines >= 2 && signals >= 2 && signals * 2 >= lines;
}

}  // namespace harbex
