#include "HarbexClipCore/Testing/MemoryDefaults.hpp"

namespace harbex {

std::optional<Bytes> MemoryDefaults::data(std::string_view key) const { return get<Bytes>(key); }
void MemoryDefaults::setData(std::string_view key, const Bytes& value) { put(key, value); }

std::optional<bool> MemoryDefaults::boolean(std::string_view key) const { return get<bool>(key); }
void MemoryDefaults::setBool(std::string_view key, bool value) { put(key, value); }

std::optional<Date> MemoryDefaults::date(std::string_view key) const { return get<Date>(key); }
void MemoryDefaults::setDate(std::string_view key, Date value) { put(key, value); }

std::optional<std::string> MemoryDefaults::string(std::string_view key) const {
    return get<std::string>(key);
}
void MemoryDefaults::setString(std::string_view key, std::string_view value) {
    put(key, std::string(value));
}

void MemoryDefaults::remove(std::string_view key) {
    ++writeCount_;
    if (const auto it = values_.find(key); it != values_.end()) values_.erase(it);
}

void MemoryDefaults::put(std::string_view key, Value value) {
    ++writeCount_;
    values_.insert_or_assign(std::string(key), std::move(value));
}

}  // namespace harbex
