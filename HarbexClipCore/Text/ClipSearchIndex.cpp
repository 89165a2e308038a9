#include "HarbexClipCore/Text/ClipSearchIndex.hpp"

#include <algorithm>
#include <utility>

#include "HarbexClipCore/Model/ClipItem.hpp"
#include "HarbexClipCore/Text/ClipSearchScore.hpp"

namespace harbex {

namespace {

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

// Highest score first, keeping the given order among equal scores. Scores below 2^32 (any query
// of fewer than a million words) take two stable counting passes of 16 bits; a plain sort with
// the original place as the last key covers the rest.
template <class Match>
void sortByScoreKeepingOrder(std::vector<Match>& matches) {
    std::int64_t highest = 0;
    for (const Match& match : matches) highest = std::max(highest, match.score);
    if (highest >= (std::int64_t{1} << 32)) {
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
    for (const int shift : {0, 16}) {
        std::vector<std::size_t> starts(1 << 16, 0);
        // Descending: the digit is turned over so that larger scores count as smaller.
        const auto digit = [shift](const Match& match) {
            return 0xFFFF - ((static_cast<std::uint64_t>(match.score) >> shift) & 0xFFFF);
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
    previous_.reset();
    newestFirstIsCurrent_ = false;
}

const std::vector<std::uint32_t>& ClipSearchIndex::newestFirst() {
    if (newestFirstIsCurrent_) return newestFirst_;
    newestFirst_.resize(entries_.size());
    for (std::size_t i = 0; i < entries_.size(); ++i) {
        newestFirst_[i] = static_cast<std::uint32_t>(i);
    }
    std::sort(newestFirst_.begin(), newestFirst_.end(), [this](std::uint32_t a, std::uint32_t b) {
        if (entries_[a].date != entries_[b].date) return entries_[a].date > entries_[b].date;
        return entries_[a].id < entries_[b].id;
    });
    newestFirstIsCurrent_ = true;
    return newestFirst_;
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

    // The pinned set is not remembered, so the pinned filter always starts afresh.
    const bool reuse = previous_ && request.filter != ClipFilter::pinned &&
                       previous_->filter == request.filter && previous_->appID == request.appID &&
                       previous_->range == outcome.range && narrows(words, previous_->words);
    const std::size_t wordCount = query.words.size();
    std::vector<std::uint32_t> candidates;
    std::vector<std::int32_t> knownScores;  // a row of the last scores per candidate, when reused
    std::vector<bool> unchanged(wordCount, false);
    if (reuse) {
        candidates = std::move(previous_->matches);
        knownScores = std::move(previous_->wordScores);
        for (std::size_t i = 0; i < previous_->words.size(); ++i) {
            unchanged[i] = words[i] == previous_->words[i];
        }
    } else {
        candidates = newestFirst();
    }
    const std::size_t knownWidth = reuse ? previous_->words.size() : 0;

    struct Match {
        std::int64_t score;
        std::uint32_t position;
    };
    std::vector<Match> found;
    found.reserve(candidates.size());
    std::vector<std::int32_t> wordScores;
    wordScores.reserve(candidates.size() * wordCount);
    std::vector<std::int32_t> row(wordCount);
    for (std::size_t c = 0; c < candidates.size(); ++c) {
        const std::uint32_t position = candidates[c];
        const ClipSearchEntry& entry = entries_[position];
        const ClipPinState pin = request.filter == ClipFilter::pinned && pinned.contains(entry.id)
                                     ? ClipPinState::pinned
                                     : ClipPinState::unpinned;
        if (!admits(request.filter, entry.kind, pin)) continue;
        if (request.appID && entry.appID != request.appID) continue;
        if (outcome.range && !outcome.range->contains(entry.date)) continue;
        std::int64_t total = 0;
        bool matched = true;
        for (std::size_t w = 0; w < wordCount && matched; ++w) {
            if (unchanged[w]) {
                row[w] = knownScores[c * knownWidth + w];
            } else if (const std::optional<int> score = weightedWordScore(query.words[w], entry)) {
                row[w] = *score;
            } else {
                matched = false;
            }
            total += row[w];
        }
        if (!matched) continue;
        found.push_back({total, position});
        wordScores.insert(wordScores.end(), row.begin(), row.end());
    }

    std::vector<std::uint32_t> matches(found.size());
    for (std::size_t i = 0; i < found.size(); ++i) matches[i] = found[i].position;
    previous_ = PreviousQuery{std::move(words), request.filter,     request.appID,
                              outcome.range,    std::move(matches), std::move(wordScores)};

    // Matches are newest first already, so a stable sort by score finishes the order.
    sortByScoreKeepingOrder(found);
    outcome.results.reserve(found.size());
    for (const Match& match : found) {
        const ClipSearchEntry& entry = entries_[match.position];
        outcome.results.push_back({entry.id, match.score, entry.date});
    }
    return outcome;
}

std::size_t ClipSearchIndex::textBytes() const {
    std::size_t total = 0;
    for (const ClipSearchEntry& entry : entries_) total += sizeof(entry) + entry.heapBytes();
    return total;
}

}  // namespace harbex
