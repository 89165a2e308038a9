#include "HarbexClip/Wayland/WaylandPasteboard.hpp"

#include <errno.h>
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/epoll.h>
#include <unistd.h>
#include <wayland-client.h>

#include <algorithm>
#include <cstring>

#include "HarbexClip/Linux/ClipboardFlavours.hpp"
#include "ext-data-control-v1-client-protocol.h"
#include "wlr-data-control-unstable-v1-client-protocol.h"

namespace harbex {

using Clock = std::chrono::steady_clock;

// The two data-control protocols are the same protocol under two prefixes: the same requests and
// events in the same order, so the same opcodes and arguments. One code path drives either
// through the plain proxy calls, given the interfaces of the one bound.
static_assert(ZWLR_DATA_CONTROL_MANAGER_V1_CREATE_DATA_SOURCE ==
                  EXT_DATA_CONTROL_MANAGER_V1_CREATE_DATA_SOURCE &&
              ZWLR_DATA_CONTROL_MANAGER_V1_GET_DATA_DEVICE ==
                  EXT_DATA_CONTROL_MANAGER_V1_GET_DATA_DEVICE &&
              ZWLR_DATA_CONTROL_MANAGER_V1_DESTROY == EXT_DATA_CONTROL_MANAGER_V1_DESTROY &&
              ZWLR_DATA_CONTROL_DEVICE_V1_SET_SELECTION ==
                  EXT_DATA_CONTROL_DEVICE_V1_SET_SELECTION &&
              ZWLR_DATA_CONTROL_DEVICE_V1_DESTROY == EXT_DATA_CONTROL_DEVICE_V1_DESTROY &&
              ZWLR_DATA_CONTROL_SOURCE_V1_OFFER == EXT_DATA_CONTROL_SOURCE_V1_OFFER &&
              ZWLR_DATA_CONTROL_SOURCE_V1_DESTROY == EXT_DATA_CONTROL_SOURCE_V1_DESTROY &&
              ZWLR_DATA_CONTROL_OFFER_V1_RECEIVE == EXT_DATA_CONTROL_OFFER_V1_RECEIVE &&
              ZWLR_DATA_CONTROL_OFFER_V1_DESTROY == EXT_DATA_CONTROL_OFFER_V1_DESTROY);

struct DataControlProtocol {
    const char* global;
    const wl_interface* manager;
    const wl_interface* device;
    const wl_interface* source;
    const wl_interface* offer;
    std::uint32_t minimumVersion;
    std::uint32_t boundVersion;
};

namespace {

const DataControlProtocol* extProtocol();
const DataControlProtocol* wlrProtocol();

struct Globals {
    std::uint32_t seat = 0;
    std::uint32_t ext = 0;
    std::uint32_t wlr = 0;
    std::uint32_t wlrVersion = 0;
};

void onGlobal(void* data, wl_registry*, std::uint32_t name, const char* interface,
              std::uint32_t version) {
    auto& globals = *static_cast<Globals*>(data);
    const std::string_view which(interface);
    if (which == wl_seat_interface.name && globals.seat == 0) globals.seat = name;
    if (which == ext_data_control_manager_v1_interface.name) globals.ext = name;
    if (which == zwlr_data_control_manager_v1_interface.name) {
        globals.wlr = name;
        globals.wlrVersion = version;
    }
}
void onGlobalRemove(void*, wl_registry*, std::uint32_t) {}
const wl_registry_listener kRegistryListener{onGlobal, onGlobalRemove};

void closeFd(int fd) {
    if (fd >= 0) ::close(fd);
}

}  // namespace

// The listeners, shaped as the generated ones (the same for both prefixes); each forwards to the
// pasteboard given as user data.
struct WaylandListeners {
    struct Device {
        void (*dataOffer)(void*, wl_proxy*, wl_proxy*);
        void (*selection)(void*, wl_proxy*, wl_proxy*);
        void (*finished)(void*, wl_proxy*);
        void (*primarySelection)(void*, wl_proxy*, wl_proxy*);
    };
    struct Source {
        void (*send)(void*, wl_proxy*, const char*, std::int32_t);
        void (*cancelled)(void*, wl_proxy*);
    };
    struct Offer {
        void (*offer)(void*, wl_proxy*, const char*);
    };
    static_assert(sizeof(Device) == sizeof(zwlr_data_control_device_v1_listener) &&
                  sizeof(Device) == sizeof(ext_data_control_device_v1_listener));
    static_assert(sizeof(Source) == sizeof(zwlr_data_control_source_v1_listener));
    static_assert(sizeof(Offer) == sizeof(zwlr_data_control_offer_v1_listener));

