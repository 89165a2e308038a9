#pragma once

#include <optional>

#include "HarbexClipCore/Store/ClipKeyStore.hpp"

namespace harbex {

// Keeps the key in memory, for tests and previews. Never fails. Same threading as ClipKeyStore.
class MemoryKeyStore final : public ClipKeyStore {
public:
    MemoryKeyStore() = default;
    explicit MemoryKeyStore(Bytes stored) : stored_(std::move(stored)) {}

    std::expected<std::optional<Bytes>, KeychainStatus> read() override { return stored_; }
    std::expected<void, KeychainStatus> write(std::span<const std::uint8_t> bytes) override {
        stored_ = Bytes(bytes.begin(), bytes.end());
        return {};
    }
    std::expected<void, KeychainStatus> remove() override {
        stored_.reset();
        return {};
    }

    const std::optional<Bytes>& stored() const { return stored_; }

private:
    std::optional<Bytes> stored_;
};

}  // namespace harbex
