#include "HarbexClip/App/DBusDocumentNotifier.hpp"

#include <QVariant>

#include <algorithm>

namespace harbex {

DBusDocumentNotifier::DBusDocumentNotifier(QDBusConnection connection, QObject* parent)
    : QObject(parent), connection_(std::move(connection)) {
    if (!connection_.isConnected()) return;
    // Empty service and path: any sender, any object path.
    listening_ =
        connection_.connect(QString(), QString(), QString::fromLatin1(kInterface),
                            QString::fromLatin1(kMember), this, SLOT(handleChanged(QDBusMessage)));
}

DBusDocumentNotifier::~DBusDocumentNotifier() {
    if (listening_) {
        connection_.disconnect(QString(), QString(), QString::fromLatin1(kInterface),
                               QString::fromLatin1(kMember), this,
                               SLOT(handleChanged(QDBusMessage)));
    }
}

void DBusDocumentNotifier::post(std::string_view name) {
    if (!connection_.isConnected()) return;
    QDBusMessage signal =
        QDBusMessage::createSignal(QString::fromLatin1(kObjectPath),
                                   QString::fromLatin1(kInterface), QString::fromLatin1(kMember));
    signal << QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
    connection_.send(signal);
}

Subscription DBusDocumentNotifier::subscribe(std::string name, std::function<void()> observer) {
    auto listener = std::make_shared<Listener>(Listener{std::move(name), std::move(observer)});
    listeners_->push_back(listener);
    std::weak_ptr<Listeners> weakListeners = listeners_;
    std::weak_ptr<Listener> weakListener = listener;
    return Subscription([weakListeners, weakListener] {
        auto listener = weakListener.lock();
        if (!listener) return;
        listener->active = false;
        if (auto listeners = weakListeners.lock()) std::erase(*listeners, listener);
    });
}

void DBusDocumentNotifier::handleChanged(const QDBusMessage& message) {
    // Our own broadcast comes back to us too; only other applications' changes matter.
    if (message.service() == connection_.baseService()) return;
    const QList<QVariant> arguments = message.arguments();
    if (arguments.size() != 1 || arguments[0].typeId() != QMetaType::QString) return;
    const std::string name = arguments[0].toString().toStdString();
    // A snapshot, so an observer may subscribe or cancel while being told.
    const Listeners snapshot = *listeners_;
    for (const auto& listener : snapshot) {
        if (listener->active && listener->name == name) listener->observer();
    }
}

}  // namespace harbex