    static WaylandPasteboard& self(void* data) { return *static_cast<WaylandPasteboard*>(data); }

    static constexpr Device kDevice{
        [](void* data, wl_proxy*, wl_proxy* offer) { self(data).onDataOffer(offer); },
        [](void* data, wl_proxy*, wl_proxy* offer) { self(data).onSelection(offer); },
        [](void* data, wl_proxy*) { self(data).lose(WaylandError::deviceFinished); },
        [](void* data, wl_proxy*, wl_proxy* offer) { self(data).onPrimarySelection(offer); },
    };
    static constexpr Source kSource{
        [](void* data, wl_proxy* source, const char* mime, std::int32_t fd) {
            self(data).onSend(source, mime, fd);
        },
        [](void* data, wl_proxy* source) { self(data).onCancelled(source); },
    };
    static constexpr Offer kOffer{[](void* data, wl_proxy*, const char* mime) {
        auto& offer = *static_cast<WaylandPasteboard::Offer*>(data);
        const std::size_t length = std::strlen(mime);
        if (length == 0 || length > WaylandPasteboard::kMaxTypeLength) return;
        if (offer.mimeTypes.size() >= WaylandPasteboard::kMaxTypes) return;
        if (std::ranges::find(offer.mimeTypes, mime) != offer.mimeTypes.end()) return;
        offer.mimeTypes.emplace_back(mime, length);
    }};

