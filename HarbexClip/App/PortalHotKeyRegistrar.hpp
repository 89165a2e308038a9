#pragma once

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QObject>
#include <QVariantMap>

#include <array>
#include <optional>
#include <string>

#include "HarbexClipCore/Panel/HotKeyRegistrar.hpp"

namespace harbex {

// Global shortcuts through the desktop portal's org.freedesktop.portal.GlobalShortcuts (KDE
// Plasma, GNOME 48 and later, Hyprland). The portal, not us, owns the keys: we ask for the three
// slots with our preferred triggers and the desktop binds them, perhaps to other keys or not at
// all after asking the person. So `registerHotKey` only records the wish and answers 0; the
// slots are bound together once the registrations of one turn of the loop are in, and the
// portal's answer for each slot arrives later in `answer` (`answersChanged` then fires).
//
// A portal that never answers, answers with an error or goes away leaves the slots unbound with
// a status saying so; nothing waits for it. Main thread.
class PortalHotKeyRegistrar final : public QObject, public HotKeyRegistrar {
    Q_OBJECT

public:
    // What became of one slot.
    struct Answer {
        enum class State { waiting, bound, notBound, failed };
        State state = State::waiting;
        std::string trigger;  // the desktop's description of the keys, when bound
    };

    // Whether the session bus has a portal offering GlobalShortcuts (a bounded query).
    static bool available();

    // How long the portal may take to answer before the slots show as unanswered: binding may
    // wait for the person to confirm in a dialog of the desktop's.
    static constexpr int kAnswerTimeoutMs = 60000;

    explicit PortalHotKeyRegistrar(QObject* parent = nullptr,
                                   int answerTimeoutMs = kAnswerTimeoutMs);
    ~PortalHotKeyRegistrar() override;

    std::span<const HotKeyModifierBit> modifierTable() const override;
    void install(std::function<void(HotKeyWhich)> onPressed) override;
    int registerHotKey(HotKeyWhich which, std::uint32_t keyCode,
                       std::uint32_t platformModifiers) override;
    void unregisterHotKey(HotKeyWhich which) override;

    // The portal's answer for a slot; nothing for a slot with no shortcut.
    std::optional<Answer> answer(HotKeyWhich which) const;
    // The slot's answer as the settings show it: "Bound by the desktop to Ctrl+Super+V", ….
    static std::string describe(const Answer& answer);
    // The trigger we ask for in the portal's notation: "CTRL+LOGO+v".
    static std::optional<std::string> preferredTrigger(std::uint32_t keyCode,
                                                       std::uint32_t platformModifiers);

signals:
    void answersChanged();

private slots:
    void onResponse(uint response, const QVariantMap& results);
    void onActivated(const QDBusObjectPath& session, const QString& id, qulonglong timestamp,
                     const QVariantMap& options);
    void onShortcutsChanged(const QDBusMessage& message);

private:
    struct Slot {
        bool wanted = false;
        std::string trigger;
        Answer answer;
    };
    enum class Step { none, creating, binding, bound };

    void listen();
    void scheduleBind();
    void startSession();
    void bind();
    void closeSession();
    // Listens for the Response of the request we are about to make with `token`.
    void expectResponse(const QString& token);
    void applyShortcuts(const QDBusArgument& shortcuts);
    // Every wanted slot ends in `state`.
    void settle(Answer::State state);

    std::function<void(HotKeyWhich)> onPressed_;
    std::array<Slot, 3> slots_{};
    Step step_ = Step::none;
    bool bindQueued_ = false;
    bool listening_ = false;
    bool rebindWanted_ = false;
    QString session_;
    QString requestPath_;
    int answerTimeoutMs_;
    unsigned tokens_ = 0;
    unsigned generation_ = 0;  // a late answer to an abandoned request does nothing
};

}  // namespace harbex
