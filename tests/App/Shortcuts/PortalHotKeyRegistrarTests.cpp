#include "HarbexClip/App/PortalHotKeyRegistrar.hpp"

#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusVirtualObject>

#include "tests/Support/PrivateBus.hpp"

namespace harbex::testing_portal {

struct Shortcut {
    QString id;
    QVariantMap properties;
};

}  // namespace harbex::testing_portal

Q_DECLARE_METATYPE(harbex::testing_portal::Shortcut)

namespace harbex::testing_portal {

QDBusArgument& operator<<(QDBusArgument& argument, const Shortcut& shortcut) {
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}
const QDBusArgument& operator>>(const QDBusArgument& argument, Shortcut& shortcut) {
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

// A desktop portal offering org.freedesktop.portal.GlobalShortcuts as its documentation
// describes it, on its own connection to the private bus: requests answered by a Response
// signal on the request object named after the caller and its handle_token, sessions named the
// same way. The "desktop" binds what it is asked, describing the keys in its own words, except
// the ids in `refused`; or it declines everything, or never answers.
class FakePortal final : public QDBusVirtualObject {
public:
    enum class Behaviour { binds, declines, silent };

    explicit FakePortal(const QString& address)
        : connection_(QDBusConnection::connectToBus(address, "fake-portal")) {
        qDBusRegisterMetaType<Shortcut>();
        qDBusRegisterMetaType<QList<Shortcut>>();
        connection_.registerVirtualObject("/org/freedesktop/portal/desktop", this,
                                          QDBusConnection::SubPath);
        connection_.interface()->registerService("org.freedesktop.portal.Desktop");
    }
    ~FakePortal() override {
        connection_.unregisterObject("/org/freedesktop/portal/desktop");
        connection_.interface()->unregisterService("org.freedesktop.portal.Desktop");
        QDBusConnection::disconnectFromBus("fake-portal");
    }

    QString introspect(const QString&) const override { return {}; }

    bool handleMessage(const QDBusMessage& message, const QDBusConnection&) override {
        const QString member = message.member();
        const auto arguments = message.arguments();
        if (message.interface() == "org.freedesktop.DBus.Properties" && member == "Get") {
            connection_.send(message.createReply(QVariant::fromValue(QDBusVariant(1u))));
        } else if (member == "CreateSession") {
            const auto options = qdbus_cast<QVariantMap>(arguments.value(0));
            const QString sender = message.service().mid(1).replace('.', '_');
            const QString session = "/org/freedesktop/portal/desktop/session/" + sender + "/" +
                                    options.value("session_handle_token").toString();
            respond(message, options, {{"session_handle", session}});
            sessions.push_back(session);
        } else if (member == "BindShortcuts") {
            QList<Shortcut> asked;
            arguments.value(1).value<QDBusArgument>() >> asked;
            bound = asked;
            QList<Shortcut> given;
            for (const auto& shortcut : asked) {
                if (refused.contains(shortcut.id)) continue;
                QString trigger = shortcut.properties.value("preferred_trigger").toString();
                trigger.replace("CTRL", "Ctrl").replace("LOGO", "Super");
                given.push_back(
                    Shortcut{shortcut.id, {{"trigger_description", trigger.toUpper()}}});
            }
            respond(message, qdbus_cast<QVariantMap>(arguments.value(3)),
                    {{"shortcuts", QVariant::fromValue(given)}});
        } else if (member == "Close") {
            closed.push_back(message.path());
            connection_.send(message.createReply());
        } else {
            return false;
        }
        return true;
    }

    // The desktop reports that the person pressed the keys of `id`.
    void activate(const QString& id) {
        auto signal =
            QDBusMessage::createSignal("/org/freedesktop/portal/desktop",
                                       "org.freedesktop.portal.GlobalShortcuts", "Activated");
        signal << QVariant::fromValue(QDBusObjectPath(sessions.back())) << id << qulonglong(1000)
               << QVariantMap();
        connection_.send(signal);
    }

    Behaviour behaviour = Behaviour::binds;
    QStringList refused;
    QStringList sessions;
    QStringList closed;
    QList<Shortcut> bound;

private:
    void respond(const QDBusMessage& call, const QVariantMap& options, const QVariantMap& results) {
        const QString sender = call.service().mid(1).replace('.', '_');
        const QString request = "/org/freedesktop/portal/desktop/request/" + sender + "/" +
                                options.value("handle_token").toString();
        connection_.send(call.createReply(QVariant::fromValue(QDBusObjectPath(request))));
        if (behaviour == Behaviour::silent) return;
        auto signal =
            QDBusMessage::createSignal(request, "org.freedesktop.portal.Request", "Response");
        signal << uint(behaviour == Behaviour::declines ? 1 : 0) << results;
        connection_.send(signal);
    }

    QDBusConnection connection_;
};

}  // namespace harbex::testing_portal

namespace harbex {
namespace {

using testing_portal::FakePortal;
using State = PortalHotKeyRegistrar::Answer::State;

class PortalHotKeyRegistrarTests : public PrivateBusSuite {
protected:
    // Registers the three slots as the hot-key logic does (the panel's default, the library's,
    // the pause's) and waits for the portal's answer.
    void registerSlots(PortalHotKeyRegistrar& registrar) {
        registrar.install([this](HotKeyWhich which) { pressed.push_back(which); });
        registrar.registerHotKey(HotKeyWhich::panel, 9, 1 | 8);
        registrar.registerHotKey(HotKeyWhich::library, 37, 1 | 2);
        registrar.registerHotKey(HotKeyWhich::pause, 35, 1 | 4);
    }
    static bool answered(PortalHotKeyRegistrar& registrar) {
        return registrar.answer(HotKeyWhich::panel)->state != State::waiting;
    }

