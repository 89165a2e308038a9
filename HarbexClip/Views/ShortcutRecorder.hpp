#pragma once

#include <QLabel>
#include <QPushButton>
#include <QWidget>

#include <functional>
#include <optional>

#include "HarbexClipCore/Settings/ClipSettings.hpp"
#include "HarbexClipCore/Settings/ClipShortcutCheck.hpp"

namespace harbex {

// Records the shortcut of one slot: click, press the keys, and the shortcut is checked against
// the other slots before it is offered. A refused shortcut shows why and is not taken; an
// accepted one may carry a soft warning. Escape alone cancels; Backspace alone clears the slot.
// Main thread.
class ShortcutRecorder final : public QWidget {
    Q_OBJECT

public:
    // `settings` gives the record to check against at the moment of each press.
    ShortcutRecorder(ClipShortcutSlot slot, std::function<ClipSettings()> settings,
                     QWidget* parent = nullptr);

    void setShortcut(std::optional<ClipShortcut> shortcut);
    const std::optional<ClipShortcut>& shortcut() const { return shortcut_; }
    bool isRecording() const { return recording_; }
    // The refusal or warning shown under the field, empty when none.
    QString message() const { return message_->text(); }
    QString displayText() const { return button_->text(); }

    // Starts listening for the next key press, as a click does.
    void startRecording();

signals:
    // The user chose a new shortcut (nothing: cleared) that passed the check.
    void shortcutChosen(std::optional<harbex::ClipShortcut> shortcut);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void stopRecording();
    void refresh();
    void showMessage(const QString& text, bool isProblem);

    ClipShortcutSlot slot_;
    std::function<ClipSettings()> settings_;
    ClipShortcutCheck check_{ClipKeyVocabulary::linuxNames};
    std::optional<ClipShortcut> shortcut_;
    bool recording_ = false;
    QPushButton* button_;
    QPushButton* clear_;
    QLabel* message_;
};

}  // namespace harbex
