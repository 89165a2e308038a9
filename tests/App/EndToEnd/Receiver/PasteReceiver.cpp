// Another application for the end-to-end tests: one text field that takes whatever is typed or
// pasted into it and writes its whole text to the file named on the command line after every
// change, so the test can see what really arrived through the X clipboard.
//
//   PasteReceiver <output file> [--terminal]
//
// With --terminal (start it with `-name xterm` too, so its WM_CLASS says so) it keys like a
// terminal emulator: Ctrl+Shift+V pastes and Ctrl+V puts a literal "^V" in the field.

#include <QApplication>
#include <QKeyEvent>
#include <QLineEdit>
#include <QSaveFile>
#include <QVBoxLayout>
#include <QWidget>

namespace {

class TerminalKeys final : public QObject {
public:
    explicit TerminalKeys(QLineEdit* field) : QObject(field), field_(field) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride)
            return QObject::eventFilter(watched, event);
        auto* key = static_cast<QKeyEvent*>(event);
        const auto modifiers = key->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier);
        if (key->key() != Qt::Key_V || !(modifiers & Qt::ControlModifier))
            return QObject::eventFilter(watched, event);
        if (event->type() == QEvent::ShortcutOverride) {
            event->accept();
            return true;
        }
        if (modifiers & Qt::ShiftModifier) {
            field_->paste();
        } else {
            field_->insert("^V");
        }
        return true;
    }

private:
    QLineEdit* field_;
};

}  // namespace

int main(int argc, char* argv[]) {
    QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    if (arguments.size() < 2) return 2;
    const QString output = arguments.at(1);
    const bool terminal = arguments.contains("--terminal");

    QWidget window;
    window.setWindowTitle("Paste Receiver");
    auto* field = new QLineEdit(&window);
    if (terminal) field->installEventFilter(new TerminalKeys(field));
    auto* layout = new QVBoxLayout(&window);
    layout->addWidget(field);
    // The file is replaced whole, so a reader never sees half of a change.
    auto report = [output](const QString& text) {
        QSaveFile file(output);
        if (!file.open(QIODevice::WriteOnly)) return;
        file.write(text.toUtf8());
        file.commit();
    };
    QObject::connect(field, &QLineEdit::textChanged, field, report);
    window.resize(320, 80);
    window.move(40, 40);
    window.show();
    window.activateWindow();
    field->setFocus();
    report(QString());
    return application.exec();
}
