#include <QApplication>

int main(int argc, char* argv[]) {
    QApplication app(argc, argv);
    QApplication::setApplicationName("Harbex Clipboard");
    QApplication::setDesktopFileName("app.harbexapps.clip");
    return 0;
}
