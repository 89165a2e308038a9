#include "HarbexClipCore/Testing/ReferenceSearchScore.hpp"

#include <algorithm>
#include <cstdint>
#include <vector>

namespace harbex {

namespace {

std::vector<std::uint32_t> characters(const FoldedText& text) {
    std::vector<std::uint32_t> out;
    const std::string_view bytes = text.bytes();
    for (std::size_t offset = 0; offset < bytes.size();) {
        out.push_back(folded::nextToken(bytes, offset));
    }
    return out;
}

}  // namespace

std::optional<int> referenceWordScore(const FoldedText& word, const FoldedText& text) {
    const std::vector<std::uint32_t> q = characters(word);
    const std::vector<std::uint32_t> t = characters(text);
    if (q.empty() || t.empty()) return std::nullopt;
    if (t == q) return 1000;
    if (t.size() >= q.size() && std::equal(q.begin(), q.end(), t.begin())) return 800;
    const auto found = std::search(t.begin(), t.end(), q.begin(), q.end());
    if (found != t.end()) {
        const auto d = static_cast<int>(found - t.begin());
        if (!folded::isLetterOrDigit(*(found - 1))) return 600;
        return d >= 1010 ? 300 : 400 - d / 10;
    }
    if (q.size() < 2) return std::nullopt;

    const std::size_t end = std::min<std::size_t>(t.size(), 2000);
    std::size_t i = 0;
    while (i < end && t[i] != q[0]) ++i;
    if (i == end) return std::nullopt;
    int gaps = 0;
    for (std::size_t k = 1; k < q.size(); ++k) {
        int gap = 0;
        ++i;
        while (i < end && t[i] != q[k]) {
            ++gap;
            ++i;
        }
        if (i == end || gap >= 9) return std::nullopt;
        gaps += gap;
    }
    return std::max(20, 200 - 15 * gaps);
}

}  // namespace harbex
