#pragma once

#include <gtest/gtest.h>

#include <QApplication>
#include <QEventLoop>
#include <QTimer>

#include <memory>

#include "HarbexClip/Views/LibraryListModel.hpp"
#include "HarbexClip/Views/LibrarySidebar.hpp"
#include "HarbexClip/Views/LibraryWindow.hpp"
#include "HarbexClipCore/Testing/EngineRig.hpp"
#include "tests/Support/OffscreenApplication.hpp"

namespace harbex::librarywindowtest {

// One offscreen QApplication for every library test program.
inline void ensureApplication() { harbex::testing::offscreenApplication(); }

inline LibraryWindowServices servicesFor(testing::EngineRig& rig) {
    return LibraryWindowServices{
        .engine = *rig.engine,
        .now = nowFunction(rig.clock),
        .calendar = Calendar("Europe/Berlin", "en_GB"),
        .readImage = [](const ClipImageInfo&) { return std::optional<Bytes>{}; },
        .storeImage = [](const ClipExportImage&) { return false; },
        .clearHistory = {},
        .readThumbnail = {},
        .desktopEntry = {},
        .defaults = &rig.defaults,
    };
}

// The rows of the list as they read: "#Heading" for a heading, else the title.
inline QStringList listRows(const LibraryWindow& window) {
    QStringList out;
    const LibraryListModel& model = *window.listModel();
    for (int row = 0; row < model.rowCount(); ++row) {
        const QString text = model.index(row).data().toString();
        out << (model.isHeading(row) ? "#" + text : text);
    }
    return out;
}

// The sidebar rows as "name  count"; headings as "#name".
inline QStringList sidebarRows(const LibraryWindow& window) {
    QStringList out;
    for (int i = 0; i < window.sidebar()->count(); ++i) {
        const QListWidgetItem* row = window.sidebar()->item(i);
        if (row->data(LibrarySidebar::headingRole).toBool()) {
            out << "#" + row->text();
        } else {
            out << row->text() + "  " + row->data(LibrarySidebar::countRole).toString();
        }
    }
    return out;
}

// Runs the event loop until the window's export or import has finished; its message, or a
// note that it never finished.
inline QString waitForTransfer(LibraryWindow& window) {
    QString message = "(never finished)";
    QEventLoop loop;
    QObject::connect(&window, &LibraryWindow::transferFinished, &loop, [&](const QString& text) {
        message = text;
        loop.quit();
    });
    QTimer::singleShot(20000, &loop, &QEventLoop::quit);
    loop.exec();
    return message;
}

}  // namespace harbex::librarywindowtest
