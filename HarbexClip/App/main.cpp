#include <QApplication>
#include <QIcon>
#include <QSocketNotifier>

#include <malloc.h>
#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "HarbexClip/App/AppDelegate.hpp"
#include "HarbexClip/App/ClipCommand.hpp"
#include "HarbexClip/App/ClipInstance.hpp"

namespace {

bool isSet(const char* name) {
    const char* value = std::getenv(name);
    return value && *value;
}

// An X display or a Wayland compositor. Tests may run Qt offscreen, where only commands for a
// copy already running make sense.
bool hasGraphicalSession() {
    const char* platform = std::getenv("QT_QPA_PLATFORM");
    if (platform && std::string(platform) != "xcb" && std::string(platform) != "wayland")
        return true;
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY");
}

constexpr int kOwnPagesFrom = 256 * 1024;

int quitSignalFds[2] = {-1, -1};

void forwardQuitSignal(int) {
    const char byte = 1;
    [[maybe_unused]] const auto written = ::write(quitSignalFds[0], &byte, 1);
}

// A logout or `kill` sends SIGTERM: quit through the event loop so the history is saved first.
void quitOnTerminationSignals(QObject* context) {
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, quitSignalFds) != 0) return;
    auto* notifier = new QSocketNotifier(quitSignalFds[1], QSocketNotifier::Read, context);
    QObject::connect(notifier, &QSocketNotifier::activated, context, [] {
        char byte = 0;
        [[maybe_unused]] const auto got = ::read(quitSignalFds[1], &byte, 1);
        QCoreApplication::quit();
    });
    struct sigaction action {};
    action.sa_handler = forwardQuitSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGTERM, &action, nullptr);
    ::sigaction(SIGINT, &action, nullptr);
    ::sigaction(SIGHUP, &action, nullptr);
}

}  // namespace

int main(int argc, char* argv[]) {
    using namespace harbex;
    std::vector<std::string> arguments(argv + 1, argv + argc);
    const ClipCommandLine line = parseCommandLine(arguments);
    if (line.help) {
        std::fputs(commandLineHelp().c_str(), stdout);
        return 0;
    }
    if (line.version) {
        std::printf("Harbex Clipboard %s\n", HARBEX_VERSION);
        return 0;
    }
    if (line.error) {
        std::fprintf(stderr, "%s\n", line.error->c_str());
        return 2;
    }
    if (!hasGraphicalSession()) {
        std::fputs(
            "Harbex Clipboard needs a graphical session (neither DISPLAY nor "
            "WAYLAND_DISPLAY is set).\n",
            stderr);
        return 1;
    }
    // Large blocks (the history document while it is read or saved, decoded images) get pages of
    // their own, given back when freed, instead of staying in the heap for the life of the process.
    ::mallopt(M_MMAP_THRESHOLD, kOwnPagesFrom);
    // Our keys and front-app watch speak X11, so the windows go where they do: XWayland when the
    // session has it; a Wayland session without an X display gets Wayland windows.
    if (!std::getenv("QT_QPA_PLATFORM"))
        ::setenv("QT_QPA_PLATFORM", isSet("DISPLAY") ? "xcb" : "wayland", 1);

    QApplication application(argc, argv);
    QApplication::setApplicationName("Harbex Clipboard");
    QApplication::setApplicationVersion(HARBEX_VERSION);
    QApplication::setOrganizationDomain("harbexapps.app");
    QApplication::setDesktopFileName("app.harbexapps.clip");
    QApplication::setWindowIcon(QIcon(":/harbex/app.harbexapps.clip.svg"));
    QApplication::setQuitOnLastWindowClosed(false);

    ClipInstance instance;
    switch (instance.claim(line.command)) {
        case ClipInstance::Claim::handedOver: return 0;
        case ClipInstance::Claim::failed:
            std::fputs("Harbex Clipboard is already running but didn’t answer.\n", stderr);
            return 1;
        case ClipInstance::Claim::primary:
        case ClipInstance::Claim::noBus: break;
    }

    AppDelegate delegate;
    if (auto problem = delegate.start(line.command)) {
        std::fprintf(stderr, "%s\n", problem->c_str());
        return 1;
    }
    quitOnTerminationSignals(&delegate);
    QObject::connect(&instance, &ClipInstance::requested, &delegate, &AppDelegate::perform);
    return application.exec();
}
