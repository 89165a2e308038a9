#pragma once

#include <QWidget>

#include <string>

#include "HarbexClipCore/Settings/ClipKeyCodes.hpp"
#include "HarbexClipCore/Settings/ClipSettings.hpp"

namespace harbex {

// What the first-run welcome says, one paragraph each, in the settings' current keys.
struct ClipWelcomeText {
    std::string title;
    std::string opening;   // how the panel opens: the shortcut and the double tap
    std::string choosing;  // searching and pasting
    std::string pausing;   // keeping a copy out of the history
    std::string privacy;   // nothing leaves the machine

    friend bool operator==(const ClipWelcomeText&, const ClipWelcomeText&) = default;
};

ClipWelcomeText welcomeText(const ClipSettings& settings, ClipKeyVocabulary vocabulary);

// The welcome window shown on the very first start. It only shows the text; the shell decides
// when it shows and what its buttons do. Main thread.
class ClipWelcome final : public QWidget {
    Q_OBJECT

public:
    explicit ClipWelcome(const ClipWelcomeText& text, QWidget* parent = nullptr);

signals:
    void settingsRequested();
    // Sent once, however the window goes: either button or the window's own close.
    void finished();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    bool finished_ = false;
};

}  // namespace harbex
