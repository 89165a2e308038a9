#pragma once

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QPushButton>

#include <functional>
#include <memory>
#include <vector>

#include "HarbexClipCore/Library/ClipLibraryViewModel.hpp"
#include "HarbexClipCore/Settings/ClipSettingsChoices.hpp"

namespace harbex {

// What the library window needs from outside the library model.
struct LibraryWindowServices {
    ClipLibraryEngine& engine;
    NowFunction now;
    Calendar calendar;
    // Supplies the stored bytes of a copy's image for an export; nothing when it is gone.
    ClipImageReader readImage = [](const ClipImageInfo&) { return std::optional<Bytes>{}; };
    // Keeps an imported copy's image beside the history; false when it could not be written.
    std::function<bool(const ClipExportImage&)> storeImage = [](const ClipExportImage&) {
        return false;
    };
    // Asks which copies to clear and clears them; the menu item is left out when absent.
    std::function<void()> clearHistory;
};

// The library window: sections with their counts, the copies of the chosen section under their
// day headings, and the chosen copy's detail pane. It renders ClipLibraryViewModel and forwards
// clicks and keys to it; it decides nothing itself. Main thread.
class LibraryWindow final : public QMainWindow {
    Q_OBJECT

public:
    explicit LibraryWindow(LibraryWindowServices services, QWidget* parent = nullptr);
    ~LibraryWindow() override;

    ClipLibraryViewModel& model() { return *model_; }

    // The parts tests reach for.
    QListWidget* sidebar() const { return sidebar_; }
    QListWidget* list() const { return list_; }
    QLineEdit* searchField() const { return search_; }
    QComboBox* sortChoice() const { return sort_; }
    QLabel* detailTitle() const { return title_; }
    QLabel* detailLines() const { return lines_; }
    QPlainTextEdit* editor() const { return editor_; }
    QPushButton* saveButton() const { return save_; }
    QPushButton* revertButton() const { return revert_; }
    QPushButton* pinButton() const { return pin_; }
    QPushButton* deleteButton() const { return delete_; }
    QPushButton* unboardButton() const { return unboard_; }
    QLabel* noticeLabel() const { return notice_; }
    QLabel* problemLabel() const { return problem_; }
    QLabel* emptyLabel() const { return empty_; }

    // Selects the sidebar row of `section`; false when the sidebar has none.
    bool showSection(const ClipLibrarySection& section);
    // Writes the export file to `path`; the sentence shown afterwards.
    QString exportTo(const QString& path);
    // Reads and merges the export file at `path`; the sentence shown afterwards.
    QString importFrom(const QString& path);

private:
    void buildMenus();
    QWidget* buildDetail();
    void render();
    void renderSidebar();
    void renderList();
    void renderDetail();
    void sidebarChanged();
    void listChanged();
    void chooseExport();
    void chooseImport();
    void showMessage(const QString& text);

    LibraryWindowServices services_;
    std::unique_ptr<ClipLibraryViewModel> model_;
    ClipLibrarySort sortOrder_ = ClipLibrarySort::newest;
    std::vector<ClipLibrarySection> sections_;  // one per sidebar row
    Subscription revisionWatch_;
    Subscription problemWatch_;
    bool rendering_ = false;

    QLabel* problem_ = nullptr;
    QLabel* message_ = nullptr;
    QListWidget* sidebar_ = nullptr;
    QLineEdit* search_ = nullptr;
    QComboBox* sort_ = nullptr;
    QListWidget* list_ = nullptr;
    QLabel* title_ = nullptr;
    QLabel* lines_ = nullptr;
    QLabel* empty_ = nullptr;
    QPlainTextEdit* editor_ = nullptr;
    QPushButton* save_ = nullptr;
    QPushButton* revert_ = nullptr;
    QPushButton* copy_ = nullptr;
    QPushButton* pin_ = nullptr;
    QPushButton* delete_ = nullptr;
    QPushButton* unboard_ = nullptr;  // takes the copy off the pinboard being shown
    QLabel* notice_ = nullptr;
    QWidget* detail_ = nullptr;
};

}  // namespace harbex
