#include "HarbexClipCore/Support/ByteCount.hpp"

#include <gtest/gtest.h>

#include <limits>

namespace harbex {
namespace {

TEST(ByteCountTests, SizesReadAsAFileBrowserShowsThem) {
    struct Case {
        std::int64_t bytes;
        const char* text;
    };
    const Case cases[] = {
        {0, "Zero KB"},
        {1, "1 byte"},
        {2, "2 bytes"},
        {999, "999 bytes"},
        {1000, "1 KB"},
        {1499, "1 KB"},
        {1500, "2 KB"},
        {2500, "3 KB"},  // halves round up, not to even
        {999'499, "999 KB"},
        {999'500, "1 MB"},  // 1,000 KB reads as the next unit
        {1'000'000, "1 MB"},
        {1'500'000, "1.5 MB"},
        {1'049'999, "1 MB"},
        {1'050'000, "1.1 MB"},
        {999'950'000, "1 GB"},
        {1'234'567'890, "1.23 GB"},
        {1'200'000'000, "1.2 GB"},
        {5'000'000'000'000, "5 TB"},
        {std::numeric_limits<std::int64_t>::max(), "9.22 EB"},
        {-1, "-1 byte"},
        {-1500, "-2 KB"},
        {std::numeric_limits<std::int64_t>::min(), "-9.22 EB"},
    };
    for (const auto& c : cases) EXPECT_EQ(formatByteCount(c.bytes), c.text) << c.bytes;
}

}  // namespace
}  // namespace harbex
