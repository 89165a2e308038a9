#pragma once

// Servers and clients for the X11 tests: a private Xvfb with openbox on it, outside programs run
// against it, and a scripted selection owner on its own connection and thread.

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "HarbexClip/Linux/X11Connection.hpp"
#include "HarbexClipCore/Support/Bytes.hpp"

extern char** environ;

namespace harbex::testing_x11 {

using namespace std::chrono_literals;

// Polls `condition` until it holds or `timeout` passes, running `pump` between tries.
inline bool eventually(const std::function<bool()>& condition,
                       std::chrono::milliseconds timeout = 5000ms,
                       const std::function<void()>& pump = {}) {
    const auto deadline = std::chrono::steady_clock::now() + timeout;
    while (std::chrono::steady_clock::now() < deadline) {
        if (pump) pump();
        if (condition()) return true;
        std::this_thread::sleep_for(5ms);
    }
    if (pump) pump();
    return condition();
}

// Changes to a child's environment: a variable set, or (nothing) removed.
using ChildEnvironment = std::vector<std::pair<std::string, std::optional<std::string>>>;

// A child process with the test display (or other `changes`) in its environment.
class Process {
public:
    Process() = default;
    Process(const std::vector<std::string>& arguments, const std::string& display, int stdinFd = -1,
            int stdoutFd = -1)
        : Process(arguments, ChildEnvironment{{"DISPLAY", display}}, stdinFd, stdoutFd) {}
    Process(const std::vector<std::string>& arguments, const ChildEnvironment& changes,
            int stdinFd = -1, int stdoutFd = -1, int stderrFd = -1) {
        std::vector<char*> argv;
        for (const auto& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
        argv.push_back(nullptr);
        std::vector<std::string> environment;
        for (char** entry = environ; *entry; ++entry) {
            const std::string_view line(*entry);
            const bool changed = std::ranges::any_of(
                changes, [&](const auto& change) { return line.starts_with(change.first + "="); });
            if (!changed) environment.emplace_back(line);
        }
        for (const auto& [name, value] : changes) {
            if (value) environment.push_back(name + "=" + *value);
        }
        std::vector<char*> envp;
        for (auto& entry : environment) envp.push_back(entry.data());
        envp.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        const int null = ::open("/dev/null", O_RDWR);
        posix_spawn_file_actions_adddup2(&actions, stdinFd >= 0 ? stdinFd : null, 0);
        posix_spawn_file_actions_adddup2(&actions, stdoutFd >= 0 ? stdoutFd : null, 1);
        posix_spawn_file_actions_adddup2(&actions, stderrFd >= 0 ? stderrFd : null, 2);
        if (posix_spawnp(&pid_, argv[0], &actions, nullptr, argv.data(), envp.data()) != 0)
            pid_ = -1;
        posix_spawn_file_actions_destroy(&actions);
        ::close(null);
    }
    Process(Process&& other) noexcept : pid_(std::exchange(other.pid_, -1)) {}
    Process& operator=(Process&& other) noexcept {
        stop();
        pid_ = std::exchange(other.pid_, -1);
        return *this;
    }
    ~Process() { stop(); }

    pid_t pid() const { return pid_; }
    bool running() const { return pid_ > 0 && ::waitpid(pid_, nullptr, WNOHANG) == 0; }
    // Waits for the exit and returns its status, or nothing after `timeout` (then kills it).
    std::optional<int> wait(std::chrono::milliseconds timeout = 10000ms) {
        const auto deadline = std::chrono::steady_clock::now() + timeout;
        while (pid_ > 0) {
            int status = 0;
            const pid_t done = ::waitpid(pid_, &status, WNOHANG);
            if (done == pid_) {
                pid_ = -1;
                return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
            }
            if (std::chrono::steady_clock::now() > deadline) break;
            std::this_thread::sleep_for(2ms);
        }
        stop();
        return std::nullopt;
    }
    void stop() {
        if (pid_ <= 0) return;
        ::kill(pid_, SIGTERM);
        for (int i = 0; i < 200 && ::waitpid(pid_, nullptr, WNOHANG) == 0; ++i)
            std::this_thread::sleep_for(5ms);
        if (::waitpid(pid_, nullptr, WNOHANG) == 0) {
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
        }
        pid_ = -1;
    }

private:
    pid_t pid_ = -1;
};

// Runs a program to its end, feeding `input` and collecting its output.
struct RunResult {
    std::optional<int> status;
    std::string output;
};
// `pump` runs between reads, for a program that talks to a selection we own on this thread.
inline RunResult run(const std::vector<std::string>& arguments, const ChildEnvironment& changes,
                     const std::string& input = {}, const std::function<void()>& pump = {}) {
    int in[2];
    int out[2];
    if (::pipe2(in, O_CLOEXEC) != 0 || ::pipe2(out, O_CLOEXEC) != 0) return {};
    Process process(arguments, changes, in[0], out[1]);
    ::close(in[0]);
    ::close(out[1]);
    std::thread writer([fd = in[1], &input] {
        std::size_t done = 0;
        while (done < input.size()) {
            const ssize_t n = ::write(fd, input.data() + done, input.size() - done);
            if (n <= 0) break;
            done += std::size_t(n);
        }
        ::close(fd);
    });
    RunResult result;
    char buffer[65536];
    pollfd descriptor{out[0], POLLIN, 0};
    const auto deadline = std::chrono::steady_clock::now() + 20s;
    while (std::chrono::steady_clock::now() < deadline) {
        if (pump) pump();
        if (::poll(&descriptor, 1, pump ? 2 : 100) <= 0) continue;
        const ssize_t n = ::read(out[0], buffer, sizeof buffer);
        if (n <= 0) break;
        result.output.append(buffer, std::size_t(n));
    }
    ::close(out[0]);
    writer.join();
    result.status = process.wait(5000ms);
    return result;
}

inline RunResult run(const std::vector<std::string>& arguments, const std::string& display,
                     const std::string& input = {}, const std::function<void()>& pump = {}) {
    return run(arguments, ChildEnvironment{{"DISPLAY", display}}, input, pump);
}

// A private X server with a window manager, for one test program or one test.
class TestServer {
public:
    TestServer() {
        int fds[2];
        if (::pipe(fds) != 0) return;
        const std::string fd = std::to_string(fds[1]);
        // -displayfd picks a free display itself and tells us which.
        std::vector<std::string> arguments{"Xvfb", "-displayfd", fd,  "-nolisten",
                                           "tcp",  "-screen",    "0", "1280x800x24"};
        std::vector<char*> argv;
        for (auto& argument : arguments) argv.push_back(argument.data());
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        const int null = ::open("/dev/null", O_RDWR);
        posix_spawn_file_actions_adddup2(&actions, null, 1);
        posix_spawn_file_actions_adddup2(&actions, null, 2);
        pid_t pid = -1;
        const bool spawned =
            posix_spawnp(&pid, "Xvfb", &actions, nullptr, argv.data(), environ) == 0;
        posix_spawn_file_actions_destroy(&actions);
        ::close(null);
        ::close(fds[1]);
        if (!spawned) {
            ::close(fds[0]);
            return;
        }
        xvfb_ = pid;
        std::string number;
        pollfd descriptor{fds[0], POLLIN, 0};
        char c = 0;
        while (::poll(&descriptor, 1, 10000) > 0 && ::read(fds[0], &c, 1) == 1 && c != '\n')
            number += c;
        ::close(fds[0]);
        if (number.empty()) return;
        display_ = ":" + number;
        windowManager_ = Process({"openbox", "--sm-disable"}, display_);
        // openbox is ready once it manages a window: map a probe and wait for it to be listed.
        auto probe = X11Connection::open(display_.c_str());
        if (probe) {
            auto& c = **probe;
            const xcb_window_t window = xcb_generate_id(c.raw());
            xcb_create_window(c.raw(), XCB_COPY_FROM_PARENT, window, c.root(), 0, 0, 10, 10, 0,
                              XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT, 0, nullptr);
            xcb_map_window(c.raw(), window);
            c.flush();
            eventually(
                [&] {
                    const auto clients =
                        c.property32(c.root(), c.atom("_NET_CLIENT_LIST"), XCB_ATOM_WINDOW);
                    return std::find(clients.begin(), clients.end(), window) != clients.end();
                },
                20000ms);
            xcb_destroy_window(c.raw(), window);
            c.flush();
        }
        ready_ = true;
    }
    ~TestServer() {
        windowManager_.stop();
        if (xvfb_ > 0) {
            ::kill(xvfb_, SIGTERM);
            ::waitpid(xvfb_, nullptr, 0);
        }
    }
    TestServer(const TestServer&) = delete;
    TestServer& operator=(const TestServer&) = delete;

