#pragma once

#include <atomic>
#include <functional>
#include <optional>

#include "HarbexClipCore/Store/ClipKeyStore.hpp"

namespace harbex {

// A key store whose answers tests choose: it holds bytes like MemoryKeyStore, can be told to fail
// each operation with a status, counts the calls, and runs an optional hook at the start of a
// read (to hold a thread there). Configure it before handing it over; the counters may be read
// from any thread.
class ScriptedKeyStore final : public ClipKeyStore {
public:
    ScriptedKeyStore() = default;
    explicit ScriptedKeyStore(std::optional<Bytes> stored) : stored_(std::move(stored)) {}

    std::optional<KeychainStatus> readFailure;
    std::optional<KeychainStatus> writeFailure;
    std::optional<KeychainStatus> removeFailure;
    std::function<void()> onRead;

    std::expected<std::optional<Bytes>, KeychainStatus> read() override {
        ++reads_;
        if (onRead) onRead();
        if (readFailure) return std::unexpected(*readFailure);
        return stored_;
    }
    std::expected<void, KeychainStatus> write(std::span<const std::uint8_t> bytes) override {
        ++writes_;
        if (writeFailure) return std::unexpected(*writeFailure);
        stored_ = Bytes(bytes.begin(), bytes.end());
        return {};
    }
    std::expected<void, KeychainStatus> remove() override {
        ++removes_;
        if (removeFailure) return std::unexpected(*removeFailure);
        stored_.reset();
        return {};
    }

    // Only while no store thread is using it.
    const std::optional<Bytes>& stored() const { return stored_; }
    int reads() const { return reads_; }
    int writes() const { return writes_; }
    int removes() const { return removes_; }

private:
    std::optional<Bytes> stored_;
    std::atomic<int> reads_ = 0;
    std::atomic<int> writes_ = 0;
    std::atomic<int> removes_ = 0;
};

}  // namespace harbex
