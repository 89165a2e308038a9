#include "HarbexClip/App/PortalHotKeyRegistrar.hpp"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMetaType>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QTimer>

#include <cctype>

#include "HarbexClipCore/Settings/ClipKeyCodes.hpp"
#include "HarbexClipCore/Support/EnumNames.hpp"

namespace harbex {

// One entry of the portal's a(sa{sv}): a shortcut id and its properties.
struct PortalShortcut {
    QString id;
    QVariantMap properties;
};

}  // namespace harbex

Q_DECLARE_METATYPE(harbex::PortalShortcut)

namespace harbex {

QDBusArgument& operator<<(QDBusArgument& argument, const PortalShortcut& shortcut) {
    argument.beginStructure();
    argument << shortcut.id << shortcut.properties;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, PortalShortcut& shortcut) {
    argument.beginStructure();
    argument >> shortcut.id >> shortcut.properties;
    argument.endStructure();
    return argument;
}

namespace {

const QString kService = "org.freedesktop.portal.Desktop";
const QString kPath = "/org/freedesktop/portal/desktop";
const QString kInterface = "org.freedesktop.portal.GlobalShortcuts";
constexpr std::array<HotKeyModifierBit, 4> kModifiers{{
    {ClipShortcut::Modifiers::command, 1},
    {ClipShortcut::Modifiers::shift, 2},
    {ClipShortcut::Modifiers::option, 4},
    {ClipShortcut::Modifiers::control, 8},
}};

const char* description(HotKeyWhich which) {
    switch (which) {
        case HotKeyWhich::panel: return "Open the Harbex Clipboard panel";
        case HotKeyWhich::library: return "Open the Harbex Clipboard library";
        case HotKeyWhich::pause: return "Pause or resume saving copies";
    }
    return "";
}

void registerTypes() {
    static const bool registered = [] {
        qDBusRegisterMetaType<PortalShortcut>();
        qDBusRegisterMetaType<QList<PortalShortcut>>();
        return true;
    }();
    (void)registered;
}

}  // namespace

bool PortalHotKeyRegistrar::available() {
    auto bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return false;
    auto get =
        QDBusMessage::createMethodCall(kService, kPath, "org.freedesktop.DBus.Properties", "Get");
    get << kInterface << QString("version");
    // Waits turning the event loop (this runs once, at start, before any window exists).
    const auto reply = bus.call(get, QDBus::BlockWithGui, 2000);
    return reply.type() == QDBusMessage::ReplyMessage;
}

PortalHotKeyRegistrar::PortalHotKeyRegistrar(QObject* parent, int answerTimeoutMs)
    : QObject(parent), answerTimeoutMs_(answerTimeoutMs) {
    registerTypes();
}

void PortalHotKeyRegistrar::listen() {
    if (listening_) return;
    // Made when the first session starts: QtDBus refuses the connection of a slot taking
    // D-Bus types before it has marshalled a message of its own.
    auto bus = QDBusConnection::sessionBus();
    listening_ = bus.connect(QString(), kPath, kInterface, "Activated", this,
                             SLOT(onActivated(QDBusObjectPath, QString, qulonglong, QVariantMap)));
    bus.connect(QString(), kPath, kInterface, "ShortcutsChanged", this,
                SLOT(onShortcutsChanged(QDBusMessage)));
}

PortalHotKeyRegistrar::~PortalHotKeyRegistrar() { closeSession(); }

std::span<const HotKeyModifierBit> PortalHotKeyRegistrar::modifierTable() const {
    return kModifiers;
}

void PortalHotKeyRegistrar::install(std::function<void(HotKeyWhich)> onPressed) {
    onPressed_ = std::move(onPressed);
}

std::optional<std::string> PortalHotKeyRegistrar::preferredTrigger(
    std::uint32_t keyCode, std::uint32_t platformModifiers) {
    const auto key = clipKeyCode(keyCode);
    if (!key) return std::nullopt;
    // The freedesktop shortcut notation: modifiers in capitals, then the XKB key name.
    std::string trigger;
    if (platformModifiers & 1) trigger += "CTRL+";
    if (platformModifiers & 4) trigger += "ALT+";
    if (platformModifiers & 2) trigger += "SHIFT+";
    if (platformModifiers & 8) trigger += "LOGO+";
    std::string name(key->linuxName);
    if (name.size() == 1) name[0] = char(std::tolower(static_cast<unsigned char>(name[0])));
    return trigger + name;
}

int PortalHotKeyRegistrar::registerHotKey(HotKeyWhich which, std::uint32_t keyCode,
                                          std::uint32_t platformModifiers) {
    Slot& slot = slots_[std::size_t(which)];
    slot.wanted = true;
    slot.trigger = preferredTrigger(keyCode, platformModifiers).value_or(std::string());
    slot.answer = Answer{};
    scheduleBind();
    return 0;
}

void PortalHotKeyRegistrar::unregisterHotKey(HotKeyWhich which) {
    Slot& slot = slots_[std::size_t(which)];
    if (!slot.wanted) return;
    slot = Slot{};
    scheduleBind();
}

std::optional<PortalHotKeyRegistrar::Answer> PortalHotKeyRegistrar::answer(
    HotKeyWhich which) const {
    const Slot& slot = slots_[std::size_t(which)];
    if (!slot.wanted) return std::nullopt;
    return slot.answer;
}

std::string PortalHotKeyRegistrar::describe(const Answer& answer) {
    switch (answer.state) {
        case Answer::State::waiting: return "Waiting for the desktop to bind it…";
        case Answer::State::bound:
            return answer.trigger.empty() ? "Bound by the desktop"
                                          : "Bound by the desktop to " + answer.trigger;
        case Answer::State::notBound: return "The desktop did not bind it";
        case Answer::State::failed: return "The desktop’s shortcut service did not answer";
    }
    return std::string();
}

void PortalHotKeyRegistrar::scheduleBind() {
    if (bindQueued_) return;
    bindQueued_ = true;
    // The registrations of one settings change arrive one slot at a time; bind them together.
    QTimer::singleShot(0, this, [this] {
        bindQueued_ = false;
        // A session binds once; new wishes get a new session.
        closeSession();
        const bool anyWanted =
            std::ranges::any_of(slots_, [](const Slot& slot) { return slot.wanted; });
        if (anyWanted) startSession();
        emit answersChanged();
    });
}

void PortalHotKeyRegistrar::expectResponse(const QString& token) {
    auto bus = QDBusConnection::sessionBus();
    if (!requestPath_.isEmpty()) {
        bus.disconnect(QString(), requestPath_, "org.freedesktop.portal.Request", "Response", this,
                       SLOT(onResponse(uint, QVariantMap)));
    }
    // The portal names the request after our unique name and the token we choose, so we can
    // listen before asking and miss no answer.
    QString sender = bus.baseService().mid(1).replace('.', '_');
    requestPath_ = kPath + "/request/" + sender + "/" + token;
    bus.connect(QString(), requestPath_, "org.freedesktop.portal.Request", "Response", this,
                SLOT(onResponse(uint, QVariantMap)));
    const unsigned generation = generation_;
    QTimer::singleShot(answerTimeoutMs_, this, [this, generation] {
        if (generation == generation_ && (step_ == Step::creating || step_ == Step::binding))
            settle(Answer::State::failed);
    });
}

void PortalHotKeyRegistrar::startSession() {
    ++generation_;
    step_ = Step::creating;
    const QString token = QString("harbex%1").arg(++tokens_);
    expectResponse(token);
    auto call = QDBusMessage::createMethodCall(kService, kPath, kInterface, "CreateSession");
    call << QVariantMap{{"handle_token", token}, {"session_handle_token", token}};
    auto* watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    const unsigned generation = generation_;
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, generation](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                if (finished->isError() && generation == generation_) settle(Answer::State::failed);
            });
    listen();
}