    bool ready() const { return ready_; }
    const std::string& display() const { return display_; }

private:
    pid_t xvfb_ = -1;
    Process windowManager_;
    std::string display_;
    bool ready_ = false;
};

// Another application holding CLIPBOARD with any targets we script, on its own connection and
// thread so that it answers while the code under test blocks in a read.
class ScriptedOwner {
public:
    struct Offer {
        std::string target;
        std::optional<Bytes> data;  // nothing: declared, but every request is refused
    };
    enum class Answers { always, never };

    explicit ScriptedOwner(const std::string& display) {
        connection_ = xcb_connect(display.c_str(), nullptr);
        const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data;
        window_ = xcb_generate_id(connection_);
        xcb_create_window(connection_, XCB_COPY_FROM_PARENT, window_, screen->root, 0, 0, 1, 1, 0,
                          XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
        clipboard_ = intern("CLIPBOARD");
        targets_ = intern("TARGETS");
        xcb_flush(connection_);
        thread_ = std::thread([this] { loop(); });
    }
    ~ScriptedOwner() {
        stop_ = true;
        thread_.join();
        xcb_disconnect(connection_);
    }

    // Takes CLIPBOARD with `offers`; returns once the server has made this client the owner.
    void offer(std::vector<Offer> offers, Answers answers = Answers::always) {
        std::vector<std::pair<xcb_atom_t, Offer>> interned;
        for (auto& offer : offers) interned.emplace_back(intern(offer.target), std::move(offer));
        {
            std::lock_guard lock(mutex_);
            offers_ = std::move(interned);
            answers_ = answers;
            requested_.clear();
        }
        xcb_set_selection_owner(connection_, window_, clipboard_, XCB_CURRENT_TIME);
        XcbReply<xcb_get_selection_owner_reply_t> owner(xcb_get_selection_owner_reply(
            connection_, xcb_get_selection_owner(connection_, clipboard_), nullptr));
    }
    // The targets asked for since the last offer, TARGETS included, in order.
    std::vector<std::string> requested() {
        std::lock_guard lock(mutex_);
        return requested_;
    }

private:
    xcb_atom_t intern(const std::string& name) {
        XcbReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
            connection_, xcb_intern_atom(connection_, 0, std::uint16_t(name.size()), name.c_str()),
            nullptr));
        return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    }
    std::string nameOf(xcb_atom_t atom) {
        if (atom == targets_) return "TARGETS";
        for (const auto& [known, offer] : offers_) {
            if (known == atom) return offer.target;
        }
        return "?";
    }
    void loop() {
        const int fd = xcb_get_file_descriptor(connection_);
        while (!stop_) {
            pollfd descriptor{fd, POLLIN, 0};
            ::poll(&descriptor, 1, 20);
            while (xcb_generic_event_t* event = xcb_poll_for_event(connection_)) {
                if ((event->response_type & 0x7f) == XCB_SELECTION_REQUEST)
                    answer(*reinterpret_cast<xcb_selection_request_event_t*>(event));
                std::free(event);
            }
        }
    }
    void answer(const xcb_selection_request_event_t& request) {
        std::lock_guard lock(mutex_);
        requested_.push_back(nameOf(request.target));
        if (answers_ == Answers::never) return;
        bool served = false;
        if (request.target == targets_) {
            std::vector<xcb_atom_t> atoms{targets_};
            for (const auto& [atom, offer] : offers_) atoms.push_back(atom);
            xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, request.requestor,
                                request.property, XCB_ATOM_ATOM, 32, std::uint32_t(atoms.size()),
                                atoms.data());
            served = true;
        } else {
            for (const auto& [atom, offer] : offers_) {
                if (atom != request.target || !offer.data) continue;
                xcb_change_property(connection_, XCB_PROP_MODE_REPLACE, request.requestor,
                                    request.property, atom, 8, std::uint32_t(offer.data->size()),
                                    offer.data->data());
                served = true;
            }
        }
        xcb_selection_notify_event_t notify{};
        notify.response_type = XCB_SELECTION_NOTIFY;
        notify.time = request.time;
        notify.requestor = request.requestor;
        notify.selection = request.selection;
        notify.target = request.target;
        notify.property = served ? request.property : xcb_atom_t(XCB_ATOM_NONE);
        xcb_send_event(connection_, 0, request.requestor, 0, reinterpret_cast<char*>(&notify));
        xcb_flush(connection_);
    }

    xcb_connection_t* connection_ = nullptr;
    xcb_window_t window_ = XCB_NONE;
    xcb_atom_t clipboard_ = XCB_ATOM_NONE;
    xcb_atom_t targets_ = XCB_ATOM_NONE;
    std::mutex mutex_;
    std::vector<std::pair<xcb_atom_t, Offer>> offers_;
    Answers answers_ = Answers::always;
    std::vector<std::string> requested_;
    std::atomic<bool> stop_ = false;
    std::thread thread_;
};

}  // namespace harbex::testing_x11
