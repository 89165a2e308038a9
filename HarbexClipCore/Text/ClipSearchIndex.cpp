#include "HarbexClipCore/Text/ClipSearchIndex.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Text/ClipSearchScore.hpp"

namespace harbex {

namespace {

// Remembered matches and word scores, in all, per entry of the history.
constexpr std::size_t kRememberedPerEntry = 24;

std::vector<std::string> wordTexts(const ClipSearchQuery& query) {
    std::vector<std::string> out;
    out.reserve(query.words.size());
    for (const ClipSearchWord& word : query.words) out.emplace_back(word.folded().bytes());
    return out;
}

// Whether every match of `words` is also a match of `previous`: each earlier word is the
// beginning of the word in its place, and words may have been added.
bool narrows(const std::vector<std::string>& words, const std::vector<std::string>& previous) {
    if (words.size() < previous.size()) return false;
    for (std::size_t i = 0; i < previous.size(); ++i) {
        if (!std::string_view(words[i]).starts_with(previous[i])) return false;
    }
    return true;
}

// Highest score first, keeping the given order among equal scores. Scores below 2^33 (any query
// of fewer than a million words) take one stable counting pass per 11 bits the highest score
// needs, with tables small enough to stay in cache; a plain sort with the original place as the
// last key covers the rest.
template <class Match>
void sortByScoreKeepingOrder(std::vector<Match>& matches) {
    constexpr int kDigitBits = 11;
    constexpr std::uint64_t kDigitMask = (1u << kDigitBits) - 1;
    std::int64_t highest = 0;
    for (const Match& match : matches) highest = std::max(highest, match.score);
    if (highest >= (std::int64_t{1} << (3 * kDigitBits))) {
        std::vector<std::pair<Match, std::size_t>> keyed;
        keyed.reserve(matches.size());
        for (std::size_t i = 0; i < matches.size(); ++i) keyed.emplace_back(matches[i], i);
        std::sort(keyed.begin(), keyed.end(), [](const auto& a, const auto& b) {
            if (a.first.score != b.first.score) return a.first.score > b.first.score;
            return a.second < b.second;
        });
        for (std::size_t i = 0; i < matches.size(); ++i) matches[i] = keyed[i].first;
        return;
    }
    std::vector<Match> scratch(matches.size());
    std::array<std::size_t, std::size_t{1} << kDigitBits> starts{};
    for (int shift = 0; shift == 0 || (highest >> shift) != 0; shift += kDigitBits) {
        starts.fill(0);
        // Descending: the digit is turned over so that larger scores count as smaller.
        const auto digit = [shift](const Match& match) {
            return kDigitMask - ((static_cast<std::uint64_t>(match.score) >> shift) & kDigitMask);
        };
        for (const Match& match : matches) ++starts[digit(match)];
        std::size_t sum = 0;
        for (std::size_t& start : starts) sum += std::exchange(start, sum);
        for (const Match& match : matches) scratch[starts[digit(match)]++] = match;
        matches.swap(scratch);
    }
}

}  // namespace

void ClipSearchIndex::changed() {
    recent_.clear();
    headsAreCurrent_ = false;
}

const std::vector<ClipSearchIndex::ScanHead>& ClipSearchIndex::heads() {
    if (headsAreCurrent_) return heads_;
    std::vector<std::uint32_t> order(entries_.size());
    for (std::size_t i = 0; i < entries_.size(); ++i) order[i] = static_cast<std::uint32_t>(i);
    std::sort(order.begin(), order.end(), [this](std::uint32_t a, std::uint32_t b) {
        if (entries_[a].date != entries_[b].date) return entries_[a].date > entries_[b].date;
        return entries_[a].id < entries_[b].id;
    });
    heads_.resize(order.size());
    for (std::size_t i = 0; i < order.size(); ++i) {
        const ClipSearchEntry& entry = entries_[order[i]];
        heads_[i] = {entry.title.characterMask(), entry.appName.characterMask(),
                     entry.body.characterMask(), order[i], entry.kind};
    }
    headsAreCurrent_ = true;
    return heads_;
}

std::size_t ClipSearchIndex::rememberedSize() const {
    std::size_t total = 0;
    for (const RememberedQuery& query : recent_) {
        total += query.matches.size() + query.wordScores.size();
    }
    return total;
}

void ClipSearchIndex::rebuild(const std::vector<ClipItem>& items) {
    changed();
    entries_.clear();
    positions_.clear();
    entries_.reserve(items.size());
    positions_.reserve(items.size());
    for (const ClipItem& item : items) put(item);
}

void ClipSearchIndex::put(const ClipItem& item) {
    changed();
    if (auto found = positions_.find(item.id); found != positions_.end()) {
        entries_[found->second] = ClipSearchEntry::make(item);
        return;
    }
    positions_.emplace(item.id, entries_.size());
    entries_.push_back(ClipSearchEntry::make(item));
}

void ClipSearchIndex::remove(const Uuid& id) {
    const auto found = positions_.find(id);
    if (found == positions_.end()) return;
    changed();
    // Order does not matter here (results are sorted), so the last entry fills the hole.
    const std::size_t position = found->second;
    positions_.erase(found);
    if (position + 1 != entries_.size()) {
        entries_[position] = std::move(entries_.back());
        positions_[entries_[position].id] = position;
    }
    entries_.pop_back();
}

void ClipSearchIndex::clear() {
    changed();
    entries_.clear();
    positions_.clear();
}

const ClipSearchEntry* ClipSearchIndex::entry(const Uuid& id) const {
    const auto found = positions_.find(id);
    return found == positions_.end() ? nullptr : &entries_[found->second];
}

ClipSearchOutcome ClipSearchIndex::search(const ClipSearchRequest& request,
                                          const std::unordered_set<Uuid>& pinned, Date now,
                                          const Calendar& calendar) {
    ClipSearchOutcome outcome;
    ClipTimeWordMatch match = extractTimeWord(request.query);
    outcome.timeWord = match.timeWord;
    if (match.timeWord) outcome.range = dateRange(*match.timeWord, now, calendar);
    const ClipSearchQuery query = ClipSearchQuery::make(match.rest);
    std::vector<std::string> words = wordTexts(query);
    const std::vector<ScanHead>& scan = heads();
    const std::size_t wordCount = query.words.size();

    // Drop the remembered queries this one does not narrow (an edit, a filter switch), so that
    // the top one, if any, is the query itself or the closest one it narrows. The pinned set is
    // not remembered, so the pinned filter always starts afresh.
    const auto sameScope = [&](const RememberedQuery& known) {
        return request.filter != ClipFilter::pinned && known.filter == request.filter &&
               known.appID == request.appID && known.range == outcome.range;
    };
    while (!recent_.empty() &&
           !(sameScope(recent_.back()) && narrows(words, recent_.back().words))) {
        recent_.pop_back();
    }

    struct Match {
        std::int64_t score;
        std::uint32_t head;
    };
    std::vector<Match> found;
    const bool seenBefore = !recent_.empty() && recent_.back().words == words;
    if (seenBefore) {
        // Going back (Backspace) or asking again: the scores are known.
        const RememberedQuery& known = recent_.back();
        found.reserve(known.matches.size());
        for (std::size_t m = 0; m < known.matches.size(); ++m) {
            std::int64_t total = 0;
            for (std::size_t w = 0; w < wordCount; ++w)
                total += known.wordScores[m * wordCount + w];
            found.push_back({total, known.matches[m]});
        }
    } else {
        const RememberedQuery* narrowed = recent_.empty() ? nullptr : &recent_.back();
        std::vector<bool> unchanged(wordCount, false);
        const std::size_t knownWidth = narrowed ? narrowed->words.size() : 0;
        for (std::size_t i = 0; i < knownWidth; ++i) unchanged[i] = words[i] == narrowed->words[i];
        std::vector<std::uint64_t> masks(wordCount);
        for (std::size_t w = 0; w < wordCount; ++w) {
            masks[w] = query.words[w].folded().characterMask();
        }

        const std::size_t count = narrowed ? narrowed->matches.size() : scan.size();
        const auto headAt = [&](std::size_t c) -> std::uint32_t {
            return narrowed ? narrowed->matches[c] : static_cast<std::uint32_t>(c);
        };
        found.reserve(count);
        std::vector<std::int32_t> wordScores;
        wordScores.reserve(count * wordCount);
        std::vector<std::int32_t> row(wordCount);
        // How far ahead the texts are asked for: an entry's texts are far apart in memory, and
        // waiting for each in turn costs more than scoring it.
        constexpr std::size_t kAhead = 8;
        for (std::size_t c = 0; c < count; ++c) {
            if (c + 2 * kAhead < count) {
                __builtin_prefetch(&entries_[scan[headAt(c + 2 * kAhead)].position].body);
            }
            if (c + kAhead < count) {
                const ClipSearchEntry& ahead = entries_[scan[headAt(c + kAhead)].position];
                __builtin_prefetch(ahead.title.bytes().data());
                __builtin_prefetch(ahead.body.bytes().data());
            }
            const std::uint32_t at = headAt(c);
            const ScanHead& head = scan[at];
            ClipPinState pin = ClipPinState::unpinned;
            if (request.filter == ClipFilter::pinned &&
                pinned.contains(entries_[head.position].id)) {
                pin = ClipPinState::pinned;
            }
            if (!admits(request.filter, head.kind, pin)) continue;
            const ClipSearchEntry& entry = entries_[head.position];
            if (request.appID && entry.appID != request.appID) continue;
            if (outcome.range && !outcome.range->contains(entry.date)) continue;
            std::int64_t total = 0;
            bool matched = true;
            for (std::size_t w = 0; w < wordCount && matched; ++w) {
                if (unchanged[w]) {
                    row[w] = narrowed->wordScores[c * knownWidth + w];
                } else if (const std::uint64_t need = masks[w]; (need & ~head.titleMask) != 0 &&
                                                                (need & ~head.appNameMask) != 0 &&
                                                                (need & ~head.bodyMask) != 0) {
                    // No text holds all of the word's characters.
                    matched = false;
                } else if (const std::optional<int> score =
                               weightedWordScore(query.words[w], entry)) {
                    row[w] = *score;
                } else {
                    matched = false;
                }
                total += row[w];
            }
            if (!matched) continue;
            found.push_back({total, at});
            wordScores.insert(wordScores.end(), row.begin(), row.end());
        }

        std::vector<std::uint32_t> matches(found.size());
        for (std::size_t i = 0; i < found.size(); ++i) matches[i] = found[i].head;
        recent_.push_back({std::move(words), request.filter, request.appID, outcome.range,
                           std::move(matches), std::move(wordScores)});
        // The shortest queries match the most; past a few times the history's size they are
        // the first to go.
        while (recent_.size() > 1 && rememberedSize() > kRememberedPerEntry * scan.size() + 1024) {
            recent_.erase(recent_.begin());
        }
    }

    // Matches are newest first already, so a stable sort by score finishes the order.
    sortByScoreKeepingOrder(found);
    outcome.results.reserve(found.size());
    for (const Match& m : found) {
        const ClipSearchEntry& entry = entries_[scan[m.head].position];
        outcome.results.push_back({entry.id, m.score, entry.date});
    }
    return outcome;
}

std::size_t ClipSearchIndex::textBytes() const {
    std::size_t total = entries_.size() * sizeof(ScanHead);
    for (const ClipSearchEntry& entry : entries_) total += sizeof(entry) + entry.heapBytes();
    return total;
}

}  // namespace harbex