    template <typename Listener>
    static void add(wl_proxy* proxy, const Listener& listener, void* data) {
        wl_proxy_add_listener(
            proxy, reinterpret_cast<void (**)(void)>(const_cast<Listener*>(&listener)), data);
    }
};

namespace {

const DataControlProtocol* extProtocol() {
    static const DataControlProtocol protocol{ext_data_control_manager_v1_interface.name,
                                              &ext_data_control_manager_v1_interface,
                                              &ext_data_control_device_v1_interface,
                                              &ext_data_control_source_v1_interface,
                                              &ext_data_control_offer_v1_interface,
                                              1,
                                              1};
    return &protocol;
}

const DataControlProtocol* wlrProtocol() {
    static const DataControlProtocol protocol{zwlr_data_control_manager_v1_interface.name,
                                              &zwlr_data_control_manager_v1_interface,
                                              &zwlr_data_control_device_v1_interface,
                                              &zwlr_data_control_source_v1_interface,
                                              &zwlr_data_control_offer_v1_interface,
                                              WaylandPasteboard::kMinimumWlrVersion,
                                              2};
    return &protocol;
}

// Destroys `proxy` through its interface's destructor request (opcode 1 for device, source and
// offer; 2 for the manager).
void destroyProxy(wl_proxy*& proxy, std::uint32_t opcode) {
    if (!proxy) return;
    wl_proxy_marshal_flags(proxy, opcode, nullptr, wl_proxy_get_version(proxy),
                           WL_MARSHAL_FLAG_DESTROY);
    proxy = nullptr;
}

}  // namespace

std::string describe(WaylandError error) {
    switch (error) {
        case WaylandError::noDisplay: return "No Wayland compositor answered.";
        case WaylandError::noDataControl:
            return "The Wayland compositor offers no data-control manager.";
        case WaylandError::managerTooOld:
            return "The Wayland compositor's zwlr_data_control_manager_v1 is older than "
                   "version 2.";
        case WaylandError::noSeat: return "The Wayland compositor offers no seat.";
        case WaylandError::connectionLost: return "The Wayland compositor went away.";
        case WaylandError::deviceFinished:
            return "The Wayland compositor withdrew clipboard access.";
    }
    return {};
}

std::expected<std::unique_ptr<WaylandPasteboard>, WaylandError> WaylandPasteboard::open(
    const char* display) {
    std::unique_ptr<WaylandPasteboard> pasteboard(new WaylandPasteboard());
    if (auto error = pasteboard->connect(display)) return std::unexpected(*error);
    return pasteboard;
}

std::optional<WaylandError> WaylandPasteboard::connect(const char* display) {
    struct sigaction current {};
    if (::sigaction(SIGPIPE, nullptr, &current) == 0 && current.sa_handler == SIG_DFL)
        ::signal(SIGPIPE, SIG_IGN);

    display_ = wl_display_connect(display);
    if (!display_) return WaylandError::noDisplay;
    displayFd_ = wl_display_get_fd(display_);
    epoll_ = ::epoll_create1(EPOLL_CLOEXEC);
    epoll_event watch{};
    watch.events = EPOLLIN;
    watch.data.fd = displayFd_;
    ::epoll_ctl(epoll_, EPOLL_CTL_ADD, displayFd_, &watch);

    Globals globals;
    registry_ = wl_display_get_registry(display_);
    wl_registry_add_listener(registry_, &kRegistryListener, &globals);
    if (!roundTrip()) return WaylandError::noDisplay;
    if (globals.ext != 0) {
        protocol_ = extProtocol();
    } else if (globals.wlr != 0) {
        if (globals.wlrVersion < kMinimumWlrVersion) return WaylandError::managerTooOld;
        protocol_ = wlrProtocol();
    } else {
        return WaylandError::noDataControl;
    }
    if (globals.seat == 0) return WaylandError::noSeat;
    seat_ =
        static_cast<wl_proxy*>(wl_registry_bind(registry_, globals.seat, &wl_seat_interface, 1));
    manager_ = static_cast<wl_proxy*>(
        wl_registry_bind(registry_, protocol_ == extProtocol() ? globals.ext : globals.wlr,
                         protocol_->manager, protocol_->boundVersion));
    device_ = wl_proxy_marshal_flags(manager_, ZWLR_DATA_CONTROL_MANAGER_V1_GET_DATA_DEVICE,
                                     protocol_->device, wl_proxy_get_version(manager_), 0, nullptr,
                                     seat_);
    WaylandListeners::add(device_, WaylandListeners::kDevice, this);
    // The first selection arrives on binding: what was there before us is not a change.
    if (!roundTrip()) return failure_.value_or(WaylandError::connectionLost);
    started_ = true;
    return std::nullopt;
}

WaylandPasteboard::~WaylandPasteboard() {
    for (auto& transfer : transfers_) closeFd(transfer.fd);
    if (display_ && !failure_) {
        for (auto& offer : introduced_)
            destroyProxy(offer->proxy, ZWLR_DATA_CONTROL_OFFER_V1_DESTROY);
        if (current_) destroyProxy(current_->proxy, ZWLR_DATA_CONTROL_OFFER_V1_DESTROY);
        destroyProxy(source_, ZWLR_DATA_CONTROL_SOURCE_V1_DESTROY);
        destroyProxy(device_, ZWLR_DATA_CONTROL_DEVICE_V1_DESTROY);
        destroyProxy(manager_, ZWLR_DATA_CONTROL_MANAGER_V1_DESTROY);
        wl_display_flush(display_);
    }
    for (wl_proxy* proxy : {source_, device_, manager_}) {
        if (proxy) wl_proxy_destroy(proxy);
    }
    if (seat_) wl_proxy_destroy(seat_);
    if (registry_) wl_registry_destroy(registry_);
    if (display_) wl_display_disconnect(display_);
    closeFd(epoll_);
}

std::string_view WaylandPasteboard::protocol() const {
    return protocol_ ? std::string_view(protocol_->global) : std::string_view();
}

// MARK: The event loop

void WaylandPasteboard::lose(WaylandError error) {
    if (failure_) return;
    failure_ = error;
    // The socket stays readable (at its end) for ever; stop watching it so nothing spins.
    ::epoll_ctl(epoll_, EPOLL_CTL_DEL, displayFd_, nullptr);
    // Nothing is dispatched from now on; the offers' proxies go with their records, locally.
    for (auto& offer : introduced_) wl_proxy_destroy(offer->proxy);
    if (current_) wl_proxy_destroy(current_->proxy);
    current_.reset();
    introduced_.clear();
    served_.clear();
}

void WaylandPasteboard::readDisplay(bool readable) {
    if (failure_) return;
    while (wl_display_prepare_read(display_) != 0) {
        if (wl_display_dispatch_pending(display_) < 0) return lose(WaylandError::connectionLost);
    }
    if (wl_display_flush(display_) < 0 && errno != EAGAIN) {
        wl_display_cancel_read(display_);
        return lose(WaylandError::connectionLost);
    }
    if (readable) {
        if (wl_display_read_events(display_) < 0) return lose(WaylandError::connectionLost);
    } else {
        wl_display_cancel_read(display_);
    }
    if (wl_display_dispatch_pending(display_) < 0 || wl_display_get_error(display_) != 0)
        lose(WaylandError::connectionLost);
}

bool WaylandPasteboard::dispatch() {
    if (failure_) return false;
    epoll_event events[16];
    const int count = ::epoll_wait(epoll_, events, 16, 0);
    bool displayReady = false;
    for (int i = 0; i < count; ++i) {
        if (events[i].data.fd == displayFd_) {
            displayReady = true;
        } else {
            continueTransfer(events[i].data.fd);
        }
    }
    readDisplay(displayReady);
    dropIdleTransfers();
    return !failure_;
}

bool WaylandPasteboard::waitAndDispatch(std::chrono::milliseconds timeout, int extraFd) {
    pollfd descriptors[2]{{epoll_, POLLIN, 0}, {extraFd, POLLIN, 0}};
    const int ready = ::poll(descriptors, extraFd >= 0 ? 2 : 1, int(timeout.count()));
    if (ready > 0 && descriptors[0].revents) dispatch();
    return ready > 0 && extraFd >= 0 && descriptors[1].revents;
}

bool WaylandPasteboard::roundTrip() {
    if (failure_) return false;
    bool done = false;
    wl_callback* callback = wl_display_sync(display_);
    static const wl_callback_listener listener{
        [](void* data, wl_callback*, std::uint32_t) { *static_cast<bool*>(data) = true; }};
    wl_callback_add_listener(callback, &listener, &done);
    const auto deadline = Clock::now() + kRequestTimeout;
    readDisplay(false);
    while (!done && !failure_ && Clock::now() < deadline) {
        waitAndDispatch(std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()));
    }
    wl_callback_destroy(callback);
    return done;
}

