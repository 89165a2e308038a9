#pragma once

#include <QApplication>

namespace harbex::testing {

// The one QApplication of a widget test or benchmark program, drawing offscreen so that tests need
// no display. Made on first use and kept for the life of the process: Qt allows only one, and
// suites of the same program share it.
inline QApplication& offscreenApplication() {
    static int argc = 3;
    static char name[] = "HarbexWidgetTests";
    static char platform[] = "-platform";
    static char offscreen[] = "offscreen";
    static char* argv[] = {name, platform, offscreen, nullptr};
    static QApplication* application = new QApplication(argc, argv);
    return *application;
}

}  // namespace harbex::testing
