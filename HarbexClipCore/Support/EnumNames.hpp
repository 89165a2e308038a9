#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <utility>

namespace harbex {

// The persisted names of an enumeration. Specialise with
//   template <> struct EnumNames<ClipKind> {
//       static constexpr std::array values{std::pair{ClipKind::text, std::string_view("text")},
//       ...};
//   };
// listing the cases in declaration order; `allCases` and the JSON coding follow from it.
template <class E>
struct EnumNames;

template <class E>
concept NamedEnum = requires {
    EnumNames<E>::values;
};

template <NamedEnum E>
constexpr std::string_view enumName(E value) {
    for (const auto& [item, name] : EnumNames<E>::values) {
        if (item == value) return name;
    }
    return {};
}

template <NamedEnum E>
constexpr std::optional<E> enumFromName(std::string_view name) {
    for (const auto& [item, itemName] : EnumNames<E>::values) {
        if (itemName == name) return item;
    }
    return std::nullopt;
}

template <NamedEnum E>
constexpr auto allCases() {
    std::array<E, EnumNames<E>::values.size()> out{};
    for (std::size_t i = 0; i < out.size(); ++i) out[i] = EnumNames<E>::values[i].first;
    return out;
}

}  // namespace harbex
