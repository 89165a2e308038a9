#pragma once

#include <QLabel>

#include <optional>
#include <string>

#include "HarbexClipCore/Support/Observable.hpp"

namespace harbex {

// The engine's `problem` (a history that cannot be opened or saved) across the top of a window:
// shown while there is one, word for word, and gone as soon as it is cleared. The quick panel
// and the library window both carry one. Main thread.
class ProblemBanner final : public QLabel {
    Q_OBJECT

public:
    // A strip as wide as the window, or a rounded box with its own margin to the window's edges.
    enum class Shape { strip, rounded };
    // Amber on a light window or on a dark one.
    enum class Shade { light, dark };

    // `problem` is observed and must outlive the banner.
    ProblemBanner(Observable<std::optional<std::string>>& problem, Shape shape,
                  QWidget* parent = nullptr);
    ~ProblemBanner() override;

    void setShade(Shade shade);
    // The shade that suits a window wearing `palette`.
    static Shade shadeFor(const QPalette& palette);
    Shade shade() const { return shade_; }

private:
    void showProblem(const std::optional<std::string>& problem);
    void applyStyle();

    Shape shape_;
    Shade shade_ = Shade::light;
    Subscription watch_;
};

}  // namespace harbex
