#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace harbex {

// Which pairs of neighbouring bytes a long text holds, hashed into 1,024 bits: the text can only
// contain a word whose neighbouring pairs are all here. A word missing from a long text would
// otherwise cost a scan of all of it on every keystroke. Short texts get no set: scanning them
// costs less than the set's memory. Thread: any (a value).
class BytePairSet {
public:
    // Texts shorter than this get no set.
    static constexpr std::size_t kSmallestText = 2048;

    BytePairSet() = default;
    BytePairSet(const BytePairSet& other)
        : bits_(other.bits_ ? std::make_unique<Bits>(*other.bits_) : nullptr) {}
    BytePairSet(BytePairSet&&) noexcept = default;
    BytePairSet& operator=(const BytePairSet& other) {
        if (this != &other) bits_ = other.bits_ ? std::make_unique<Bits>(*other.bits_) : nullptr;
        return *this;
    }
    BytePairSet& operator=(BytePairSet&&) noexcept = default;

    // The set of `text`'s pairs, or an empty set when the text is short.
    static BytePairSet of(std::string_view text) {
        BytePairSet set;
        if (text.size() < kSmallestText) return set;
        set.bits_ = std::make_unique<Bits>();
        Bits& bits = *set.bits_;
        const auto* p = reinterpret_cast<const unsigned char*>(text.data());
        for (std::size_t i = 0; i + 1 < text.size(); ++i) {
            const std::size_t at = slot(p[i], p[i + 1]);
            bits[at / 64] |= std::uint64_t{1} << (at % 64);
        }
        return set;
    }

    // False only when the text cannot contain `word`; always true for an empty set.
    bool mayContain(std::string_view word) const {
        if (!bits_) return true;
        const auto* p = reinterpret_cast<const unsigned char*>(word.data());
        for (std::size_t i = 0; i + 1 < word.size(); ++i) {
            const std::size_t at = slot(p[i], p[i + 1]);
            if (((*bits_)[at / 64] >> (at % 64) & 1) == 0) return false;
        }
        return true;
    }

    bool empty() const { return !bits_; }
    std::size_t heapBytes() const { return bits_ ? sizeof(Bits) : 0; }

    friend bool operator==(const BytePairSet& a, const BytePairSet& b) {
        if (!a.bits_ || !b.bits_) return !a.bits_ && !b.bits_;
        return *a.bits_ == *b.bits_;
    }

private:
    using Bits = std::array<std::uint64_t, 16>;

    // The low five bits of each byte: every pair of ASCII letters gets a bit of its own.
    static std::size_t slot(unsigned char a, unsigned char b) {
        return (std::size_t{a} & 31) << 5 | (std::size_t{b} & 31);
    }

    std::unique_ptr<Bits> bits_;
};

}  // namespace harbex
