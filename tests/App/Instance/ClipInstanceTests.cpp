#include "HarbexClip/App/ClipInstance.hpp"
#include "HarbexClipCore/Support/EnumNames.hpp"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include "tests/Support/PrivateBus.hpp"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QProcess>

#include <cctype>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace harbex {
namespace {

class ClipInstanceTests : public PrivateBusSuite {
protected:
    // Each connection is a bus client of its own, as two processes are.
    static QDBusConnection connect() {
        return QDBusConnection::connectToBus(QString::fromStdString(bus->address()),
                                             "instance" + QString::number(++connections));
    }

    // A second copy blocks on its call until the first answers, so it claims from another thread
    // while this one turns the first copy's loop.
    static ClipInstance::Claim claimElsewhere(ClipCommand command) {
        ClipInstance::Claim claim = ClipInstance::Claim::failed;
        bool done = false;
        QDBusConnection connection = connect();
        std::thread worker([&] {
            ClipInstance second(connection);
            claim = second.claim(command);
            done = true;
        });
        waitUntil([&] { return done; }, 8000);
        worker.join();
        return claim;
    }

    static inline int connections = 0;
};

TEST_F(ClipInstanceTests, LaterStartsHandTheirCommandToTheFirstOne) {
    ClipInstance first(connect());
    ASSERT_EQ(first.claim(ClipCommand::open), ClipInstance::Claim::primary);
    std::vector<ClipCommand> heard;
    QObject::connect(&first, &ClipInstance::requested,
                     [&](ClipCommand command) { heard.push_back(command); });

    struct Case {
        ClipCommand sent;
        std::optional<ClipCommand> heard;  // nothing: the running copy is left alone
    };
    const Case cases[] = {
        {ClipCommand::open, ClipCommand::library},      {ClipCommand::panel, ClipCommand::panel},
        {ClipCommand::library, ClipCommand::library},   {ClipCommand::pause, ClipCommand::pause},
        {ClipCommand::settings, ClipCommand::settings}, {ClipCommand::autostart, std::nullopt},
    };
    for (const Case& c : cases) {
        heard.clear();
        EXPECT_EQ(claimElsewhere(c.sent), ClipInstance::Claim::handedOver) << enumName(c.sent);
        waitUntil([&] { return !heard.empty(); }, c.heard ? 3000 : 200);
        if (c.heard) {
            EXPECT_EQ(heard, std::vector<ClipCommand>{*c.heard}) << enumName(c.sent);
        } else {
            EXPECT_TRUE(heard.empty()) << enumName(c.sent);
        }
    }
}

TEST_F(ClipInstanceTests, TheNameIsFreeAgainOnceTheFirstCopyIsGone) {
    {
        ClipInstance first(connect());
        ASSERT_EQ(first.claim(ClipCommand::autostart), ClipInstance::Claim::primary);
    }
    ClipInstance next(connect());
    EXPECT_EQ(next.claim(ClipCommand::open), ClipInstance::Claim::primary);
}

TEST_F(ClipInstanceTests, WithoutABusTheCopyRunsAlone) {
    ClipInstance alone(
        QDBusConnection::connectToBus(QString("unix:path=/nonexistent/bus"), "nobus"));
    EXPECT_EQ(alone.claim(ClipCommand::panel), ClipInstance::Claim::noBus);
}

TEST_F(ClipInstanceTests, TheProgramPassesItsCommandToTheRunningCopyAndExits) {
    ClipInstance first(connect());
    ASSERT_EQ(first.claim(ClipCommand::open), ClipInstance::Claim::primary);
    std::vector<ClipCommand> heard;
    QObject::connect(&first, &ClipInstance::requested,
                     [&](ClipCommand command) { heard.push_back(command); });

    QProcess program;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DBUS_SESSION_BUS_ADDRESS", QString::fromStdString(bus->address()));
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    program.setProcessEnvironment(environment);
    program.start(HARBEX_BINARY_DIR "/HarbexClip/harbex-clipboard", {"--panel"});
    ASSERT_TRUE(program.waitForStarted(5000));
    const bool finished = waitUntil([&] { return program.state() == QProcess::NotRunning; }, 15000);
    if (!finished) program.kill();
    ASSERT_TRUE(finished);
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(program.exitCode(), 0) << program.readAllStandardError().toStdString();
    waitUntil([&] { return !heard.empty(); }, 2000);
    EXPECT_EQ(heard, std::vector<ClipCommand>{ClipCommand::panel});
}

}  // namespace
}  // namespace harbex