// MARK: Offers and the change count

void WaylandPasteboard::onDataOffer(wl_proxy* proxy) {
    auto offer = std::make_unique<Offer>();
    offer->proxy = proxy;
    WaylandListeners::add(proxy, WaylandListeners::kOffer, offer.get());
    introduced_.push_back(std::move(offer));
}

void WaylandPasteboard::onSelection(wl_proxy* proxy) {
    if (current_) destroyProxy(current_->proxy, ZWLR_DATA_CONTROL_OFFER_V1_DESTROY);
    current_.reset();
    auto it = std::ranges::find(introduced_, proxy, [](const auto& offer) { return offer->proxy; });
    if (proxy && it != introduced_.end()) {
        current_ = std::move(*it);
        introduced_.erase(it);
    }
    if (!started_) return;
    if (pendingEchoes_ > 0) {
        // The selection of our own write, counted when we made it.
        --pendingEchoes_;
        return;
    }
    ++changeCount_;
}

void WaylandPasteboard::onPrimarySelection(wl_proxy* proxy) {
    auto it = std::ranges::find(introduced_, proxy, [](const auto& offer) { return offer->proxy; });
    if (proxy && it != introduced_.end()) {
        destroyProxy((*it)->proxy, ZWLR_DATA_CONTROL_OFFER_V1_DESTROY);
        introduced_.erase(it);
    }
}