void PortalHotKeyRegistrar::bind() {
    step_ = Step::binding;
    QList<PortalShortcut> shortcuts;
    for (HotKeyWhich which : allCases<HotKeyWhich>()) {
        const Slot& slot = slots_[std::size_t(which)];
        if (!slot.wanted) continue;
        QVariantMap properties{{"description", QString(description(which))}};
        if (!slot.trigger.empty())
            properties.insert("preferred_trigger", QString::fromStdString(slot.trigger));
        shortcuts.push_back(PortalShortcut{QString(enumName(which).data()), properties});
    }
    const QString token = QString("harbex%1").arg(++tokens_);
    expectResponse(token);
    auto call = QDBusMessage::createMethodCall(kService, kPath, kInterface, "BindShortcuts");
    call << QVariant::fromValue(QDBusObjectPath(session_)) << QVariant::fromValue(shortcuts)
         << QString() << QVariantMap{{"handle_token", token}};
    auto* watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    const unsigned generation = generation_;
    connect(watcher, &QDBusPendingCallWatcher::finished, this,
            [this, generation](QDBusPendingCallWatcher* finished) {
                finished->deleteLater();
                if (finished->isError() && generation == generation_) settle(Answer::State::failed);
            });
}

void PortalHotKeyRegistrar::closeSession() {
    ++generation_;
    if (!session_.isEmpty()) {
        auto close = QDBusMessage::createMethodCall(kService, session_,
                                                    "org.freedesktop.portal.Session", "Close");
        QDBusConnection::sessionBus().send(close);
    }
    session_.clear();
    step_ = Step::none;
}

