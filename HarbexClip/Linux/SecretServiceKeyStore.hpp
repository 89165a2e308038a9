#pragma once

// The history key in the login keyring, through the Secret Service (gnome-keyring, KWallet,
// KeePassXC) with libsecret.
//
// Thread: any, one call at a time (ClipStore calls it under its key lock, from the main thread or
// its save thread). Every call blocks on D-Bus, so each is bounded by `timeout`: past it the call
// is cancelled and reported as the keyring not answering.

#include <chrono>
#include <string>

#include "HarbexClipCore/Store/ClipKeyStore.hpp"

namespace harbex {

// Where the key lives and how long one call may take.
struct SecretServiceKeyStoreOptions {
    std::string service = "app.harbexapps.clip.history";
    std::string account = "history-key";
    std::chrono::milliseconds timeout{10000};
};

class SecretServiceKeyStore final : public ClipKeyStore {
public:
    static constexpr const char* kSchemaName = "app.harbexapps.clip.history";
    static constexpr const char* kLabel = "Harbex Clipboard";
    static constexpr const char* kContentType = "application/octet-stream";

    using Options = SecretServiceKeyStoreOptions;

    explicit SecretServiceKeyStore(Options options = {}) : options_(std::move(options)) {}

    // The bytes of our item, or nothing when no item exists. Locked items are never unlocked
    // here (no prompt is raised): a locked item or collection is -25308, no Secret Service or no
    // session bus is -25291, a call that outlives the timeout is -25308.
    std::expected<std::optional<Bytes>, KeychainStatus> read() override;
    // Replaces the secret of the existing item, or adds one labelled "Harbex Clipboard" to the
    // default collection. Refuses with -25308 rather than prompt when either is locked.
    std::expected<void, KeychainStatus> write(std::span<const std::uint8_t> bytes) override;
    // Deletes every item of ours; none is not an error.
    std::expected<void, KeychainStatus> remove() override;

    const Options& options() const { return options_; }

private:
    Options options_;
};

}  // namespace harbex
