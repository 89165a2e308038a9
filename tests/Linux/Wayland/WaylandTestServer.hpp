#pragma once

// A compositor and clients for the Wayland tests: a private headless sway, and a scripted
// data-control source ("another application") on its own connection and thread.

#include <poll.h>
#include <sys/stat.h>
#include <wayland-client.h>

#include <filesystem>
#include <fstream>
#include <mutex>
#include <thread>

#include "HarbexClip/Linux/ClipboardFlavours.hpp"
#include "tests/Linux/X11/X11TestServer.hpp"
#include "wlr-data-control-unstable-v1-client-protocol.h"

namespace harbex::testing_wayland {

using testing_x11::ChildEnvironment;
using testing_x11::eventually;
using testing_x11::Process;
using namespace std::chrono_literals;

// A headless sway with a runtime folder of its own. Sway will not run as root, so under root it
// runs as nobody (the folder and its config belong to that user); root can still reach its
// socket. Without the xwayland package it is Wayland only.
class SwayServer {
public:
    static constexpr uid_t kUnprivileged = 65534;

    SwayServer() {
        char pattern[] = "/tmp/harbex-sway-XXXXXX";
        if (!::mkdtemp(pattern)) return;
        runtime_ = pattern;
        const auto config = runtime_ / "config";
        std::ofstream(config) << "xwayland disable\n";
        const bool root = ::geteuid() == 0;
        if (root) {
            [[maybe_unused]] const int owned =
                ::chown(runtime_.c_str(), kUnprivileged, kUnprivileged);
        }
        ::chmod(runtime_.c_str(), 0700);
        ::chmod(config.c_str(), 0644);
        std::vector<std::string> command;
        if (root) {
            command = {"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"};
        }
        command.insert(command.end(), {"env", "-i", "XDG_RUNTIME_DIR=" + runtime_.string(),
                                       "HOME=" + runtime_.string(), "PATH=/usr/bin:/bin",
                                       "WLR_BACKENDS=headless", "WLR_LIBINPUT_NO_DEVICES=1",
                                       "WLR_RENDERER=pixman", "sway", "-c", config.string()});
        const int log = ::open((runtime_.string() + ".log").c_str(),
                               O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
        sway_ = Process(command, ChildEnvironment{}, -1, log, log);
        if (log >= 0) ::close(log);
        ready_ = eventually([&] { return findSocket() && answers(); }, 20000ms);
    }
    ~SwayServer() {
        stop();
        std::error_code ignored;
        std::filesystem::remove_all(runtime_, ignored);
        std::filesystem::remove(runtime_.string() + ".log", ignored);
    }
    SwayServer(const SwayServer&) = delete;
    SwayServer& operator=(const SwayServer&) = delete;

    bool ready() const { return ready_; }
    // The socket's absolute path: a WAYLAND_DISPLAY that needs no XDG_RUNTIME_DIR.
    const std::string& display() const { return display_; }
    const std::filesystem::path& runtimeDir() const { return runtime_; }
    // A child's environment in this session: Wayland only, no X display.
    ChildEnvironment environment() const {
        return {{"WAYLAND_DISPLAY", display_},
                {"XDG_RUNTIME_DIR", runtime_.string()},
                {"DISPLAY", std::nullopt}};
    }
    // Ends the compositor, as a crash or a logout would.
    void stop() { sway_.stop(); }

private:
    bool findSocket() {
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(runtime_, error)) {
            const std::string name = entry.path().filename();
            if (name.starts_with("wayland-") && !name.ends_with(".lock")) {
                display_ = entry.path();
                return true;
            }
        }
        return false;
    }
    bool answers() const {
        wl_display* display = wl_display_connect(display_.c_str());
        if (!display) return false;
        const bool ok = wl_display_roundtrip(display) >= 0;
        wl_display_disconnect(display);
        return ok;
    }

    std::filesystem::path runtime_;
    std::string display_;
    Process sway_;
    bool ready_ = false;
};

// One sway per test program, started on first use and stopped at exit.
inline SwayServer& sharedSway() {
    static auto server = std::make_unique<SwayServer>();
    return *server;
}

// Another application holding the selection through zwlr_data_control with any MIME types we
// script, on its own connection and thread so that it answers while the code under test blocks in
// a read.
class ScriptedSource {
public:
    struct Offer {
        std::string mime;
        std::optional<Bytes> data;  // nothing: declared, but the pipe is closed unwritten
    };
    enum class Answers { always, never };

