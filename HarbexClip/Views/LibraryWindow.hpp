#pragma once

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMainWindow>
#include <QPlainTextEdit>
#include <QPointer>
#include <QProgressDialog>
#include <QPushButton>
#include <QStackedWidget>
#include <QThread>
#include <QToolButton>

#include <atomic>
#include <functional>
#include <memory>
#include <vector>

#include "HarbexClip/Views/LibraryAppIcons.hpp"
#include "HarbexClip/Views/LibraryThumbnails.hpp"
#include "HarbexClip/Views/ProblemBanner.hpp"
#include "HarbexClipCore/Library/ClipLibraryViewModel.hpp"
#include "HarbexClipCore/Settings/ClipDefaults.hpp"
#include "HarbexClipCore/Settings/ClipSettingsChoices.hpp"

namespace harbex {

class LibraryItemDelegate;
class LibraryListModel;
class LibrarySidebar;

// What the library window needs from outside the library model.
struct LibraryWindowServices {
    ClipLibraryEngine& engine;
    NowFunction now;
    Calendar calendar;
    // Supplies the stored bytes of a copy's image for an export; nothing when it is gone.
    // Called on the export's worker thread.
    ClipImageReader readImage = [](const ClipImageInfo&) { return std::optional<Bytes>{}; };
    // Keeps an imported copy's image beside the history; false when it could not be written.
    std::function<bool(const ClipExportImage&)> storeImage = [](const ClipExportImage&) {
        return false;
    };
    // Asks which copies to clear and clears them; the menu item is left out when absent.
    std::function<void()> clearHistory;
    // The stored thumbnail of an image copy, for rows and tiles; called on a worker thread.
    ThumbnailReader readThumbnail = {};
    // The desktop entry of an application id, for its icon.
    LibraryAppIcons::Lookup desktopEntry = {};
    // Where the window remembers the section it showed; nothing is remembered without it.
    ClipDefaults* defaults = nullptr;
};

// The library window: sections with their counts and the pinboards, the copies of the chosen
// section as a list or a grid, and the chosen copy's detail pane. It renders
// ClipLibraryViewModel and forwards clicks and keys to it; it decides nothing itself. Export
// and import run on a worker thread behind a progress dialog that can stop them. Main thread.
class LibraryWindow final : public QMainWindow {
    Q_OBJECT

public:
    // The defaults key under which the shown section is kept.
    static constexpr std::string_view kSectionKey = "harbex-clip-library:section";

    explicit LibraryWindow(LibraryWindowServices services, QWidget* parent = nullptr);
    ~LibraryWindow() override;

    ClipLibraryViewModel& model() { return *model_; }

    // The application that was in front when the window came forward: Return and a double
    // click paste into it.
    void setPasteTarget(std::optional<ClipTargetApp> target);

    // The parts tests reach for.
    LibrarySidebar* sidebar() const { return sidebar_; }
    QListView* list() const { return list_; }
    LibraryListModel* listModel() const { return listModel_; }
    LibraryItemDelegate* delegate() const { return delegate_; }
    QLineEdit* searchField() const { return search_; }
    QComboBox* sortChoice() const { return sort_; }
    QToolButton* listButton() const { return listButton_; }
    QToolButton* gridButton() const { return gridButton_; }
    QLabel* detailTitle() const { return title_; }
    QLabel* detailLines() const { return lines_; }
    QPlainTextEdit* editor() const { return editor_; }
    QPushButton* saveButton() const { return save_; }
    QPushButton* revertButton() const { return revert_; }
    QPushButton* pasteButton() const { return paste_; }
    QPushButton* pinButton() const { return pin_; }
    QPushButton* deleteButton() const { return delete_; }
    QPushButton* boardButton() const { return board_; }
    QPushButton* unboardButton() const { return unboard_; }
    QLabel* noticeLabel() const { return notice_; }
    ProblemBanner* problemLabel() const { return problem_; }
    QLabel* emptyLabel() const { return empty_; }
    QLabel* messageLabel() const { return message_; }
    LibraryThumbnails& thumbnails() { return *thumbnails_; }

