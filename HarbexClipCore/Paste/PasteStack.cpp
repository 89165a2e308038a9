#include "HarbexClipCore/Paste/PasteStack.hpp"

#include <algorithm>

namespace harbex {

namespace {

constexpr std::string_view kWhiteSpace = " \t\r\n\f\v";
constexpr std::string_view kLineBreaks = "\r\n";

std::string_view trimmed(std::string_view text, PasteStack::Separator separator) {
    if (separator == PasteStack::Separator::newLine) {
        const auto end = text.find_last_not_of(kLineBreaks);
        return end == std::string_view::npos ? std::string_view{} : text.substr(0, end + 1);
    }
    const auto begin = text.find_first_not_of(kWhiteSpace);
    if (begin == std::string_view::npos) return {};
    const auto end = text.find_last_not_of(kWhiteSpace);
    return text.substr(begin, end - begin + 1);
}

std::string_view glue(PasteStack::Separator separator) {
    switch (separator) {
        case PasteStack::Separator::newLine: return "\n";
        case PasteStack::Separator::comma: return ", ";
        case PasteStack::Separator::space: return " ";
    }
    return {};
}

}  // namespace

std::optional<PasteStack::Separator> PasteStack::separator(ClipStackMode mode) {
    switch (mode) {
        case ClipStackMode::onePerPaste: return std::nullopt;
        case ClipStackMode::newLines: return Separator::newLine;
        case ClipStackMode::commas: return Separator::comma;
        case ClipStackMode::spaces: return Separator::space;
    }
    return std::nullopt;
}

std::string PasteStack::join(const std::vector<std::string>& texts, Separator separator) {
    std::string out;
    for (const auto& text : texts) {
        const std::string_view part = trimmed(text, separator);
        if (part.empty()) continue;
        if (!out.empty()) out += glue(separator);
        out += part;
    }
    return out;
}

bool PasteStack::add(const Uuid& id) {
    if (contains(id)) return false;
    ids.push_back(id);
    return true;
}

bool PasteStack::remove(const Uuid& id) {
    const auto it = std::find(ids.begin(), ids.end(), id);
    if (it == ids.end()) return false;
    ids.erase(it);
    return true;
}

bool PasteStack::contains(const Uuid& id) const {
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

}  // namespace harbex
