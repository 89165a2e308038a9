#pragma once

// The one synthetic history every benchmark draws from, so that figures from different programs
// compare. Deterministic: the same count and seed give the same library on every machine.

#include <cstddef>
#include <cstdint>
#include <random>
#include <string>

#include "HarbexClipCore/Model/ClipLibrary.hpp"
#include "HarbexClipCore/Support/Date.hpp"

namespace harbex::bench {

inline constexpr std::uint64_t kSyntheticSeed = 0x4861726265780001;  // "Harbex" + 1
// The moment the newest synthetic copy was made (mid-November 2025); older ones spread back
// over about eight months.
inline constexpr Date kSyntheticNow{785'000'000};

// `itemCount` copies, newest first, with a realistic mix: mostly plain text, then links (most
// with titles), rich text with small RTF and HTML, code, images described by ClipImageInfo,
// files and colours. Text lengths: half up to 100 characters, 30% up to 1,000, 15% up to 5,000,
// 5% up to 20,000, with some accented, CJK and emoji words. A few copies are pinned to four
// boards, a few carry custom titles, details, paste counts or an expiry.
ClipLibrary makeSyntheticHistory(std::size_t itemCount, std::uint64_t seed = kSyntheticSeed);

// Body text of about `characters` user-perceived characters, in words and lines, as the
// history's texts are made.
std::string syntheticText(std::mt19937_64& random, std::size_t characters);

}  // namespace harbex::bench
