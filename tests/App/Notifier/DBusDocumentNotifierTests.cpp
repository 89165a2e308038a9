#include "HarbexClip/App/DBusDocumentNotifier.hpp"

#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>
#include "tests/Support/PrivateBus.hpp"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "HarbexKit/ClipboardPins.hpp"
#include "HarbexKit/SharedDocument.hpp"

namespace harbex {
namespace {

namespace fs = std::filesystem;
constexpr const char* kPins = "clipboard-pins.json";

class DBusDocumentNotifierTests : public PrivateBusSuite {
protected:
    // Each connection is its own bus client with its own unique name, as two applications are.
    static QDBusConnection connect(const char* label) {
        const QString name = QString::fromLatin1(label) + QString::number(++connectionCount);
        return QDBusConnection::connectToBus(QString::fromStdString(bus->address()), name);
    }

    static inline int connectionCount = 0;
};

TEST_F(DBusDocumentNotifierTests, EachApplicationHearsTheOtherAndNeverItself) {
    DBusDocumentNotifier clip(connect("clip"));
    DBusDocumentNotifier tidepool(connect("tidepool"));
    ASSERT_TRUE(clip.isConnected());
    ASSERT_TRUE(tidepool.isConnected());
    int clipHeard = 0, clipMarkers = 0, tidepoolHeard = 0, tidepoolOther = 0;
    Subscription a = clip.subscribe(kPins, [&] { ++clipHeard; });
    Subscription marker = clip.subscribe("marker.json", [&] { ++clipMarkers; });
    Subscription b = tidepool.subscribe(kPins, [&] { ++tidepoolHeard; });
    Subscription c = tidepool.subscribe("settings.json", [&] { ++tidepoolOther; });

    clip.post(kPins);
    ASSERT_TRUE(waitUntil([&] { return tidepoolHeard == 1; }));
    // The bus delivers in order: once the marker posted afterwards arrives, our own signal has
    // been delivered back to us, and must have been ignored.
    tidepool.post("marker.json");
    ASSERT_TRUE(waitUntil([&] { return clipMarkers == 1; }));
    EXPECT_EQ(clipHeard, 0);

    tidepool.post(kPins);
    ASSERT_TRUE(waitUntil([&] { return clipHeard == 1; }));
    EXPECT_EQ(tidepoolHeard, 1);
    EXPECT_EQ(tidepoolOther, 0);

    c.cancel();
    clip.post("settings.json");
    clip.post(kPins);
    ASSERT_TRUE(waitUntil([&] { return tidepoolHeard == 2; }));
    EXPECT_EQ(tidepoolOther, 0);
    EXPECT_EQ(clipHeard, 1);
}

TEST_F(DBusDocumentNotifierTests, SignalsFromAnyPathAreHeardAndMalformedOnesIgnored) {
    DBusDocumentNotifier clip(connect("clip"));
    QDBusConnection sibling = connect("sibling");
    int heard = 0;
    Subscription watching = clip.subscribe(kPins, [&] { ++heard; });

    struct Case {
        const char* path;
        QList<QVariant> arguments;
        int heardAfter;
    };
    const std::vector<Case> cases = {
        {"/org/harbex/tidepool", {QString::fromLatin1(kPins)}, 1},
        {"/", {QString::fromLatin1(kPins)}, 2},
        {"/app/harbexapps/shared", {}, 2},
        {"/app/harbexapps/shared", {42}, 2},
        {"/app/harbexapps/shared", {QString::fromLatin1(kPins), QString::fromLatin1("x")}, 2},
        {"/app/harbexapps/shared", {QString::fromLatin1("other.json")}, 2},
        {"/app/harbexapps/shared", {QString::fromLatin1(kPins)}, 3},
    };
    for (const auto& testCase : cases) {
        QDBusMessage signal =
            QDBusMessage::createSignal(QString::fromLatin1(testCase.path),
                                       QString::fromLatin1(DBusDocumentNotifier::kInterface),
                                       QString::fromLatin1(DBusDocumentNotifier::kMember));
        signal.setArguments(testCase.arguments);
        ASSERT_TRUE(sibling.send(signal));
    }
    // The last signal counts, so waiting for it means every earlier one was handled.
    ASSERT_TRUE(waitUntil([&] { return heard == 3; }));
    EXPECT_EQ(heard, 3);
}

TEST_F(DBusDocumentNotifierTests, APinWrittenByOneApplicationReachesTheOther) {
    std::string pattern = (fs::temp_directory_path() / "harbex-dbus-XXXXXX").string();
    const fs::path folder = ::mkdtemp(pattern.data());
    DBusDocumentNotifier clipBus(connect("clip"));
    DBusDocumentNotifier tidepoolBus(connect("tidepool"));
    int clipChanges = 0, tidepoolChanges = 0;
    {
        SharedDocument<ClipboardPins> clip(
            kPins, {}, [&](const ClipboardPins&) { ++clipChanges; }, clipBus, folder);
        SharedDocument<ClipboardPins> tidepool(
            kPins, {}, [&](const ClipboardPins&) { ++tidepoolChanges; }, tidepoolBus, folder);

        ASSERT_TRUE(clip.update([](ClipboardPins& pins) {
            PinRecord pin;
            pin.id = Uuid::random();
            pin.text = "shared";
            pins.pins.push_back(pin);
        }));

        ASSERT_TRUE(waitUntil([&] { return tidepoolChanges == 1; }));
        ASSERT_EQ(tidepool.value().pins.size(), 1u);
        EXPECT_EQ(tidepool.value().pins[0].text, "shared");
        EXPECT_EQ(clipChanges, 0);
    }
    fs::remove_all(folder);
}

}  // namespace
}  // namespace harbex
