#pragma once

// Test support for programs that talk D-Bus: a private session bus of their own, so a test
// never reaches the desktop's bus (or a running copy of the application), and a bounded wait
// that keeps Qt's event loop turning.

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>

#include <cstdio>
#include <functional>
#include <string>

namespace harbex {

// Starts `dbus-daemon --session` and reads its address; stops it when destroyed. An empty
// address means the daemon could not be started.
class PrivateBus {
public:
    PrivateBus() {
        int output[2];
        if (::pipe(output) != 0) return;
        pid_ = ::fork();
        if (pid_ == 0) {
            ::dup2(output[1], STDOUT_FILENO);
            ::close(output[0]);
            ::close(output[1]);
            ::execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--nopidfile",
                     "--print-address=1", static_cast<char*>(nullptr));
            ::_exit(127);
        }
        ::close(output[1]);
        if (pid_ < 0) {
            ::close(output[0]);
            return;
        }
        FILE* stream = ::fdopen(output[0], "r");
        char line[1024] = {};
        if (stream && std::fgets(line, sizeof line, stream)) {
            address_ = line;
            while (!address_.empty() && (address_.back() == '\n' || address_.back() == '\r')) {
                address_.pop_back();
            }
        }
        if (stream) std::fclose(stream);
    }
    ~PrivateBus() {
        if (pid_ <= 0) return;
        ::kill(pid_, SIGTERM);
        ::waitpid(pid_, nullptr, 0);
    }
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    const std::string& address() const { return address_; }

private:
    pid_t pid_ = -1;
    std::string address_;
};

// Turns the event loop until `condition` holds or `milliseconds` pass; returns whether it held.
inline bool waitUntil(const std::function<bool()>& condition, int milliseconds = 5000) {
    QDeadlineTimer deadline(milliseconds);
    while (!condition()) {
        if (deadline.hasExpired()) return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    return true;
}

// A test suite whose program talks over its own private bus: the bus and the Qt application
// live for the whole suite.
class PrivateBusSuite : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        bus = new PrivateBus();
        ::setenv("DBUS_SESSION_BUS_ADDRESS", bus->address().c_str(), 1);
        static int argc = 1;
        static char name[] = "harbex-tests";
        static char* argv[] = {name, nullptr};
        application = new QCoreApplication(argc, argv);
    }
    static void TearDownTestSuite() {
        delete application;
        delete bus;
    }
    void SetUp() override { ASSERT_FALSE(bus->address().empty()) << "dbus-daemon did not start"; }

    static inline PrivateBus* bus = nullptr;
    static inline QCoreApplication* application = nullptr;
};

}  // namespace harbex
