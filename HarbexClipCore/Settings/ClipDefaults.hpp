#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "HarbexClipCore/Support/Bytes.hpp"
#include "HarbexClipCore/Support/Date.hpp"

namespace harbex {

// The user-defaults store: small values under string keys ("clipSettings", "clipShowAtLaunch",
// "harbex-clip-settings:page", ...) that outlive the process. Main thread only.
//
// Each getter returns nothing when the key is absent or holds a value of another type. Setters
// replace whatever the key held; they never fail from the caller's point of view (a store that
// cannot persist keeps the value for this run and reports through its own means).
class ClipDefaults {
public:
    virtual ~ClipDefaults() = default;

    virtual std::optional<Bytes> data(std::string_view key) const = 0;
    virtual void setData(std::string_view key, const Bytes& value) = 0;

    virtual std::optional<bool> boolean(std::string_view key) const = 0;
    virtual void setBool(std::string_view key, bool value) = 0;

    virtual std::optional<Date> date(std::string_view key) const = 0;
    virtual void setDate(std::string_view key, Date value) = 0;

    // Plain strings, such as the persisted name of an enumeration case.
    virtual std::optional<std::string> string(std::string_view key) const = 0;
    virtual void setString(std::string_view key, std::string_view value) = 0;

    // Removing an absent key does nothing.
    virtual void remove(std::string_view key) = 0;
};

}  // namespace harbex
