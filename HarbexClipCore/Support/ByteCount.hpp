#pragma once

#include <cstdint>
#include <string>

namespace harbex {

// A byte count as a file browser shows a file's size: decimal units (1 KB = 1,000 bytes), whole
// kilobytes, one decimal for megabytes and two from gigabytes on, trailing zeros dropped.
// "Zero KB", "1 byte", "999 bytes", "2 KB", "1.5 MB", "1.23 GB". Thread: any.
std::string formatByteCount(std::int64_t byteCount);

}  // namespace harbex