    std::vector<HotKeyWhich> pressed;
};

TEST_F(PortalHotKeyRegistrarTests, AvailableOnlyWhereAPortalOffersGlobalShortcuts) {
    EXPECT_FALSE(PortalHotKeyRegistrar::available());
    FakePortal portal(QString::fromStdString(bus->address()));
    EXPECT_TRUE(PortalHotKeyRegistrar::available());
}

// The three slots are asked for in one request with their preferred triggers; each slot shows
// the desktop's answer, a refused one as not bound; the desktop's key presses reach the slot.
TEST_F(PortalHotKeyRegistrarTests, BindsTheSlotsAndDeliversTheDesktopsPresses) {
    FakePortal portal(QString::fromStdString(bus->address()));
    portal.refused = {"pause"};
    PortalHotKeyRegistrar registrar;
    registerSlots(registrar);
    ASSERT_TRUE(waitUntil([&] { return answered(registrar); }));

    ASSERT_EQ(portal.bound.size(), 3);
    EXPECT_EQ(portal.bound[0].id, "panel");
    EXPECT_EQ(portal.bound[0].properties.value("preferred_trigger").toString(), "CTRL+LOGO+v");
    EXPECT_EQ(portal.bound[1].properties.value("preferred_trigger").toString(), "CTRL+SHIFT+l");
    EXPECT_EQ(portal.bound[2].properties.value("preferred_trigger").toString(), "CTRL+ALT+p");
    EXPECT_EQ(PortalHotKeyRegistrar::describe(*registrar.answer(HotKeyWhich::panel)),
              "Bound by the desktop to CTRL+SUPER+V");
    EXPECT_EQ(registrar.answer(HotKeyWhich::library)->state, State::bound);
    EXPECT_EQ(PortalHotKeyRegistrar::describe(*registrar.answer(HotKeyWhich::pause)),
              "The desktop did not bind it");

    portal.activate("library");
    portal.activate("pause");  // not bound, so not ours to act on
    portal.activate("panel");
    EXPECT_TRUE(waitUntil([&] { return pressed.size() == 2; }));
    EXPECT_EQ(pressed, (std::vector{HotKeyWhich::library, HotKeyWhich::panel}));
}

// A changed shortcut gets a new session (a session binds once) and the old one is closed; a slot
// given up has no answer to show.
TEST_F(PortalHotKeyRegistrarTests, AChangedShortcutIsBoundInANewSession) {
    FakePortal portal(QString::fromStdString(bus->address()));
    PortalHotKeyRegistrar registrar;
    registerSlots(registrar);
    ASSERT_TRUE(waitUntil([&] { return answered(registrar); }));
    registrar.unregisterHotKey(HotKeyWhich::panel);
    registrar.registerHotKey(HotKeyWhich::panel, 9, 1 | 4);
    registrar.unregisterHotKey(HotKeyWhich::pause);
    ASSERT_TRUE(waitUntil([&] { return portal.sessions.size() == 2 && answered(registrar); }));
    EXPECT_EQ(portal.closed, QStringList{portal.sessions[0]});
    EXPECT_EQ(portal.bound.size(), 2);
    EXPECT_EQ(registrar.answer(HotKeyWhich::panel)->trigger, "CTRL+ALT+V");
    EXPECT_FALSE(registrar.answer(HotKeyWhich::pause).has_value());
}

// A person who declines, or a portal that never answers, leaves the slots unbound and saying so.
TEST_F(PortalHotKeyRegistrarTests, ADeclinedOrSilentPortalLeavesTheSlotsUnbound) {
    struct Case {
        FakePortal::Behaviour behaviour;
        State state;
    };
    for (const auto& test : {Case{FakePortal::Behaviour::declines, State::notBound},
                             Case{FakePortal::Behaviour::silent, State::failed}}) {
        FakePortal portal(QString::fromStdString(bus->address()));
        portal.behaviour = test.behaviour;
        PortalHotKeyRegistrar registrar(nullptr, 300);
        registerSlots(registrar);
        ASSERT_TRUE(waitUntil([&] { return answered(registrar); }));
        EXPECT_EQ(registrar.answer(HotKeyWhich::panel)->state, test.state);
        EXPECT_EQ(registrar.answer(HotKeyWhich::pause)->state, test.state);
    }
}

}  // namespace
}  // namespace harbex