    // Selects the sidebar row of `section`; false when the sidebar has none.
    bool showSection(const ClipLibrarySection& section);
    // Selects the copy with `id` in the list; false when it is not listed.
    bool selectCopy(const Uuid& id);
    // The context menu of the selected copy (built afresh; the caller owns it).
    std::unique_ptr<QMenu> copyMenu();
    // The context menu of a pinboard's sidebar row.
    std::unique_ptr<QMenu> boardMenu(const Uuid& board);
    // Adds a board and starts editing its name in the sidebar.
    void newPinboard();

    // Writes the export file to `path` / reads and merges the one at `path` on a worker
    // thread; `transferFinished` brings the sentence shown afterwards. One at a time: false
    // while another runs.
    bool startExport(const QString& path);
    bool startImport(const QString& path);
    bool isTransferring() const { return transfer_ != nullptr; }
    QProgressDialog* progressDialog() const { return progress_; }

signals:
    // How far the export or import has come, 0 to 1000.
    void transferProgress(int permille);
    void transferFinished(const QString& message);

private:
    void buildMenus();
    QWidget* buildSidebar();
    QWidget* buildMiddle();
    QWidget* buildDetail();
    void applyAppearance();
    void render();
    void renderSidebar();
    void renderList();
    void renderDetail();
    void sidebarChanged();
    void listChanged();
    void pasteSelected();
    void showListMenu(const QPoint& at);
    void showBoardMenu(const QPoint& at);
    void fillBoardMenu(QMenu& menu);
    void chooseExport();
    void chooseImport();
    void showMessage(const QString& text);
    // Work for a worker thread: it is told how to report progress and returns what the main
    // thread does afterwards, which gives the sentence to show.
    using TransferWork = std::function<std::function<QString()>(const ClipProgress&)>;
    bool runTransfer(const QString& label, TransferWork work);
    void transferMoved(double fraction);
    void endTransfer();
    void restoreSection();

    LibraryWindowServices services_;
    std::unique_ptr<ClipLibraryViewModel> model_;
    std::unique_ptr<LibraryAppIcons> appIcons_;
    std::vector<ClipLibrarySection> sections_;  // one per sidebar row
    QStringList sidebarKey_;                    // what the sidebar shows, to skip rebuilding it
    Subscription revisionWatch_;
    Subscription settingsWatch_;
    bool rendering_ = false;
    std::optional<ClipAppearance> appearance_;

    QPointer<QProgressDialog> progress_;
    QThread* transfer_ = nullptr;
    std::shared_ptr<std::atomic<bool>> stopTransfer_;

    LibraryThumbnails* thumbnails_ = nullptr;
    ProblemBanner* problem_ = nullptr;
    QLabel* message_ = nullptr;
    LibrarySidebar* sidebar_ = nullptr;
    QLineEdit* search_ = nullptr;
    QComboBox* sort_ = nullptr;
    QToolButton* listButton_ = nullptr;
    QToolButton* gridButton_ = nullptr;
    QStackedWidget* listStack_ = nullptr;
    QListView* list_ = nullptr;
    LibraryListModel* listModel_ = nullptr;
    LibraryItemDelegate* delegate_ = nullptr;
    QLabel* empty_ = nullptr;
    QStackedWidget* detailStack_ = nullptr;
    QLabel* title_ = nullptr;
    QLabel* lines_ = nullptr;
    QLabel* preview_ = nullptr;
    QPlainTextEdit* editor_ = nullptr;
    QPushButton* save_ = nullptr;
    QPushButton* revert_ = nullptr;
    QPushButton* paste_ = nullptr;
    QPushButton* copy_ = nullptr;
    QPushButton* pin_ = nullptr;
    QPushButton* delete_ = nullptr;
    QPushButton* board_ = nullptr;    // "Add to Pinboard" with a menu of the boards
    QPushButton* unboard_ = nullptr;  // takes the copy off the pinboard being shown
    QLabel* notice_ = nullptr;
    QLabel* noSelection_ = nullptr;
};

}  // namespace harbex
