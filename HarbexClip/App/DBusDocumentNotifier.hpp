#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <memory>
#include <string>
#include <vector>

#include "HarbexKit/DocumentNotifier.hpp"

namespace harbex {

// Shared-document change announcements over the D-Bus session bus: a broadcast signal
// app.harbexapps.shared.changed carrying the document's name. Every family application listens
// on any object path, so the sibling may emit from its own; signals we sent ourselves (our own
// unique bus name) are ignored. Thread: the thread of the Qt event loop that owns the object;
// observers are called from that loop.
class DBusDocumentNotifier final : public QObject, public DocumentNotifier {
    Q_OBJECT

public:
    static constexpr const char* kInterface = "app.harbexapps.shared";
    static constexpr const char* kMember = "changed";
    static constexpr const char* kObjectPath = "/app/harbexapps/shared";

    // Listens on `connection` from now on. A connection that is not connected (no session bus)
    // gives a notifier that posts and hears nothing; the documents still work, only without
    // live updates from the sibling.
    explicit DBusDocumentNotifier(QDBusConnection connection = QDBusConnection::sessionBus(),
                                  QObject* parent = nullptr);
    ~DBusDocumentNotifier() override;

    bool isConnected() const { return connection_.isConnected(); }

    void post(std::string_view name) override;
    [[nodiscard]] Subscription subscribe(std::string name, std::function<void()> observer) override;

private slots:
    void handleChanged(const QDBusMessage& message);

private:
    struct Listener {
        std::string name;
        std::function<void()> observer;
        bool active = true;
    };
    using Listeners = std::vector<std::shared_ptr<Listener>>;

    QDBusConnection connection_;
    bool listening_ = false;
    std::shared_ptr<Listeners> listeners_ = std::make_shared<Listeners>();
};

}  // namespace harbex