    explicit ScriptedSource(const std::string& socket) {
        display_ = wl_display_connect(socket.c_str());
        if (!display_) return;
        wl_registry* registry = wl_display_get_registry(display_);
        static const wl_registry_listener listener{
            [](void* data, wl_registry* registry, std::uint32_t name, const char* interface,
               std::uint32_t) {
                auto& self = *static_cast<ScriptedSource*>(data);
                const std::string_view which(interface);
                if (which == wl_seat_interface.name && !self.seat_)
                    self.seat_ = static_cast<wl_seat*>(
                        wl_registry_bind(registry, name, &wl_seat_interface, 1));
                if (which == zwlr_data_control_manager_v1_interface.name)
                    self.manager_ = static_cast<zwlr_data_control_manager_v1*>(wl_registry_bind(
                        registry, name, &zwlr_data_control_manager_v1_interface, 2));
            },
            [](void*, wl_registry*, std::uint32_t) {}};
        wl_registry_add_listener(registry, &listener, this);
        wl_display_roundtrip(display_);
        wl_registry_destroy(registry);
        if (!seat_ || !manager_) return;
        device_ = zwlr_data_control_manager_v1_get_data_device(manager_, seat_);
        static const zwlr_data_control_device_v1_listener deviceListener{
            [](void*, zwlr_data_control_device_v1*, zwlr_data_control_offer_v1*) {},
            [](void*, zwlr_data_control_device_v1*, zwlr_data_control_offer_v1* offer) {
                if (offer) zwlr_data_control_offer_v1_destroy(offer);
            },
            [](void*, zwlr_data_control_device_v1*) {},
            [](void*, zwlr_data_control_device_v1*, zwlr_data_control_offer_v1* offer) {
                if (offer) zwlr_data_control_offer_v1_destroy(offer);
            }};
        zwlr_data_control_device_v1_add_listener(device_, &deviceListener, this);
        wl_display_roundtrip(display_);
        thread_ = std::thread([this] { loop(); });
    }
    ~ScriptedSource() {
        stop_ = true;
        if (thread_.joinable()) thread_.join();
        for (int fd : held_) ::close(fd);
        if (source_) zwlr_data_control_source_v1_destroy(source_);
        if (device_) zwlr_data_control_device_v1_destroy(device_);
        if (manager_) zwlr_data_control_manager_v1_destroy(manager_);
        if (seat_) wl_seat_destroy(seat_);
        if (display_) wl_display_disconnect(display_);
    }

    bool ready() const { return device_ != nullptr; }

    // Takes the selection with `offers` (requests flushed; the caller waits for the change).
    void offer(std::vector<Offer> offers, Answers answers = Answers::always) {
        std::lock_guard lock(mutex_);
        offers_ = std::move(offers);
        answers_ = answers;
        requested_.clear();
        auto* source = zwlr_data_control_manager_v1_create_data_source(manager_);
        static const zwlr_data_control_source_v1_listener sourceListener{
            [](void* data, zwlr_data_control_source_v1*, const char* mime, std::int32_t fd) {
                static_cast<ScriptedSource*>(data)->answer(mime, fd);
            },
            [](void* data, zwlr_data_control_source_v1* source) {
                auto& self = *static_cast<ScriptedSource*>(data);
                if (self.source_ == source) self.source_ = nullptr;
                zwlr_data_control_source_v1_destroy(source);
            }};
        zwlr_data_control_source_v1_add_listener(source, &sourceListener, this);
        for (const auto& offer : offers_)
            zwlr_data_control_source_v1_offer(source, offer.mime.c_str());
        zwlr_data_control_device_v1_set_selection(device_, source);
        source_ = source;
        wl_display_flush(display_);
    }
    // The role identifiers of the MIME types asked for since the last offer, in order.
    std::vector<std::string> requested() {
        std::lock_guard lock(mutex_);
        std::vector<std::string> roles;
        for (const auto& mime : requested_) {
            for (auto& role : rolesForFlavour(mime)) roles.push_back(std::move(role));
        }
        return roles;
    }

private:
    void loop() {
        const int fd = wl_display_get_fd(display_);
        while (!stop_) {
            pollfd descriptor{fd, POLLIN, 0};
            const bool readable = ::poll(&descriptor, 1, 20) > 0;
            std::lock_guard lock(mutex_);
            while (wl_display_prepare_read(display_) != 0) wl_display_dispatch_pending(display_);
            if (readable) {
                wl_display_read_events(display_);
            } else {
                wl_display_cancel_read(display_);
            }
            wl_display_dispatch_pending(display_);
            wl_display_flush(display_);
        }
    }
    // Called with the lock held, from the loop.
    void answer(const char* mime, int fd) {
        requested_.emplace_back(mime);
        if (answers_ == Answers::never) {
            held_.push_back(fd);
            return;
        }
        for (const auto& offer : offers_) {
            if (offer.mime != mime || !offer.data) continue;
            std::size_t done = 0;
            while (done < offer.data->size()) {
                const ssize_t n = ::write(fd, offer.data->data() + done, offer.data->size() - done);
                if (n <= 0) break;
                done += std::size_t(n);
            }
        }
        ::close(fd);
    }

    wl_display* display_ = nullptr;
    wl_seat* seat_ = nullptr;
    zwlr_data_control_manager_v1* manager_ = nullptr;
    zwlr_data_control_device_v1* device_ = nullptr;
    zwlr_data_control_source_v1* source_ = nullptr;  // the newest, until cancelled
    std::mutex mutex_;
    std::vector<Offer> offers_;
    Answers answers_ = Answers::always;
    std::vector<std::string> requested_;
    std::vector<int> held_;
    std::atomic<bool> stop_ = false;
    std::thread thread_;
};

}  // namespace harbex::testing_wayland
