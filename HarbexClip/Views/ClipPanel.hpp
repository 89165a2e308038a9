#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QWidget>

#include <functional>
#include <memory>

#include "HarbexClipCore/Panel/ClipKeyPress.hpp"
#include "HarbexClipCore/Panel/ClipPanelFocus.hpp"
#include "HarbexClipCore/Panel/ClipPanelModel.hpp"

namespace harbex {

// The key press a Qt key event describes, in the panel's terms (Ctrl is ⌘, Super is ⌃).
ClipKeyPress keyPressFor(int qtKey, Qt::KeyboardModifiers modifiers, const QString& text);

// The quick panel: a frameless window with the search field "Search your clipboard", the grouped
// rows, the notice and pause lines. It renders ClipPanelModel and forwards every key through
// ClipPanelKeyRouter; it decides nothing itself. Main thread.
class ClipPanel final : public QWidget {
    Q_OBJECT

public:
    // `model`, `focus` and `settings` are observed and must outlive the panel.
    ClipPanel(ClipPanelModel& model, ClipPanelFocus& focus, std::function<ClipSettings()> settings,
              QWidget* parent = nullptr);

    // Remembers the front application, opens the model and shows the window.
    void present();
    void dismiss(ClipPanelFocus::Close reason);

signals:
    void settingsRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool event(QEvent* event) override;

private:
    void render();
    void carryOut(ClipPanelModel::Effect effect);

    ClipPanelModel& model_;
    ClipPanelFocus& focus_;
    std::function<ClipSettings()> settings_;
    QLineEdit* search_;
    QListWidget* rows_;
    QLabel* banner_;
    QLabel* empty_;
    QLabel* notice_;
    Subscription revisionWatch_;
};

}  // namespace harbex
