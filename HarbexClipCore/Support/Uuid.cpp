#include "HarbexClipCore/Support/Uuid.hpp"

#include <openssl/rand.h>

#include <cassert>
#include <cstring>

namespace harbex {

Uuid Uuid::random() {
    Uuid id;
    const int ok = RAND_bytes(id.bytes.data(), static_cast<int>(id.bytes.size()));
    assert(ok == 1 && "the system random source failed");
    (void)ok;
    id.bytes[6] = static_cast<std::uint8_t>((id.bytes[6] & 0x0F) | 0x40);  // version 4
    id.bytes[8] = static_cast<std::uint8_t>((id.bytes[8] & 0x3F) | 0x80);  // RFC 4122 variant
    return id;
}

namespace {
int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}
constexpr bool isHyphenAt(std::size_t i) { return i == 8 || i == 13 || i == 18 || i == 23; }
}  // namespace

std::optional<Uuid> Uuid::parse(std::string_view text) {
    if (text.size() != 36) return std::nullopt;
    Uuid id;
    std::size_t byte = 0;
    for (std::size_t i = 0; i < text.size();) {
        if (isHyphenAt(i)) {
            if (text[i] != '-') return std::nullopt;
            ++i;
            continue;
        }
        const int high = hexValue(text[i]);
        const int low = hexValue(text[i + 1]);
        if (high < 0 || low < 0 || isHyphenAt(i + 1)) return std::nullopt;
        id.bytes[byte++] = static_cast<std::uint8_t>(high * 16 + low);
        i += 2;
    }
    return id;
}

std::string Uuid::string() const {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    std::string out;
    out.reserve(36);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) out.push_back('-');
        out.push_back(kDigits[bytes[i] >> 4]);
        out.push_back(kDigits[bytes[i] & 0x0F]);
    }
    return out;
}

}  // namespace harbex

std::size_t std::hash<harbex::Uuid>::operator()(const harbex::Uuid& id) const noexcept {
    std::uint64_t a;
    std::uint64_t b;
    std::memcpy(&a, id.bytes.data(), 8);
    std::memcpy(&b, id.bytes.data() + 8, 8);
    return static_cast<std::size_t>(a ^ (b * 0x9E3779B97F4A7C15ULL));
}
