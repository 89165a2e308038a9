#include "HarbexClip/App/ClipInstance.hpp"

#include <QDBusConnectionInterface>
#include <QDBusMessage>

namespace harbex {

namespace {

// A second start should be quick even when the first one is busy (say, behind a keyring prompt).
constexpr int kHandOverTimeoutMilliseconds = 5000;

}  // namespace

ClipInstance::ClipInstance(QDBusConnection connection, QObject* parent)
    : QObject(parent), connection_(std::move(connection)) {}

ClipInstance::~ClipInstance() {
    if (!owns_) return;
    connection_.unregisterObject(kObjectPath);
    connection_.unregisterService(kServiceName);
}

QString ClipInstance::methodFor(ClipCommand command) {
    switch (command) {
        case ClipCommand::open:
        case ClipCommand::library: return "ShowLibrary";
        case ClipCommand::panel: return "ShowPanel";
        case ClipCommand::pause: return "TogglePause";
        case ClipCommand::settings: return "ShowSettings";
        case ClipCommand::autostart: return {};
    }
    return {};
}

ClipInstance::Claim ClipInstance::claim(ClipCommand command) {
    if (!connection_.isConnected()) return Claim::noBus;
    QDBusConnectionInterface* bus = connection_.interface();
    if (!bus) return Claim::noBus;
    // No queueing and no replacement: whoever holds the name keeps it.
    const auto reply =
        bus->registerService(kServiceName, QDBusConnectionInterface::DontQueueService,
                             QDBusConnectionInterface::DontAllowReplacement);
    if (reply.isValid() && reply.value() == QDBusConnectionInterface::ServiceRegistered) {
        owns_ = true;
        connection_.registerObject(kObjectPath, this, QDBusConnection::ExportScriptableSlots);
        return Claim::primary;
    }
    const QString method = methodFor(command);
    if (method.isEmpty()) return Claim::handedOver;
    QDBusMessage call =
        QDBusMessage::createMethodCall(kServiceName, kObjectPath, kInterface, method);
    const QDBusMessage answer = connection_.call(call, QDBus::Block, kHandOverTimeoutMilliseconds);
    return answer.type() == QDBusMessage::ReplyMessage ? Claim::handedOver : Claim::failed;
}

void ClipInstance::ShowPanel() { emit requested(ClipCommand::panel); }
void ClipInstance::ShowLibrary() { emit requested(ClipCommand::library); }
void ClipInstance::TogglePause() { emit requested(ClipCommand::pause); }
void ClipInstance::ShowSettings() { emit requested(ClipCommand::settings); }

}  // namespace harbex
