#include "HarbexClip/App/ClipWelcome.hpp"

#include <QCloseEvent>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace harbex {
namespace {

std::optional<ClipShortcut::Modifiers> tapModifier(ClipPanelTrigger trigger) {
    switch (trigger) {
        case ClipPanelTrigger::doubleCommand: return ClipShortcut::Modifiers::command;
        case ClipPanelTrigger::doubleOption: return ClipShortcut::Modifiers::option;
        case ClipPanelTrigger::doubleControl: return ClipShortcut::Modifiers::control;
        case ClipPanelTrigger::doubleShift: return ClipShortcut::Modifiers::shift;
        case ClipPanelTrigger::off: return std::nullopt;
    }
    return std::nullopt;
}

}  // namespace

ClipWelcomeText welcomeText(const ClipSettings& settings, ClipKeyVocabulary vocabulary) {
    ClipWelcomeText text;
    text.title = "Welcome to Harbex Clipboard";

    const auto tap = tapModifier(settings.panel.trigger);
    const std::string tapText =
        tap ? "tap " + modifierName(*tap, vocabulary) + " twice" : std::string();
    const auto& shortcut = settings.panel.fallback;
    if (shortcut && tap) {
        text.opening = "Press " + displayForm(*shortcut, vocabulary) + ", or " + tapText +
                       ", to open the panel from any app.";
    } else if (shortcut) {
        text.opening =
            "Press " + displayForm(*shortcut, vocabulary) + " to open the panel from any app.";
    } else if (tap) {
        text.opening = "T" + tapText.substr(1) + " to open the panel from any app.";
    } else {
        text.opening =
            "Open the panel from the tray icon, or choose a shortcut for it in Settings.";
    }
    if (settings.libraryShortcut) {
        text.opening += " " + displayForm(*settings.libraryShortcut, vocabulary) +
                        " opens the library with your whole history.";
    }

    text.choosing =
        "Type to search, then press Return to paste the copy into the app you were using.";

    text.pausing = "To keep copies out of your history for a while, pause from the tray menu";
    text.pausing +=
        settings.window.pauseShortcut
            ? " or with " + displayForm(*settings.window.pauseShortcut, vocabulary) + "."
            : ".";
    if (settings.skipPasswordManagers)
        text.pausing += " Copies from password managers are never kept.";

    text.privacy =
        "Nothing leaves this computer: your history is encrypted on disk with a key kept in "
        "your login keyring.";
    return text;
}

ClipWelcome::ClipWelcome(const ClipWelcomeText& text, QWidget* parent) : QWidget(parent) {
    setObjectName("clipWelcome");
    setWindowTitle(QString::fromStdString(text.title));
    setAttribute(Qt::WA_DeleteOnClose);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(28, 24, 28, 20);
    layout->setSpacing(12);

    auto* icon = new QLabel(this);
    icon->setPixmap(QIcon(":/harbex/app.harbexapps.clip.svg").pixmap(64, 64));
    icon->setAlignment(Qt::AlignHCenter);
    layout->addWidget(icon);
    auto* title = new QLabel(QString::fromStdString(text.title), this);
    QFont big = title->font();
    big.setPointSizeF(big.pointSizeF() * 1.5);
    big.setBold(true);
    title->setFont(big);
    title->setAlignment(Qt::AlignHCenter);
    layout->addWidget(title);
    for (const std::string* paragraph :
         {&text.opening, &text.choosing, &text.pausing, &text.privacy}) {
        auto* label = new QLabel(QString::fromStdString(*paragraph), this);
        label->setWordWrap(true);
        layout->addWidget(label);
    }
    layout->addStretch(1);

    auto* buttons = new QDialogButtonBox(this);
    QPushButton* settingsButton =
        buttons->addButton(tr("Open Settings"), QDialogButtonBox::ActionRole);
    settingsButton->setObjectName("welcomeSettings");
    QPushButton* closeButton = buttons->addButton(tr("Close"), QDialogButtonBox::AcceptRole);
    closeButton->setObjectName("welcomeClose");
    closeButton->setDefault(true);
    connect(settingsButton, &QPushButton::clicked, this, [this] {
        emit settingsRequested();
        close();
    });
    connect(closeButton, &QPushButton::clicked, this, &QWidget::close);
    layout->addWidget(buttons);
    setFixedWidth(460);
}

void ClipWelcome::closeEvent(QCloseEvent* event) {
    if (!finished_) {
        finished_ = true;
        emit finished();
    }
    event->accept();
}

}  // namespace harbex
