#include "HarbexClipCore/Text/ClipSearchIndex.hpp"

#include <algorithm>

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

}  // namespace

void ClipSearchIndex::rebuild(const std::vector<ClipItem>& items) {
    previous_.reset();
    entries_.clear();
    positions_.clear();
    entries_.reserve(items.size());
    positions_.reserve(items.size());
    for (const ClipItem& item : items) put(item);
}

void ClipSearchIndex::put(const ClipItem& item) {
    previous_.reset();
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
    previous_.reset();
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
    previous_.reset();
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
        candidates.resize(entries_.size());
        for (std::size_t i = 0; i < candidates.size(); ++i) {
            candidates[i] = static_cast<std::uint32_t>(i);
        }
    }
    const std::size_t knownWidth = reuse ? previous_->words.size() : 0;

    struct Match {
        std::int64_t score;
        Date date;
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
        found.push_back({total, entry.date, position});
        wordScores.insert(wordScores.end(), row.begin(), row.end());
    }

    std::vector<std::uint32_t> matches(found.size());
    for (std::size_t i = 0; i < found.size(); ++i) matches[i] = found[i].position;
    previous_ = PreviousQuery{std::move(words), request.filter,     request.appID,
                              outcome.range,    std::move(matches), std::move(wordScores)};

    std::sort(found.begin(), found.end(), [this](const Match& a, const Match& b) {
        if (a.score != b.score) return a.score > b.score;
        if (a.date != b.date) return a.date > b.date;
        return entries_[a.position].id < entries_[b.position].id;
    });
    outcome.results.reserve(found.size());
    for (const Match& match : found) {
        outcome.results.push_back({entries_[match.position].id, match.score, match.date});
    }
    return outcome;
}

std::size_t ClipSearchIndex::textBytes() const {
    std::size_t total = 0;
    for (const ClipSearchEntry& entry : entries_) total += sizeof(entry) + entry.heapBytes();
    return total;
}

}  // namespace harbex
