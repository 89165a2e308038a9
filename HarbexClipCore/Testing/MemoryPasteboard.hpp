#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "HarbexClipCore/Pasteboard/ClipPasteboard.hpp"

namespace harbex {

// A pasteboard in memory that behaves like the real one: the change count moves on every write
// and every simulated copy, reading asks only for declared flavours in the reading order, and
// every flavour whose data is asked for is recorded, so tests can prove that an undeclared or
// unwanted flavour is never requested. Single-threaded, like the real pasteboard.
class MemoryPasteboard final : public ClipPasteboard {
public:
    // One declared flavour. Absent data models a lazy provider that declares the type but yields
    // nothing when asked.
    struct Flavour {
        std::string type;
        std::optional<Bytes> data;

        static Flavour text(std::string_view type, std::string_view value) {
            return Flavour{std::string(type), bytesOf(value)};
        }
        static Flavour bytes(std::string_view type, Bytes value) {
            return Flavour{std::string(type), std::move(value)};
        }
        static Flavour declaredOnly(std::string_view type) {
            return Flavour{std::string(type), std::nullopt};
        }
    };

    std::int64_t changeCount() override { return changeCount_; }
    std::vector<std::string> types() override;
    std::optional<std::string> markerValue(std::string_view type) override;
    std::optional<PasteboardSnapshot> snapshot() override;
    std::int64_t write(const ClipPayload& payload,
                       std::optional<std::string_view> sourceID) override;

    // Another application copies: the contents become exactly `flavours`, in this order, and
    // the change count moves. Returns the new count.
    std::int64_t copy(std::vector<Flavour> flavours);
    // Another application copies plain text alone.
    std::int64_t copyText(std::string_view text);
    // Another application takes the pasteboard and offers nothing.
    std::int64_t clearByAnotherApp() { return copy({}); }

    bool ownerLeft() override { return ownerLeft_; }
    ClipKeepOnQuit keepOnQuit() override { return keepOnQuit_; }
    void setKeepOnQuitJudge(std::function<bool(std::int64_t)> judge) override {
        judge_ = std::move(judge);
    }
    // Who keeps copies of quitting owners, as the system would say.
    void setKeepOnQuit(ClipKeepOnQuit duty) { keepOnQuit_ = duty; }
    // The owner quits without handing its copy over: the pasteboard empties.
    std::int64_t ownerQuits();
    // The owner offers its copy as it quits; when the judge keeps it the contents stay (with
    // the own-write marker) and the count holds, otherwise the owner quits as above. Returns
    // whether the copy was kept.
    bool ownerQuitsHandingOver();

    // Every flavour whose data was asked for since the last `forgetRequests`, in order.
    const std::vector<std::string>& requestedTypes() const { return requested_; }
    void forgetRequests() { requested_.clear(); }
    // A flavour's data as it stands, without recording a request (for assertions on writes).
    std::optional<Bytes> contents(std::string_view type) const;

private:
    const Flavour* find(std::string_view type) const;
    // Asks the owner for a flavour's data and records the request.
    std::optional<Bytes> read(std::string_view type);
    // Reads only a declared flavour, as a real reader that first looks at the offered types.
    std::optional<Bytes> readDeclared(std::string_view type);
    std::optional<std::string> readString(std::string_view type);
    void put(std::string_view type, Bytes data);

    std::int64_t changeCount_ = 0;
    std::vector<Flavour> flavours_;
    std::vector<std::string> requested_;
    bool ownerLeft_ = false;
    ClipKeepOnQuit keepOnQuit_ = ClipKeepOnQuit::ours;
    std::function<bool(std::int64_t)> judge_;
};

}  // namespace harbex
