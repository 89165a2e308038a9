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
    orderIsCurrent_ = false;
}

const std::vector<std::uint32_t>& ClipSearchIndex::order() {
    if (orderIsCurrent_) return order_;
    order_.resize(records_.size());
    for (std::size_t i = 0; i < records_.size(); ++i) order_[i] = static_cast<std::uint32_t>(i);
    std::sort(order_.begin(), order_.end(), [this](std::uint32_t a, std::uint32_t b) {
        if (records_[a].date != records_[b].date) return records_[a].date > records_[b].date;
        return records_[a].id < records_[b].id;
    });
    orderIsCurrent_ = true;
    return order_;
}

std::size_t ClipSearchIndex::rememberedSize() const {
    std::size_t total = 0;
    for (const RememberedQuery& query : recent_) {
        total += query.matches.size() + query.wordScores.size();
    }
    return total;
}

ClipSearchFields ClipSearchIndex::fields(const Record& record) const {
    const char* at = texts_.data() + record.textsAt;
    ClipSearchFields out;
    if (record.hasPairs) {
        out.bodyPairs = reinterpret_cast<const unsigned char*>(at);
        at += BytePairSet::kTableBytes;
    }
    out.title = {{at, record.titleSize}, record.titleMask};
    at += record.titleSize;
    out.body = {{at, record.bodySize}, record.bodyMask};
    return out;
}

std::uint32_t ClipSearchIndex::sourceNumber(const ClipSearchEntry& entry) {
    std::string key = entry.appID.value_or(std::string());
    key.push_back('\0');
    key += entry.appName.bytes();
    const auto [found, added] =
        sourceNumbers_.try_emplace(std::move(key), static_cast<std::uint32_t>(sources_.size()));
    if (added) sources_.push_back({entry.appID, entry.appName});
    return found->second;
}

ClipSearchIndex::Record ClipSearchIndex::store(const ClipSearchEntry& entry) {
    Record record;
    record.id = entry.id;
    record.date = entry.date;
    record.kind = entry.kind;
    record.source = sourceNumber(entry);
    record.appNameMask = entry.appName.characterMask();
    record.textsAt = texts_.size();
    record.hasPairs = !entry.bodyPairs.empty();
    if (record.hasPairs) {
        texts_.append(reinterpret_cast<const char*>(entry.bodyPairs.table()),
                      BytePairSet::kTableBytes);
    }
    const auto append = [this](const FoldedText& text, std::uint32_t& size, std::uint64_t& mask) {
        texts_ += text.bytes();
        size = static_cast<std::uint32_t>(text.bytes().size());
        mask = text.characterMask();
    };
    append(entry.title, record.titleSize, record.titleMask);
    append(entry.body, record.bodySize, record.bodyMask);
    return record;
}

void ClipSearchIndex::compact() {
    const std::vector<std::uint32_t>& newestFirst = order();
    std::string texts;
    texts.reserve(texts_.size() - deadBytes_);
    std::vector<Record> records;
    records.reserve(records_.size());
    for (const std::uint32_t place : newestFirst) {
        Record record = records_[place];
        texts.append(texts_, record.textsAt, record.textsBytes());
        record.textsAt = texts.size() - record.textsBytes();
        records.push_back(record);
    }
    texts_ = std::move(texts);
    records_ = std::move(records);
    deadBytes_ = 0;
    for (std::size_t i = 0; i < records_.size(); ++i) positions_[records_[i].id] = i;
    changed();
}

void ClipSearchIndex::compactIfWasteful() {
    // Replaced texts stay in the block until they are a good part of it.
    if (deadBytes_ > (1u << 20) && deadBytes_ > texts_.size() / 4) compact();
}

void ClipSearchIndex::rebuild(const std::vector<ClipItem>& items) {
    clear();
    // In the order searches visit copies, so that a search reads the block front to back (new
    // copies, added at the end, are few).
    std::vector<const ClipItem*> newestFirst;
    newestFirst.reserve(items.size());
    for (const ClipItem& item : items) newestFirst.push_back(&item);
    std::sort(newestFirst.begin(), newestFirst.end(), [](const ClipItem* a, const ClipItem* b) {
        if (a->date != b->date) return a->date > b->date;
        return a->id < b->id;
    });
    records_.reserve(items.size());
    positions_.reserve(items.size());
    for (const ClipItem* item : newestFirst) put(*item);
    // Growing doubles the block; what is kept should be no larger than the texts.
    texts_.shrink_to_fit();
}

void ClipSearchIndex::put(const ClipItem& item) {
    changed();
    const ClipSearchEntry entry = ClipSearchEntry::make(item);
    if (auto found = positions_.find(item.id); found != positions_.end()) {
        Record& record = records_[found->second];
        deadBytes_ += record.textsBytes();
        record = store(entry);
    } else {
        positions_.emplace(item.id, records_.size());
        records_.push_back(store(entry));
    }
    compactIfWasteful();
}

