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
    std::vector<std::uint32_t> candidates;
    if (reuse) {
        candidates = std::move(previous_->matches);
    } else {
        candidates.resize(entries_.size());
        for (std::size_t i = 0; i < candidates.size(); ++i) {
            candidates[i] = static_cast<std::uint32_t>(i);
        }
    }

    std::vector<std::uint32_t> matches;
    for (const std::uint32_t position : candidates) {
        const ClipSearchEntry& entry = entries_[position];
        const ClipPinState pin = request.filter == ClipFilter::pinned && pinned.contains(entry.id)
                                     ? ClipPinState::pinned
                                     : ClipPinState::unpinned;
        if (!admits(request.filter, entry.kind, pin)) continue;
        if (request.appID && entry.appID != request.appID) continue;
        if (outcome.range && !outcome.range->contains(entry.date)) continue;
        const std::optional<std::int64_t> score = entryScore(query, entry);
        if (!score) continue;
        matches.push_back(position);
        outcome.results.push_back({entry.id, *score, entry.date});
    }
    previous_ = PreviousQuery{std::move(words), request.filter, request.appID, outcome.range,
                              std::move(matches)};

    std::sort(outcome.results.begin(), outcome.results.end(),
              [](const ClipSearchResult& a, const ClipSearchResult& b) {
                  if (a.score != b.score) return a.score > b.score;
                  if (a.date != b.date) return a.date > b.date;
                  return a.id < b.id;
              });
    return outcome;
}

std::size_t ClipSearchIndex::textBytes() const {
    std::size_t total = 0;
    for (const ClipSearchEntry& entry : entries_) total += sizeof(entry) + entry.heapBytes();
    return total;
}

}  // namespace harbex
