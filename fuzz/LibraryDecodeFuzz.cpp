// Arbitrary bytes as a stored history document: parsing and strict decoding must fail cleanly or
// give a library with unique ids that encodes (both ways alike) and decodes back to itself, and
// the derived texts of every item must be computable.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include "HarbexClipCore/Model/ClipHistory.hpp"
#include "HarbexClipCore/Model/ClipLibrary.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace harbex;
    const auto json = parseJson(std::string_view(reinterpret_cast<const char*>(data), size));
    if (!json) return 0;
    ClipLibrary library;
    if (!decodeJson(*json, library)) return 0;

    for (const auto& item : library.items) {
        (void)item.title();
        (void)item.subtitle();
        (void)item.host();
        if (item.text) (void)TextCounts::of(*item.text);
    }
    // The text written straight from the records is the value tree's text, byte for byte.
    const std::string text = serializeJson(encodeJson(library));
    if (jsonText(library) != text) std::abort();
    const auto again = parseJson(text);
    ClipLibrary decoded;
    // NaN never reaches a record (decoding refuses non-finite dates), so equality must hold.
    if (!again || !decodeJson(*again, decoded) || !(decoded == library)) std::abort();

    ClipHistory history(std::move(library));
    // Decoding leaves every id naming exactly one item.
    for (std::size_t index = 0; index < history.items().size(); ++index) {
        if (history.item(history.items()[index].id) != &history.items()[index]) std::abort();
    }
    (void)history.prune(Date{800'000'000}, ClipRetention::month, 50, {});
    return 0;
}
