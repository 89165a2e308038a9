#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>

namespace harbex {

// Which pairs of neighbouring bytes a long text holds, hashed into 1,024 bits: the text can only
// contain a word whose neighbouring pairs are all here. A word missing from a long text would
// otherwise cost a scan of all of it on every keystroke. Short texts get no set: scanning them
// costs less than the set's memory.
//
// The set is a table of `kTableBytes` bytes that may live anywhere (the search index keeps it
// beside the text); `BytePairSet` is one that owns its table. Thread: any (a value).
class BytePairSet {
public:
    // Texts shorter than this get no set.
    static constexpr std::size_t kSmallestText = 512;
    static constexpr std::size_t kTableBytes = 128;

    // Writes the table of `text`'s pairs into `table` (`kTableBytes` bytes, any alignment).
    static void fill(std::string_view text, unsigned char* table) {
        std::memset(table, 0, kTableBytes);
        const auto* p = reinterpret_cast<const unsigned char*>(text.data());
        for (std::size_t i = 0; i + 1 < text.size(); ++i) {
            const std::size_t at = slot(p[i], p[i + 1]);
            table[at / 8] |= static_cast<unsigned char>(1u << (at % 8));
        }
    }

    // False only when the text whose table this is cannot contain `word`; always true for no
    // table.
    static bool mayContain(const unsigned char* table, std::string_view word) {
        if (table == nullptr) return true;
        const auto* p = reinterpret_cast<const unsigned char*>(word.data());
        for (std::size_t i = 0; i + 1 < word.size(); ++i) {
            const std::size_t at = slot(p[i], p[i + 1]);
            if ((table[at / 8] >> (at % 8) & 1) == 0) return false;
        }
        return true;
    }

    BytePairSet() = default;
    BytePairSet(const BytePairSet& other) { *this = other; }
    BytePairSet(BytePairSet&&) noexcept = default;
    BytePairSet& operator=(const BytePairSet& other) {
        if (this == &other) return *this;
        table_.reset();
        if (other.table_) {
            table_ = std::make_unique<unsigned char[]>(kTableBytes);
            std::memcpy(table_.get(), other.table_.get(), kTableBytes);
        }
        return *this;
    }
    BytePairSet& operator=(BytePairSet&&) noexcept = default;

    // The set of `text`'s pairs, or an empty set when the text is short.
    static BytePairSet of(std::string_view text) {
        BytePairSet set;
        if (text.size() < kSmallestText) return set;
        set.table_ = std::make_unique<unsigned char[]>(kTableBytes);
        fill(text, set.table_.get());
        return set;
    }

    bool mayContain(std::string_view word) const { return mayContain(table_.get(), word); }
    // The table, or null for an empty set.
    const unsigned char* table() const { return table_.get(); }
    bool empty() const { return !table_; }
    std::size_t heapBytes() const { return table_ ? kTableBytes : 0; }

    friend bool operator==(const BytePairSet& a, const BytePairSet& b) {
        if (!a.table_ || !b.table_) return !a.table_ && !b.table_;
        return std::memcmp(a.table_.get(), b.table_.get(), kTableBytes) == 0;
    }

private:
    // The low five bits of each byte: every pair of ASCII letters gets a bit of its own.
    static std::size_t slot(unsigned char a, unsigned char b) {
        return (std::size_t{a} & 31) << 5 | (std::size_t{b} & 31);
    }

    std::unique_ptr<unsigned char[]> table_;
};

}  // namespace harbex
