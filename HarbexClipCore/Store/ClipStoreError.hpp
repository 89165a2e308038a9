#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

#include "HarbexClipCore/Support/AtomicFile.hpp"
#include "HarbexClipCore/Support/Json.hpp"

namespace harbex {

// Why the store could not load, save, seal or open something. A value; travels between threads.
//
// The keyring's own failures keep their status code; file-system and JSON failures pass through
// unchanged so the message can name the path or the field.
class ClipStoreError {
public:
    enum class Case { keychain, cannotOpen, badFormat, file, json };

    struct Keychain {
        std::int32_t status = 0;
        friend bool operator==(const Keychain&, const Keychain&) = default;
    };
    struct CannotOpen {
        friend bool operator==(const CannotOpen&, const CannotOpen&) = default;
    };
    struct BadFormat {
        friend bool operator==(const BadFormat&, const BadFormat&) = default;
    };

    // The keyring answered with an unexpected status, on reading, writing or deleting the key.
    static ClipStoreError keychain(std::int32_t status) { return {Keychain{status}}; }
    // A sealed file of the right form that does not open with this key and associated data, or
    // a seal that could not be made.
    static ClipStoreError cannotOpen() { return {CannotOpen{}}; }
    // A sealed file that is too short or of an unknown format version.
    static ClipStoreError badFormat() { return {BadFormat{}}; }

    ClipStoreError(FileError error) : value_(std::move(error)) {}
    ClipStoreError(JsonError error) : value_(std::move(error)) {}

    Case kind() const { return static_cast<Case>(value_.index()); }
    bool is(Case which) const { return kind() == which; }
    std::optional<std::int32_t> keychainStatus() const;
    const FileError* fileError() const { return std::get_if<FileError>(&value_); }
    const JsonError* jsonError() const { return std::get_if<JsonError>(&value_); }

    // A plain phrase that reads after "Harbex Clipboard couldn’t save its history: ".
    std::string description() const;

    friend bool operator==(const ClipStoreError&, const ClipStoreError&) = default;

private:
    using Value = std::variant<Keychain, CannotOpen, BadFormat, FileError, JsonError>;
    ClipStoreError(Value value) : value_(std::move(value)) {}

    Value value_;
};

}  // namespace harbex
