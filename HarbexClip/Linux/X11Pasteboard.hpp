#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "HarbexClip/Linux/X11Connection.hpp"
#include "HarbexClipCore/Pasteboard/ClipPasteboard.hpp"

namespace harbex {

// The X11 CLIPBOARD selection as a ClipPasteboard. The change count follows XFixes owner
// notifications (one per owner change, ours counted at once when we take ownership). Reads ask
// the owner for one target at a time, each bounded by `kRequestTimeout` (restarted per INCR
// chunk); an owner that lets one request time out is not asked again until the next change, so a
// dead owner costs one bounded wait per copy. Writes own the selection and serve every format
// from memory until another client takes it. Main thread only; the connection must outlive it.
class X11Pasteboard final : public ClipPasteboard {
public:
    static constexpr auto kRequestTimeout = std::chrono::seconds(1);
    static constexpr auto kIdleTransferTimeout = std::chrono::seconds(10);
    static constexpr std::size_t kMaxChunk = 256 * 1024;
    // Larger replies are abandoned rather than held in memory.
    static constexpr std::size_t kMaxReadBytes = 512u * 1024 * 1024;

    explicit X11Pasteboard(X11Connection& connection);
    ~X11Pasteboard() override;
    X11Pasteboard(const X11Pasteboard&) = delete;
    X11Pasteboard& operator=(const X11Pasteboard&) = delete;

    // Processes pending X events first, so the count is current even when the caller's event
    // loop has not run.
    std::int64_t changeCount() override;
    // The owner's TARGETS mapped to role identifiers where a mapping exists (UTF8_STRING and the
    // other text targets → public.utf8-plain-text, ...); other names as the owner gave them.
    std::vector<std::string> types() override;
    std::optional<std::string> markerValue(std::string_view type) override;
    std::optional<PasteboardSnapshot> snapshot() override;
    std::int64_t write(const ClipPayload& payload,
                       std::optional<std::string_view> sourceID) override;

    // Whether this object owns CLIPBOARD right now.
    bool ownsClipboard() const { return owning_; }
    // Transfers in progress to other clients (INCR), for tests and diagnostics.
    std::size_t activeTransfers() const { return transfers_.size(); }

private:
    struct Target {
        xcb_atom_t atom = XCB_ATOM_NONE;
        std::string name;
    };
    struct Served {
        xcb_atom_t target = XCB_ATOM_NONE;
        xcb_atom_t type = XCB_ATOM_NONE;
        std::shared_ptr<const Bytes> data;
    };
    struct Transfer {
        xcb_window_t requestor = XCB_NONE;
        xcb_atom_t property = XCB_ATOM_NONE;
        xcb_atom_t type = XCB_ATOM_NONE;
        std::shared_ptr<const Bytes> data;
        std::size_t offset = 0;
        X11Connection::Clock::time_point lastActivity;
    };

    const std::vector<Target>& targets();
    const Target* findTarget(std::string_view name);
    std::optional<Bytes> request(xcb_atom_t target);
    std::optional<Bytes> readProperty(xcb_atom_t property, bool& incremental);
    std::optional<Bytes> read(std::string_view name);
    xcb_atom_t nextProperty();

    bool handleEvent(const xcb_generic_event_t& event);
    void handleOwnerChange(const xcb_generic_event_t& event);
    void handleRequest(const xcb_selection_request_event_t& request);
    bool serveTarget(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    void continueTransfer(xcb_window_t window, xcb_atom_t property);
    void dropIdleTransfers();
    void serve(std::string_view target, std::string_view type, Bytes data);

    X11Connection& connection_;
    int handlerID_ = 0;
    xcb_atom_t clipboard_ = XCB_ATOM_NONE;
    std::int64_t changeCount_ = 0;
    std::vector<xcb_timestamp_t> ownTakeovers_;
    bool owning_ = false;
    xcb_timestamp_t ownTime_ = XCB_CURRENT_TIME;
    std::vector<Served> served_;
    std::vector<Transfer> transfers_;
    std::optional<std::int64_t> targetsCount_;
    std::vector<Target> targets_;
    std::optional<std::int64_t> unresponsiveCount_;
    std::size_t nextProperty_ = 0;
};

}  // namespace harbex
