#pragma once

#include <map>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "HarbexClipCore/Support/Json.hpp"

namespace harbex {

// Any JSON value, held so that members a document does not know survive a read and a write.
// Numbers are doubles, as the sibling application's JSON reader keeps them; object members are
// kept sorted by key (the shared documents are written with sorted keys anyway). Thread: any (a
// value).
struct AnyJSON {
    struct Null {
        friend bool operator==(Null, Null) = default;
    };
    using Array = std::vector<AnyJSON>;
    using Object = std::map<std::string, AnyJSON>;

    std::variant<Null, bool, double, std::string, Array, Object> value;

    AnyJSON() = default;
    AnyJSON(bool boolean) : value(boolean) {}
    AnyJSON(double number) : value(number) {}
    AnyJSON(std::string string) : value(std::move(string)) {}
    AnyJSON(const char* string) : value(std::string(string)) {}
    AnyJSON(Array array) : value(std::move(array)) {}
    AnyJSON(Object object) : value(std::move(object)) {}

    bool isNull() const { return std::holds_alternative<Null>(value); }
    const bool* ifBool() const { return std::get_if<bool>(&value); }
    const double* ifNumber() const { return std::get_if<double>(&value); }
    const std::string* ifString() const { return std::get_if<std::string>(&value); }
    const Array* ifArray() const { return std::get_if<Array>(&value); }
    const Object* ifObject() const { return std::get_if<Object>(&value); }

    friend bool operator==(const AnyJSON&, const AnyJSON&) = default;
};

// Integral numbers within the exact range of a double are written without a fraction or
// exponent ("3", not "3E0"), so files stay readable and diff cleanly.
JsonValue encodeJson(const AnyJSON& value);
// Every JSON value decodes; nesting is as deep as the parser allowed.
JsonStatus decodeJson(const JsonValue& json, AnyJSON& out);

// A number as AnyJSON writes it; shared with records that keep plain double fields. Never writes
// a non-finite number (which JSON cannot hold): see finiteNumber.
JsonValue encodeJsonNumber(double number);
// Numbers too large for a double (1e400) parse as infinities, which no JSON writer can put back;
// they are held as the largest finite double of the same sign instead, and NaN as 0.
double finiteNumber(double number);

// The members of `object` whose keys are not in `known`, for records that keep what they do not
// understand.
std::map<std::string, AnyJSON> unknownMembers(const JsonObject& object,
                                              std::initializer_list<std::string_view> known);
// Adds `unknown` to `object` without replacing members the record itself wrote.
void addUnknownMembers(JsonObject& object, const std::map<std::string, AnyJSON>& unknown);

}  // namespace harbex
