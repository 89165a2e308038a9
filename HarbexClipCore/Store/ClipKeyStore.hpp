#pragma once

#include <cstdint>
#include <expected>
#include <optional>
#include <span>

#include "HarbexClipCore/Support/Bytes.hpp"

namespace harbex {

// Status codes of the login keyring, in the signed 32-bit form the store reports them. The
// platform key stores map their own failures onto these.
using KeychainStatus = std::int32_t;
inline constexpr KeychainStatus kKeychainItemNotFound = -25300;
// Locked, or the user dismissed the unlock prompt, or it did not answer in time.
inline constexpr KeychainStatus kKeychainInteractionNotAllowed = -25308;
// No keyring service to ask (no session bus, nothing owning the Secret Service name).
inline constexpr KeychainStatus kKeychainNotAvailable = -25291;
// The stored item holds something that is not a key of ours.
inline constexpr KeychainStatus kKeychainDecodeFailed = -26275;

// Where the history key lives. Called by ClipStore under its key lock, so from one thread at a
// time (the main thread or the store's save thread); implementations need no locking of their
// own beyond that.
class ClipKeyStore {
public:
    virtual ~ClipKeyStore() = default;

    // The stored bytes, or nothing when no item exists (item-not-found is not an error); fails
    // with the keyring's status otherwise.
    virtual std::expected<std::optional<Bytes>, KeychainStatus> read() = 0;
    // Stores `bytes`, replacing what was there.
    virtual std::expected<void, KeychainStatus> write(std::span<const std::uint8_t> bytes) = 0;
    // Removes the item; a missing item is not an error.
    virtual std::expected<void, KeychainStatus> remove() = 0;
};

}  // namespace harbex
