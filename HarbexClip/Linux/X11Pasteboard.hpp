#pragma once

#include <xcb/xcb.h>

#include <chrono>
#include <cstdint>
#include <functional>
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
    // An owner that quits is seen through XFixes (its window destroyed, its client gone, or the
    // selection set to None). Owners that store on exit ask the CLIPBOARD_MANAGER selection,
    // which this object claims at construction unless another manager holds it.
    void setTextLimit(std::optional<std::size_t> bytes) override { textLimit_ = bytes; }
    bool ownerLeft() override { return ownerLeft_; }
    ClipKeepOnQuit keepOnQuit() override;
    void setKeepOnQuitJudge(std::function<bool(std::int64_t)> judge) override {
        judge_ = std::move(judge);
    }

    // Whether this object owns CLIPBOARD right now.
    bool ownsClipboard() const { return owning_; }
    // Transfers in progress to other clients (INCR), for tests and diagnostics.
    std::size_t activeTransfers() const { return transfers_.size(); }

    // The role identifiers one X target name stands for (empty for meta targets such as
    // TARGETS; the name itself for names without a mapping).
    static std::vector<std::string> rolesForTarget(std::string_view target);

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
    // `type`, when given, receives the type the owner gave the data. A reply announced or grown
    // past `limit` is abandoned and sets `overLimit`.
    std::optional<Bytes> request(xcb_atom_t target, xcb_atom_t* type = nullptr,
                                 std::size_t limit = kMaxReadBytes, bool* overLimit = nullptr);
    std::optional<Bytes> readProperty(xcb_atom_t property, bool& incremental,
                                      xcb_atom_t* type = nullptr);
    std::optional<Bytes> readFirst(std::initializer_list<std::string_view> names,
                                   std::string_view* which = nullptr,
                                   std::size_t limit = kMaxReadBytes, bool* overLimit = nullptr);
    std::size_t textLimit() const {
        return std::min(textLimit_.value_or(kMaxReadBytes), kMaxReadBytes);
    }
    std::optional<std::string> readString(std::string_view name);
    xcb_atom_t nextProperty();

    bool handleEvent(const xcb_generic_event_t& event);
    void handleOwnerChange(const xcb_generic_event_t& event);
    void handleRequest(const xcb_selection_request_event_t& request);
    bool serveTarget(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    void continueTransfer(xcb_window_t window, xcb_atom_t property);
    void dropIdleTransfers();
    void serve(std::string_view target, std::string_view type, Bytes data);
    void claimManager();
    // Answers a SAVE_TARGETS request held back from event handling (reading the owner waits).
    void storeForQuittingOwner(const xcb_selection_request_event_t& save);
    bool takeOwnership(xcb_timestamp_t time);
    void notify(const xcb_selection_request_event_t& request, xcb_atom_t property);

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
    bool ownerLeft_ = false;
    std::optional<std::size_t> textLimit_;
    xcb_atom_t manager_ = XCB_ATOM_NONE;
    bool owningManager_ = false;
    bool managerFree_ = false;  // nobody holds CLIPBOARD_MANAGER: claim it at the next look
    std::optional<xcb_selection_request_event_t> pendingSave_;
    std::function<bool(std::int64_t)> judge_;
};

}  // namespace harbex
