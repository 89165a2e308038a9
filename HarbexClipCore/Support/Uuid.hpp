#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace harbex {

// A 128-bit identifier, written in upper-case 8-4-4-4-12 form.
struct Uuid {
    std::array<std::uint8_t, 16> bytes{};

    // A version-4 UUID from OpenSSL's random bytes.
    static Uuid random();
    // Accepts either case; anything but the 36-character hyphenated form gives nothing.
    static std::optional<Uuid> parse(std::string_view text);

    std::string string() const;

    friend auto operator<=>(const Uuid&, const Uuid&) = default;
};

}  // namespace harbex

template <>
struct std::hash<harbex::Uuid> {
    std::size_t operator()(const harbex::Uuid& id) const noexcept;
};