std::int64_t WaylandPasteboard::changeCount() {
    dispatch();
    return changeCount_;
}

std::vector<std::string> WaylandPasteboard::offeredTypes() {
    dispatch();
    return current_ ? current_->mimeTypes : std::vector<std::string>();
}

std::vector<std::string> WaylandPasteboard::types() { return rolesForFlavours(offeredTypes()); }

// MARK: Reading

bool WaylandPasteboard::declares(std::string_view mime) const {
    return current_ && std::ranges::find(current_->mimeTypes, mime) != current_->mimeTypes.end();
}

std::optional<Bytes> WaylandPasteboard::receive(std::string_view mime) {
    if (failure_ || !declares(mime) || unresponsiveCount_ == changeCount_) return std::nullopt;
    int fds[2];
    if (::pipe2(fds, O_CLOEXEC | O_NONBLOCK) != 0) return std::nullopt;
    const std::string name(mime);
    wl_proxy_marshal_flags(current_->proxy, ZWLR_DATA_CONTROL_OFFER_V1_RECEIVE, nullptr,
                           wl_proxy_get_version(current_->proxy), 0, name.c_str(), fds[1]);
    ::close(fds[1]);
    readDisplay(false);  // sends the request, and serves it when the offer is our own

    Bytes data;
    bool ended = false;
    auto deadline = Clock::now() + kRequestTimeout;
    while (!ended && !failure_) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
        if (left.count() <= 0) break;
        if (!waitAndDispatch(left, fds[0])) continue;
        for (;;) {
            const std::size_t start = data.size();
            data.resize(start + 65536);
            const ssize_t n = ::read(fds[0], data.data() + start, 65536);
            data.resize(start + std::size_t(std::max<ssize_t>(n, 0)));
            if (n > 0) {
                deadline = Clock::now() + kRequestTimeout;
                if (data.size() > kMaxReadBytes) {
                    ::close(fds[0]);
                    return std::nullopt;
                }
                continue;
            }
            if (n == 0 || (errno != EAGAIN && errno != EINTR)) ended = true;
            break;
        }
    }
    ::close(fds[0]);
    if (!ended) {
        unresponsiveCount_ = changeCount_;
        return std::nullopt;
    }
    // An owner has no other way to refuse a type than to close the pipe unwritten.
    if (data.empty()) return std::nullopt;
    return data;
}

std::optional<std::string> WaylandPasteboard::markerValue(std::string_view type) {
    dispatch();
    auto data = receive(type);
    if (!data) return std::nullopt;
    return stringOf(*data);
}

std::optional<PasteboardSnapshot> WaylandPasteboard::snapshot() {
    auto types = this->types();
    if (types.empty()) return std::nullopt;
    return readSnapshot(std::move(types),
                        FlavourSource{[this](std::string_view mime) { return declares(mime); },
                                      [this](std::string_view mime) { return receive(mime); }});
}

// MARK: Writing

