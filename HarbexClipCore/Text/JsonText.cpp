#include "HarbexClipCore/Text/JsonText.hpp"

#include "HarbexClipCore/Support/Json.hpp"

namespace harbex {

namespace {

bool isJsonSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// Position of the next character that is not JSON white space.
std::size_t skipSpace(std::string_view text, std::size_t position) {
    while (position < text.size() && isJsonSpace(text[position])) ++position;
    return position;
}

void newLine(std::string& out, int depth) {
    out += '\n';
    out.append(static_cast<std::size_t>(depth) * 2, ' ');
}

}  // namespace

std::optional<std::string> relaidJson(std::string_view text, JsonLayout layout) {
    // Validation is the parser's job; the layout below then only has to tell tokens apart.
    if (!parseJson(text)) return std::nullopt;
    const bool indented = layout == JsonLayout::indented;
    std::string out;
    out.reserve(text.size() + text.size() / 4);
    int depth = 0;
    std::size_t i = skipSpace(text, 0);
    while (i < text.size()) {
        const char c = text[i];
        if (isJsonSpace(c)) {
            ++i;
            continue;
        }
        switch (c) {
            case '"': {
                const std::size_t start = i++;
                while (i < text.size() && text[i] != '"') i += text[i] == '\\' ? 2 : 1;
                ++i;
                out.append(text.substr(start, i - start));
                continue;
            }
            case '{':
            case '[': {
                const std::size_t next = skipSpace(text, i + 1);
                out += c;
                if (next < text.size() && (text[next] == '}' || text[next] == ']')) {
                    out += text[next];
                    i = next + 1;
                    continue;
                }
                ++depth;
                if (indented) newLine(out, depth);
                break;
            }
            case '}':
            case ']':
                --depth;
                if (indented) newLine(out, depth);
                out += c;
                break;
            case ',':
                out += c;
                if (indented) newLine(out, depth);
                break;
            case ':': out += indented ? ": " : ":"; break;
            default: out += c; break;
        }
        ++i;
    }
    return out;
}

}  // namespace harbex
