#include "HarbexKit/AnyJSON.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

namespace harbex {

namespace {
constexpr double kExactIntegerLimit = 9007199254740992.0;  // 2^53
}  // namespace

double finiteNumber(double number) {
    if (std::isnan(number)) return 0;
    if (std::isinf(number)) {
        return std::copysign(std::numeric_limits<double>::max(), number);
    }
    return number;
}

JsonValue encodeJsonNumber(double number) {
    number = finiteNumber(number);
    if (number == std::trunc(number) && number == std::trunc(number) &&
        std::fabs(number) <= kExactIntegerLimit && !(number == 0 && std::signbit(number))) {
        return JsonValue(static_cast<std::int64_t>(number));
    }
    return JsonValue(number);
}

JsonValue encodeJson(const AnyJSON& value) {
    struct Encoder {
        JsonValue operator()(AnyJSON::Null) const { return nullptr; }
        JsonValue operator()(bool boolean) const { return boolean; }
        JsonValue operator()(double number) const { return encodeJsonNumber(number); }
        JsonValue operator()(const std::string& string) const { return JsonValue(string); }
        JsonValue operator()(const AnyJSON::Array& array) const {
            JsonArray out;
            out.reserve(array.size());
            for (const auto& element : array) out.push_back(encodeJson(element));
            return out;
        }
        JsonValue operator()(const AnyJSON::Object& object) const {
            JsonObject out;
            out.reserve(object.size());
            for (const auto& [key, member] : object) out.emplace(key, encodeJson(member));
            return out;
        }
    };
    return std::visit(Encoder{}, value.value);
}

JsonStatus decodeJson(const JsonValue& json, AnyJSON& out) {
    switch (json.kind()) {
        case boost::json::kind::null: out = AnyJSON(); break;
        case boost::json::kind::bool_: out = AnyJSON(json.get_bool()); break;
        case boost::json::kind::int64:
        case boost::json::kind::uint64:
        case boost::json::kind::double_:
            out = AnyJSON(finiteNumber(json.to_number<double>()));
            break;
        case boost::json::kind::string:
            out = AnyJSON(std::string(json.get_string().data(), json.get_string().size()));
            break;
        case boost::json::kind::array: {
            AnyJSON::Array array;
            array.reserve(json.get_array().size());
            for (const auto& element : json.get_array()) {
                AnyJSON decoded;
                (void)decodeJson(element, decoded);  // cannot fail
                array.push_back(std::move(decoded));
            }
            out = AnyJSON(std::move(array));
            break;
        }
        case boost::json::kind::object: {
            AnyJSON::Object object;
            for (const auto& member : json.get_object()) {
                AnyJSON decoded;
                (void)decodeJson(member.value(), decoded);
                object.insert_or_assign(std::string(member.key()), std::move(decoded));
            }
            out = AnyJSON(std::move(object));
            break;
        }
    }
    return {};
}

std::map<std::string, AnyJSON> unknownMembers(const JsonObject& object,
                                              std::initializer_list<std::string_view> known) {
    std::map<std::string, AnyJSON> unknown;
    for (const auto& member : object) {
        const std::string_view key(member.key().data(), member.key().size());
        if (std::find(known.begin(), known.end(), key) != known.end()) continue;
        AnyJSON value;
        (void)decodeJson(member.value(), value);
        unknown.insert_or_assign(std::string(key), std::move(value));
    }
    return unknown;
}

void addUnknownMembers(JsonObject& object, const std::map<std::string, AnyJSON>& unknown) {
    for (const auto& [key, value] : unknown) {
        if (!object.contains(key)) object.emplace(key, encodeJson(value));
    }
}

}  // namespace harbex
