// Sealed files come from disk, where anything may be: opening arbitrary bytes must give a typed
// refusal, never a crash. The first byte picks what the rest is:
//   even: a whole sealed file, opened with a fixed key (only its form is checked first), and
//         opened in place, which must agree;
//   odd:  plain text, sealed with the key (copying and in place) and opened again, which must
//         give it back whole, then decoded as a library the way a load does.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string_view>

#include "HarbexClipCore/Model/ClipLibrary.hpp"
#include "HarbexClipCore/Store/SealedBox.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace harbex;
    if (size == 0) return 0;
    static const SealKey key = *SealKey::fromBytes(Bytes(kSealKeySize, 0x5A));
    const std::span<const std::uint8_t> rest(data + 1, size - 1);

    if (data[0] % 2 == 0) {
        const auto opened = openFile(key, rest, "history");
        // Opening in place must agree, on a copy the cipher may write over.
        Bytes copy(rest.begin(), rest.end());
        const auto inPlace = openFileInPlace(key, copy, "history");
        if (inPlace.has_value() != opened.has_value()) std::abort();
        if (!inPlace && !(inPlace.error() == opened.error())) std::abort();
        if (opened) return 0;  // only a forged tag would get here
        const bool wrongForm = opened.error().is(ClipStoreError::Case::badFormat);
        if (wrongForm == hasSealedForm(rest)) std::abort();
        if (!wrongForm && !opened.error().is(ClipStoreError::Case::cannotOpen)) std::abort();
        return 0;
    }

    const auto sealed = sealFile(key, rest, "history");
    if (!sealed) std::abort();
    if (sealed->size() != rest.size() + kSealedMinimumSize - 1) std::abort();
    const auto opened = openFile(key, *sealed, "history");
    if (rest.empty()) return 0;  // a sealed empty text is too short to open, by design
    if (!opened || !std::equal(opened->begin(), opened->end(), rest.begin(), rest.end())) {
        std::abort();
    }
    if (openFile(key, *sealed, "image history")) std::abort();
    // Sealed where it lies, the same bytes open the same way.
    Bytes laidOut(rest.size() + kSealedOverhead);
    std::copy(rest.begin(), rest.end(), laidOut.begin() + kSealedHeaderSize);
    if (!sealFileInPlace(key, laidOut, "history")) std::abort();
    const auto reopened = openFile(key, laidOut, "history");
    if (!reopened || *reopened != *opened) std::abort();
    const auto json =
        parseJson(std::string_view(reinterpret_cast<const char*>(opened->data()), opened->size()));
    if (json) (void)decodeJsonAs<ClipLibrary>(*json);
    return 0;
}
