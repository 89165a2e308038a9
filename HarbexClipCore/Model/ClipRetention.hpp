#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

#include "HarbexClipCore/Support/EnumNames.hpp"

namespace harbex {

// How long unpinned copies are kept.
enum class ClipRetention { day, week, month, threeMonths, year, forever };

template <>
struct EnumNames<ClipRetention> {
    static constexpr std::array values{
        std::pair{ClipRetention::day, std::string_view("day")},
        std::pair{ClipRetention::week, std::string_view("week")},
        std::pair{ClipRetention::month, std::string_view("month")},
        std::pair{ClipRetention::threeMonths, std::string_view("threeMonths")},
        std::pair{ClipRetention::year, std::string_view("year")},
        std::pair{ClipRetention::forever, std::string_view("forever")},
    };
};

// The age limit in seconds. Deliberately fixed second counts (31, 92 and 366 days for month,
// three months and year), not calendar arithmetic; `forever` has none.
constexpr std::optional<double> ageLimit(ClipRetention retention) {
    switch (retention) {
        case ClipRetention::day: return 86'400.0;
        case ClipRetention::week: return 604'800.0;
        case ClipRetention::month: return 2'678'400.0;
        case ClipRetention::threeMonths: return 7'948'800.0;
        case ClipRetention::year: return 31'622'400.0;
        case ClipRetention::forever: return std::nullopt;
    }
    return std::nullopt;
}

}  // namespace harbex
