#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <variant>

#include "HarbexClipCore/Settings/ClipDefaults.hpp"

namespace harbex {

// User defaults held in memory, for tests. Counts writes so that a test can tell whether a
// failed save touched the store.
class MemoryDefaults final : public ClipDefaults {
public:
    std::optional<Bytes> data(std::string_view key) const override;
    void setData(std::string_view key, const Bytes& value) override;
    std::optional<bool> boolean(std::string_view key) const override;
    void setBool(std::string_view key, bool value) override;
    std::optional<Date> date(std::string_view key) const override;
    void setDate(std::string_view key, Date value) override;
    std::optional<std::string> string(std::string_view key) const override;
    void setString(std::string_view key, std::string_view value) override;
    void remove(std::string_view key) override;

    // Setters and removals so far.
    std::size_t writeCount() const { return writeCount_; }

private:
    using Value = std::variant<Bytes, bool, Date, std::string>;

    template <class T>
    std::optional<T> get(std::string_view key) const {
        const auto it = values_.find(key);
        if (it == values_.end()) return std::nullopt;
        if (const T* value = std::get_if<T>(&it->second)) return *value;
        return std::nullopt;
    }
    void put(std::string_view key, Value value);

    std::map<std::string, Value, std::less<>> values_;
    std::size_t writeCount_ = 0;
};

}  // namespace harbex
