#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace harbex {

enum class JsonLayout { indented, compact };

// The JSON text laid out again, or nothing when it is not one valid JSON document. Only the white
// space between tokens changes: keys keep their order (duplicates included) and numbers and
// strings keep their exact spelling, escapes and all. `indented` puts each member and element on
// its own line, two spaces per level, "key": value, with empty objects and arrays as {} and [];
// `compact` drops all white space. Thread: any.
std::optional<std::string> relaidJson(std::string_view text, JsonLayout layout);

}  // namespace harbex
