#include "HarbexClip/Linux/X11SelectionData.hpp"

#include <algorithm>
#include <cstring>
#include <limits>

#include "HarbexClipCore/Pasteboard/FileUrls.hpp"
#include "HarbexClipCore/Support/Unicode.hpp"

namespace harbex::x11data {

std::optional<std::vector<std::uint32_t>> targetAtoms(const Bytes& reply) {
    if (reply.size() % 4 != 0) return std::nullopt;
    std::vector<std::uint32_t> atoms;
    for (std::size_t i = 0; i < reply.size(); i += 4) {
        std::uint32_t atom = 0;
        std::memcpy(&atom, reply.data() + i, 4);
        if (atom != 0 && std::ranges::find(atoms, atom) == atoms.end()) atoms.push_back(atom);
    }
    return atoms;
}

std::string decodeMaybeUtf16(const Bytes& data, bool assumeLittleEndian) {
    bool little = false;
    std::size_t start = 0;
    if (data.size() >= 2 && data[0] == 0xFF && data[1] == 0xFE) {
        little = true;
        start = 2;
    } else if (data.size() >= 2 && data[0] == 0xFE && data[1] == 0xFF) {
        start = 2;
    } else if (assumeLittleEndian && data.size() >= 2 && data.size() % 2 == 0 && data[1] == 0) {
        little = true;
    } else {
        return stringOf(data);
    }
    std::string out;
    out.reserve(data.size() / 2);
    auto unit = [&](std::size_t i) -> char16_t {
        return little ? char16_t(data[i] | (data[i + 1] << 8))
                      : char16_t((data[i] << 8) | data[i + 1]);
    };
    for (std::size_t i = start; i + 1 < data.size(); i += 2) {
        char32_t code = unit(i);
        if (code >= 0xD800 && code < 0xDC00 && i + 3 < data.size()) {
            const char32_t low = unit(i + 2);
            if (low >= 0xDC00 && low < 0xE000) {
                code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
                i += 2;
            } else {
                code = 0xFFFD;
            }
        } else if (code >= 0xD800 && code < 0xE000) {
            code = 0xFFFD;
        }
        if (code == 0) break;  // some writers terminate with NUL
        appendUtf8(out, code);
    }
    return out;
}

std::string latin1ToUtf8(const Bytes& data) {
    std::string out;
    out.reserve(data.size());
    for (std::uint8_t byte : data) appendUtf8(out, byte);
    return out;
}

Bytes utf8ToLatin1(std::string_view text) {
    Bytes out;
    out.reserve(text.size());
    std::size_t offset = 0;
    while (offset < text.size()) {
        const char32_t code = nextCodePoint(text, offset);
        out.push_back(code <= 0xFF ? std::uint8_t(code) : std::uint8_t('?'));
    }
    return out;
}

std::vector<std::string> fileUrls(std::string_view target, const Bytes& data) {
    std::string_view text(reinterpret_cast<const char*>(data.data()), data.size());
    if (target == "x-special/gnome-copied-files") {
        // The first line says "copy" or "cut"; the URLs follow.
        const auto newline = text.find('\n');
        text = newline == std::string_view::npos ? std::string_view() : text.substr(newline + 1);
    }
    return urlsFromUriList(text);
}

MozUrl mozUrl(const Bytes& data) {
    const std::string text = decodeMaybeUtf16(data, true);
    const auto newline = text.find('\n');
    MozUrl result;
    std::string url = text.substr(0, newline);
    while (!url.empty() && (url.back() == '\r' || url.back() == '\0')) url.pop_back();
    if (!url.empty()) result.url = std::move(url);
    if (newline != std::string::npos) {
        std::string title = text.substr(newline + 1);
        while (!title.empty() &&
               (title.back() == '\n' || title.back() == '\r' || title.back() == '\0'))
            title.pop_back();
        if (!title.empty()) result.title = std::move(title);
    }
    return result;
}

IncrementalReply::IncrementalReply(const Bytes& announced, std::size_t limit) : limit_(limit) {
    if (announced.size() < 4) return;
    std::uint32_t size = 0;
    std::memcpy(&size, announced.data(), 4);
    if (size > limit_) {
        state_ = Step::tooLarge;
    } else {
        data_.reserve(size);
    }
}

IncrementalReply::Step IncrementalReply::add(const Bytes& chunk) {
    if (state_ != Step::more) return state_;
    if (chunk.empty()) {
        state_ = Step::done;
    } else if (data_.size() + chunk.size() > limit_) {
        state_ = Step::tooLarge;
        data_ = Bytes();
    } else {
        data_.insert(data_.end(), chunk.begin(), chunk.end());
    }
    return state_;
}

std::optional<std::int32_t> windowPid(const std::vector<std::uint32_t>& values) {
    if (values.empty() || values.front() == 0 ||
        values.front() > std::uint32_t(std::numeric_limits<std::int32_t>::max()))
        return std::nullopt;
    return std::int32_t(values.front());
}

std::pair<std::string, std::string> windowClass(std::string_view value) {
    const auto end = value.find('\0');
    std::string instance(value.substr(0, end));
    if (end == std::string_view::npos) return {std::move(instance), {}};
    const std::string_view rest = value.substr(end + 1);
    return {std::move(instance), std::string(rest.substr(0, rest.find('\0')))};
}

std::string gtkApplicationId(std::string_view value) {
    return std::string(value.substr(0, value.find('\0')));
}

}  // namespace harbex::x11data