std::int64_t WaylandPasteboard::write(const ClipPayload& payload,
                                      std::optional<std::string_view> sourceID) {
    dispatch();
    if (failure_) return changeCount_;
    wl_proxy* source =
        wl_proxy_marshal_flags(manager_, ZWLR_DATA_CONTROL_MANAGER_V1_CREATE_DATA_SOURCE,
                               protocol_->source, wl_proxy_get_version(manager_), 0, nullptr);
    WaylandListeners::add(source, WaylandListeners::kSource, this);
    std::vector<Served> served;
    for (auto& flavour : flavoursForPayload(payload, sourceID)) {
        wl_proxy_marshal_flags(source, ZWLR_DATA_CONTROL_SOURCE_V1_OFFER, nullptr,
                               wl_proxy_get_version(source), 0, flavour.name.c_str());
        served.push_back(Served{std::move(flavour.name),
                                std::make_shared<const Bytes>(std::move(flavour.data))});
    }
    wl_proxy_marshal_flags(device_, ZWLR_DATA_CONTROL_DEVICE_V1_SET_SELECTION, nullptr,
                           wl_proxy_get_version(device_), 0, source);
    // The old source goes after the new one holds the selection, so the selection is never
    // empty in between; its cancellation then never reaches us.
    destroyProxy(source_, ZWLR_DATA_CONTROL_SOURCE_V1_DESTROY);
    source_ = source;
    served_ = std::move(served);
    ++changeCount_;
    ++pendingEchoes_;
    // The compositor answers with the selection of our own source before this round trip ends;
    // after it, types() shows what we wrote.
    roundTrip();
    pendingEchoes_ = 0;
    return changeCount_;
}

void WaylandPasteboard::onCancelled(wl_proxy* source) {
    if (source == source_) {
        // Someone else took the selection.
        source_ = nullptr;
        served_.clear();
        ++changeCount_;
    }
    destroyProxy(source, ZWLR_DATA_CONTROL_SOURCE_V1_DESTROY);
}

void WaylandPasteboard::onSend(wl_proxy* source, const char* mime, int fd) {
    auto it = std::ranges::find(served_, std::string_view(mime), &Served::mime);
    if (source != source_ || it == served_.end()) {
        ::close(fd);
        return;
    }
    ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) | O_NONBLOCK);
    ::fcntl(fd, F_SETFD, FD_CLOEXEC);
    transfers_.push_back(Transfer{fd, it->data, 0, Clock::now()});
    epoll_event watch{};
    watch.events = EPOLLOUT;
    watch.data.fd = fd;
    ::epoll_ctl(epoll_, EPOLL_CTL_ADD, fd, &watch);
    continueTransfer(fd);
}

void WaylandPasteboard::continueTransfer(int fd) {
    auto it = std::ranges::find(transfers_, fd, &Transfer::fd);
    if (it == transfers_.end()) return;
    while (it->offset < it->data->size()) {
        const ssize_t n = ::write(fd, it->data->data() + it->offset, it->data->size() - it->offset);
        if (n > 0) {
            it->offset += std::size_t(n);
            it->lastActivity = Clock::now();
            continue;
        }
        if (n < 0 && errno == EINTR) continue;
        if (n < 0 && errno == EAGAIN) return;  // the reader is behind; epoll says when to go on
        break;                                 // the reader went away
    }
    endTransfer(fd);
}

void WaylandPasteboard::endTransfer(int fd) {
    ::epoll_ctl(epoll_, EPOLL_CTL_DEL, fd, nullptr);
    ::close(fd);
    std::erase_if(transfers_, [fd](const Transfer& transfer) { return transfer.fd == fd; });
}

void WaylandPasteboard::dropIdleTransfers() {
    const auto now = Clock::now();
    std::vector<int> idle;
    for (const auto& transfer : transfers_) {
        if (now - transfer.lastActivity > kIdleTransferTimeout) idle.push_back(transfer.fd);
    }
    for (int fd : idle) endTransfer(fd);
}

}  // namespace harbex