void ClipSearchIndex::remove(const Uuid& id) {
    const auto found = positions_.find(id);
    if (found == positions_.end()) return;
    changed();
    // Order does not matter here (the search visits records by date), so the last record fills
    // the hole.
    const std::size_t position = found->second;
    positions_.erase(found);
    deadBytes_ += records_[position].textsBytes();
    if (position + 1 != records_.size()) {
        records_[position] = records_.back();
        positions_[records_[position].id] = position;
    }
    records_.pop_back();
    compactIfWasteful();
}

void ClipSearchIndex::clear() {
    changed();
    records_.clear();
    positions_.clear();
    texts_.clear();
    texts_.shrink_to_fit();
    deadBytes_ = 0;
    sources_.clear();
    sourceNumbers_.clear();
}

std::optional<ClipSearchEntry> ClipSearchIndex::entry(const Uuid& id) const {
    const auto found = positions_.find(id);
    if (found == positions_.end()) return std::nullopt;
    const Record& record = records_[found->second];
    const ClipSearchFields texts = fields(record);
    ClipSearchEntry out;
    out.id = record.id;
    out.date = record.date;
    out.kind = record.kind;
    out.title = FoldedText(texts.title);
    out.appName = sources_[record.source].appName;
    out.body = FoldedText(texts.body);
    out.bodyPairs = BytePairSet::of(out.body.bytes());
    out.appID = sources_[record.source].appID;
    return out;
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
    const std::vector<std::uint32_t>& scan = order();
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
        std::uint32_t place;  // in `scan`
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
        const auto placeAt = [&](std::size_t c) -> std::uint32_t {
            return narrowed ? narrowed->matches[c] : static_cast<std::uint32_t>(c);
        };
        found.reserve(count);
        std::vector<std::int32_t> wordScores;
        wordScores.reserve(count * wordCount);
        std::vector<std::int32_t> row(wordCount);
        // The application filter and the application names are settled once per source.
        std::vector<bool> admittedSource(sources_.size(), true);
        if (request.appID) {
            for (std::size_t s = 0; s < sources_.size(); ++s) {
                admittedSource[s] = sources_[s].appID == request.appID;
            }
        }
        constexpr int kUnknown = -2;
        std::vector<int> appNameScores(wordCount * sources_.size(), kUnknown);
        const auto appNameScore = [&](std::size_t w, std::uint32_t source) {
            int& known = appNameScores[w * sources_.size() + source];
            if (known == kUnknown) {
                const std::optional<int> score =
                    wordScore(query.words[w], sources_[source].appName);
                known = score ? 2 * *score : -1;
            }
            return known;
        };
        // How far ahead the next texts are asked for, where the records jump in the block.
        constexpr std::size_t kAhead = 4;
        for (std::size_t c = 0; c < count; ++c) {
            if (c + kAhead < count) {
                __builtin_prefetch(texts_.data() + records_[scan[placeAt(c + kAhead)]].textsAt);
            }
            const std::uint32_t at = placeAt(c);
            const Record& record = records_[scan[at]];
            ClipPinState pin = ClipPinState::unpinned;
            if (request.filter == ClipFilter::pinned && pinned.contains(record.id)) {
                pin = ClipPinState::pinned;
            }
            if (!admits(request.filter, record.kind, pin)) continue;
            if (!admittedSource[record.source]) continue;
            if (outcome.range && !outcome.range->contains(record.date)) continue;
            std::int64_t total = 0;
            bool matched = true;
            for (std::size_t w = 0; w < wordCount && matched; ++w) {
                if (unchanged[w]) {
                    row[w] = narrowed->wordScores[c * knownWidth + w];
                } else if (const std::uint64_t need = masks[w]; (need & ~record.titleMask) != 0 &&
                                                                (need & ~record.appNameMask) != 0 &&
                                                                (need & ~record.bodyMask) != 0) {
                    // No text holds all of the word's characters.
                    matched = false;
                } else if (const std::optional<int> score = weightedWordScore(
                               query.words[w], fields(record), appNameScore(w, record.source))) {
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
        for (std::size_t i = 0; i < found.size(); ++i) matches[i] = found[i].place;
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
        const Record& record = records_[scan[m.place]];
        outcome.results.push_back({record.id, m.score, record.date});
    }
    return outcome;
}

std::size_t ClipSearchIndex::textBytes() const {
    // A node of the lookup by id holds its link, the pair and the cached hash.
    constexpr std::size_t kNodeBytes =
        sizeof(void*) + sizeof(std::pair<const Uuid, std::size_t>) + sizeof(std::size_t);
    // The block grows by doubling, but only the bytes written to it are ever touched.
    std::size_t total = texts_.size() + records_.capacity() * sizeof(Record) +
                        order_.capacity() * sizeof(std::uint32_t) + positions_.size() * kNodeBytes +
                        positions_.bucket_count() * sizeof(void*);
    for (const Source& source : sources_) {
        total += sizeof(source) + (source.appID ? source.appID->capacity() : 0) +
                 source.appName.heapBytes();
    }
    return total;
}

}  // namespace harbex
