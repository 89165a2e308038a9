#pragma once

#include <chrono>
#include <cstdint>
#include <expected>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "HarbexClipCore/Pasteboard/ClipPasteboard.hpp"
#include "HarbexClipCore/Support/Bytes.hpp"

struct wl_display;
struct wl_registry;
struct wl_proxy;

namespace harbex {

struct DataControlProtocol;

// Why the Wayland clipboard is not (or no longer) available.
enum class WaylandError {
    noDisplay,       // no compositor answers at the display named
    noDataControl,   // the compositor offers neither data-control manager (GNOME's Mutter)
    managerTooOld,   // zwlr_data_control_manager_v1 older than version 2
    noSeat,          // no wl_seat to hold a selection
    connectionLost,  // the compositor went away or closed our connection
    deviceFinished,  // the compositor withdrew our data-control device (its seat went away)
};

// One sentence for the log and the settings.
std::string describe(WaylandError error);

// The Wayland clipboard through a data-control manager (ext_data_control_manager_v1 when the
// compositor offers it, else zwlr_data_control_manager_v1 version 2 or later) as a
// ClipPasteboard. It owns its own connection to the compositor, so it sees every selection
// without a window or focus. The change count moves once per `selection` event, and at once for
// our own writes (whose echo is then not counted again), and when someone else takes our
// selection (`cancelled`). Reads ask the offer for one MIME type at a time through a pipe, each
// bounded by `kRequestTimeout` of silence (restarted while data keeps coming); an owner that lets
// one read time out is not asked again until the next change, so a dead owner costs one bounded
// wait per copy. Writes offer every flavour of the payload plus the markers and serve `send`
// requests from the event loop with non-blocking writes, dropped after `kIdleTransferTimeout`
// without progress. The primary selection is ignored.
//
// Main thread only. The owner drives it: watch `fd()` for reading and call `dispatch()` when it is
// readable (and now and then; every call here dispatches first). When the compositor goes away
// `dispatch()` returns false once and for all, `failure()` says why, `fd()` goes quiet and the
// pasteboard reads as empty; nothing spins. Opening it ignores SIGPIPE for the process when it
// was left at its default, since a reader that closes its pipe early must not end the process.
class WaylandPasteboard final : public ClipPasteboard {
public:
    static constexpr auto kRequestTimeout = std::chrono::seconds(1);
    static constexpr auto kIdleTransferTimeout = std::chrono::seconds(10);
    // Larger replies are abandoned rather than held in memory.
    static constexpr std::size_t kMaxReadBytes = 512u * 1024 * 1024;
    // An offer's MIME types beyond these are ignored (an offer may list hundreds).
    static constexpr std::size_t kMaxTypes = 256;
    static constexpr std::size_t kMaxTypeLength = 255;
    static constexpr std::uint32_t kMinimumWlrVersion = 2;

    // Connects to `display` (a socket name or absolute path; nothing: $WAYLAND_DISPLAY), binds a
    // data-control manager and reads the current selection, which is not counted as a change.
    static std::expected<std::unique_ptr<WaylandPasteboard>, WaylandError> open(
        const char* display = nullptr);
    ~WaylandPasteboard() override;
    WaylandPasteboard(const WaylandPasteboard&) = delete;
    WaylandPasteboard& operator=(const WaylandPasteboard&) = delete;

    // Readable whenever `dispatch()` has work: compositor events or a transfer that can go on.
    int fd() const { return epoll_; }
    // Handles what is ready without blocking: events, transfers, idle transfers to drop. False
    // once the connection is lost.
    bool dispatch();
    std::optional<WaylandError> failure() const { return failure_; }
    // The manager's global name, e.g. "zwlr_data_control_manager_v1".
    std::string_view protocol() const;

    std::int64_t changeCount() override;
    // The offer's MIME types mapped to role identifiers as the X11 targets are
    // (text/plain;charset=utf-8 → public.utf8-plain-text, ...); other names as offered.
    std::vector<std::string> types() override;
    std::optional<std::string> markerValue(std::string_view type) override;
    std::optional<PasteboardSnapshot> snapshot() override;
    std::int64_t write(const ClipPayload& payload,
                       std::optional<std::string_view> sourceID) override;

    // The MIME types of the current offer, as offered.
    std::vector<std::string> offeredTypes();
    // Whether our own data source holds the selection.
    bool ownsClipboard() const { return source_ != nullptr; }
    // Transfers to readers still under way, for tests and diagnostics.
    std::size_t activeTransfers() const { return transfers_.size(); }

private:
    struct Offer {
        wl_proxy* proxy = nullptr;
        std::vector<std::string> mimeTypes;
    };
    struct Served {
        std::string mime;
        std::shared_ptr<const Bytes> data;
    };
    struct Transfer {
        int fd = -1;
        std::shared_ptr<const Bytes> data;
        std::size_t offset = 0;
        std::chrono::steady_clock::time_point lastActivity;
    };

    WaylandPasteboard() = default;
    std::optional<WaylandError> connect(const char* display);
    bool declares(std::string_view mime) const;
    std::optional<Bytes> receive(std::string_view mime);
    // Waits up to `timeout` for our fd (and `extraFd`, when given) and dispatches; returns
    // whether `extraFd` became ready.
    bool waitAndDispatch(std::chrono::milliseconds timeout, int extraFd = -1);
    // A bounded round trip: every event the compositor sent before it has been handled.
    bool roundTrip();
    void readDisplay(bool readable);
    void lose(WaylandError error);

    void onDataOffer(wl_proxy* offer);
    void onSelection(wl_proxy* offer);
    void onPrimarySelection(wl_proxy* offer);
    void onSend(wl_proxy* source, const char* mime, int fd);
    void onCancelled(wl_proxy* source);
    void continueTransfer(int fd);
    void endTransfer(int fd);
    void dropIdleTransfers();

    wl_display* display_ = nullptr;
    wl_registry* registry_ = nullptr;
    const DataControlProtocol* protocol_ = nullptr;
    wl_proxy* seat_ = nullptr;
    wl_proxy* manager_ = nullptr;
    wl_proxy* device_ = nullptr;
    wl_proxy* source_ = nullptr;
    int epoll_ = -1;
    int displayFd_ = -1;
    std::optional<WaylandError> failure_;
    bool started_ = false;
    std::int64_t changeCount_ = 0;
    int pendingEchoes_ = 0;
    std::vector<std::unique_ptr<Offer>> introduced_;
    std::unique_ptr<Offer> current_;
    std::vector<Served> served_;
    std::vector<Transfer> transfers_;
    std::optional<std::int64_t> unresponsiveCount_;

    friend struct WaylandListeners;
};

}  // namespace harbex
