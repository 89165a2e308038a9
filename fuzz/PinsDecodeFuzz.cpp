// Reads "clipboard-pins.json" as another application (or a damaged disk) may have left it.
// Whatever decodes must write back to text that decodes to the same document, and its pins must
// turn into copies and back without trouble.
//
// Numbers are compared to within one unit in the last place: Boost.JSON 1.81 does not parse
// every double exactly (long mantissas with large exponents, such as 8.88888888888889E72, come
// back one step off), although every date of realistic size does round-trip exactly.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "HarbexKit/ClipPinsBridge.hpp"
#include "HarbexKit/ClipboardPins.hpp"

namespace {

using harbex::JsonValue;

bool nearlyEqual(const JsonValue& a, const JsonValue& b) {
    if (a.is_number() && b.is_number()) {
        const double x = a.to_number<double>();
        const double y = b.to_number<double>();
        return x == y || std::nextafter(x, y) == y;
    }
    if (a.kind() != b.kind()) return false;
    if (const auto* array = a.if_array()) {
        const auto& other = b.get_array();
        if (array->size() != other.size()) return false;
        for (std::size_t i = 0; i < array->size(); ++i) {
            if (!nearlyEqual((*array)[i], other[i])) return false;
        }
        return true;
    }
    if (const auto* object = a.if_object()) {
        const auto& other = b.get_object();
        if (object->size() != other.size()) return false;
        for (const auto& member : *object) {
            const JsonValue* match = other.if_contains(member.key());
            if (!match || !nearlyEqual(member.value(), *match)) return false;
        }
        return true;
    }
    return a == b;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace harbex;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    auto json = parseJson(text);
    if (!json) return 0;
    auto pins = decodeJsonAs<ClipboardPins>(*json);
    if (!pins) return 0;

    const std::string written = serializeJsonSorted(encodeJson(*pins));
    auto reparsed = parseJson(written);
    if (!reparsed) std::abort();
    auto again = decodeJsonAs<ClipboardPins>(*reparsed);
    if (!again || !nearlyEqual(encodeJson(*again), encodeJson(*pins))) std::abort();

    for (const auto& pin : pins->pins) {
        auto item = ClipPinsBridge::clipItem(pin);
        if (!item) continue;
        (void)item->title();
        (void)item->subtitle();
        if (auto record = ClipPinsBridge::pinRecord(*item); record && record->id != pin.id) {
            std::abort();
        }
    }
    return 0;
}