void PortalHotKeyRegistrar::onResponse(uint response, const QVariantMap& results) {
    if (step_ == Step::creating) {
        const QVariant handle = results.value("session_handle");
        session_ = handle.canConvert<QDBusObjectPath>() &&
                           handle.metaType() == QMetaType::fromType<QDBusObjectPath>()
                       ? handle.value<QDBusObjectPath>().path()
                       : handle.toString();
        // 1: the person declined in the desktop's dialog; anything else: the portal failed.
        if (response == 1) return settle(Answer::State::notBound);
        if (response != 0 || session_.isEmpty()) return settle(Answer::State::failed);
        bind();
    } else if (step_ == Step::binding) {
        step_ = Step::bound;
        if (response == 1) return settle(Answer::State::notBound);
        if (response != 0) return settle(Answer::State::failed);
        applyShortcuts(results.value("shortcuts").value<QDBusArgument>());
    }
}

void PortalHotKeyRegistrar::applyShortcuts(const QDBusArgument& argument) {
    QList<PortalShortcut> shortcuts;
    if (argument.currentType() == QDBusArgument::ArrayType) argument >> shortcuts;
    for (HotKeyWhich which : allCases<HotKeyWhich>()) {
        Slot& slot = slots_[std::size_t(which)];
        if (!slot.wanted) continue;
        slot.answer = Answer{Answer::State::notBound, {}};
        for (const auto& shortcut : shortcuts) {
            if (shortcut.id != enumName(which).data()) continue;
            slot.answer.state = Answer::State::bound;
            slot.answer.trigger =
                shortcut.properties.value("trigger_description").toString().toStdString();
        }
    }
    emit answersChanged();
}

void PortalHotKeyRegistrar::onActivated(const QDBusObjectPath& session, const QString& id,
                                        qulonglong, const QVariantMap&) {
    if (session.path() != session_ || !onPressed_) return;
    for (HotKeyWhich which : allCases<HotKeyWhich>()) {
        const Slot& slot = slots_[std::size_t(which)];
        if (id == enumName(which).data() && slot.answer.state == Answer::State::bound)
            onPressed_(which);
    }
}

void PortalHotKeyRegistrar::onShortcutsChanged(const QDBusMessage& message) {
    const auto arguments = message.arguments();
    if (arguments.size() < 2 || session_.isEmpty()) return;
    if (arguments[0].value<QDBusObjectPath>().path() != session_) return;
    applyShortcuts(arguments[1].value<QDBusArgument>());
}

void PortalHotKeyRegistrar::settle(Answer::State state) {
    step_ = Step::none;
    for (Slot& slot : slots_) {
        if (slot.wanted) slot.answer = Answer{state, {}};
    }
    emit answersChanged();
}

}  // namespace harbex
