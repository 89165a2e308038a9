#include "HarbexClip/Views/ProblemBanner.hpp"

namespace harbex {

ProblemBanner::ProblemBanner(Observable<std::optional<std::string>>& problem, Shape shape,
                             QWidget* parent)
    : QLabel(parent), shape_(shape) {
    setObjectName("problemBanner");
    setWordWrap(true);
    // In a window the message may be selected (it may name a file or an error to look up); in
    // the quick panel a click must not take the focus from the search field.
    if (shape_ == Shape::strip) setTextInteractionFlags(Qt::TextSelectableByMouse);
    applyStyle();
    showProblem(problem.get());
    watch_ = problem.subscribe(
        [this](const std::optional<std::string>& current) { showProblem(current); });
}

ProblemBanner::~ProblemBanner() { watch_.cancel(); }

void ProblemBanner::setShade(Shade shade) {
    if (shade_ == shade) return;
    shade_ = shade;
    applyStyle();
}

ProblemBanner::Shade ProblemBanner::shadeFor(const QPalette& palette) {
    return palette.color(QPalette::Active, QPalette::Window).lightnessF() < 0.5 ? Shade::dark
                                                                                : Shade::light;
}

void ProblemBanner::showProblem(const std::optional<std::string>& problem) {
    setText(problem ? QString::fromStdString(*problem) : QString());
    setVisible(problem.has_value());
}

void ProblemBanner::applyStyle() {
    // Amber reads as "needs attention" without the alarm of red; the dark shade keeps the text
    // light so it does not glare out of a dark window.
    const char* background = shade_ == Shade::dark ? "#4a3a10" : "#fff3cd";
    const char* text = shade_ == Shade::dark ? "#ffe3a3" : "#5c4400";
    // The rounded box keeps its distance from the window's edges itself, so a hidden banner
    // leaves no margin behind.
    const char* corners =
        shape_ == Shape::rounded ? "border-radius: 6px; margin: 10px 12px 0px 12px;" : "";
    setStyleSheet(
        QString("QLabel#problemBanner { background: %1; color: %2; padding: 6px 10px; %3 }")
            .arg(background, text, corners));
}

}  // namespace harbex
