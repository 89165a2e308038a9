#include "HarbexClip/Views/ShortcutRecorder.hpp"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

#include "HarbexClip/Views/QtKeyMapping.hpp"

namespace harbex {

ShortcutRecorder::ShortcutRecorder(ClipShortcutSlot slot, std::function<ClipSettings()> settings,
                                   QWidget* parent)
    : QWidget(parent), slot_(slot), settings_(std::move(settings)) {
    setFocusPolicy(Qt::StrongFocus);
    button_ = new QPushButton(this);
    button_->setMinimumWidth(180);
    button_->installEventFilter(this);
    clear_ = new QPushButton(tr("Clear"), this);
    clear_->setFlat(true);
    message_ = new QLabel(this);
    message_->setWordWrap(true);
    message_->setVisible(false);

    auto* row = new QHBoxLayout;
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(button_);
    row->addWidget(clear_);
    row->addStretch();
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addLayout(row);
    column->addWidget(message_);

    connect(button_, &QPushButton::clicked, this, [this] {
        if (recording_) {
            stopRecording();
        } else {
            startRecording();
        }
    });
    connect(clear_, &QPushButton::clicked, this, [this] {
        stopRecording();
        shortcut_.reset();
        showMessage({}, false);
        refresh();
        emit shortcutChosen(std::nullopt);
    });
    refresh();
}

void ShortcutRecorder::setShortcut(std::optional<ClipShortcut> shortcut) {
    shortcut_ = shortcut;
    refresh();
}

void ShortcutRecorder::startRecording() {
    recording_ = true;
    showMessage({}, false);
    refresh();
    button_->setFocus(Qt::OtherFocusReason);
}

void ShortcutRecorder::stopRecording() {
    recording_ = false;
    refresh();
}

void ShortcutRecorder::refresh() {
    if (recording_) {
        button_->setText(tr("Type a shortcut…"));
    } else if (shortcut_) {
        button_->setText(
            QString::fromStdString(displayForm(*shortcut_, ClipKeyVocabulary::linuxNames)));
    } else {
        button_->setText(tr("Record Shortcut"));
    }
    button_->setDown(recording_);
    clear_->setVisible(shortcut_.has_value() && !recording_);
}

void ShortcutRecorder::showMessage(const QString& text, bool isProblem) {
    message_->setText(text);
    message_->setVisible(!text.isEmpty());
    QPalette palette = message_->palette();
    palette.setColor(QPalette::WindowText, isProblem ? QColor(0xd7, 0x3a, 0x2f)
                                                     : palette.color(QPalette::PlaceholderText));
    message_->setPalette(palette);
}

bool ShortcutRecorder::eventFilter(QObject* watched, QEvent* event) {
    // The button has the focus while recording; its keys are the recorder's.
    if (watched == button_ && recording_ && event->type() == QEvent::KeyPress) {
        keyPressEvent(static_cast<QKeyEvent*>(event));
        return true;
    }
    if (watched == button_ && recording_ && event->type() == QEvent::FocusOut) stopRecording();
    return QWidget::eventFilter(watched, event);
}

void ShortcutRecorder::keyPressEvent(QKeyEvent* event) {
    if (!recording_) {
        QWidget::keyPressEvent(event);
        return;
    }
    event->accept();
    const int key = event->key();
    const Qt::KeyboardModifiers modifiers =
        event->modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    if (modifiers == Qt::NoModifier && key == Qt::Key_Escape) {
        stopRecording();
        return;
    }
    if (modifiers == Qt::NoModifier && (key == Qt::Key_Backspace || key == Qt::Key_Delete)) {
        stopRecording();
        shortcut_.reset();
        showMessage({}, false);
        refresh();
        emit shortcutChosen(std::nullopt);
        return;
    }
    const auto pressed = shortcutForKeyPress(key, modifiers);
    if (!pressed) return;  // a modifier on its own: keep listening
    if (auto problem = check_.problem(pressed->keyCode, pressed->modifiers, slot_, settings_())) {
        showMessage(QString::fromStdString(*problem), true);
        return;  // still recording: the user can try another
    }
    shortcut_ = pressed;
    stopRecording();
    const auto warning = check_.warning(pressed->keyCode, pressed->modifiers);
    showMessage(warning ? QString::fromStdString(*warning) : QString(), false);
    emit shortcutChosen(shortcut_);
}

void ShortcutRecorder::focusOutEvent(QFocusEvent* event) {
    QWidget::focusOutEvent(event);
    if (!button_->hasFocus()) stopRecording();
}

}  // namespace harbex
