#pragma once

#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QPropertyAnimation>
#include <QStackedWidget>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

#include "HarbexClip/Views/ClipPanelActionDelegate.hpp"
#include "HarbexClip/Views/ClipPanelActionListModel.hpp"
#include "HarbexClip/Views/ClipPanelFilterBar.hpp"
#include "HarbexClip/Views/ClipPanelImages.hpp"
#include "HarbexClip/Views/ClipPanelListModel.hpp"
#include "HarbexClip/Views/ClipPanelPalette.hpp"
#include "HarbexClip/Views/ClipPanelPreviewPane.hpp"
#include "HarbexClip/Views/ClipPanelRowDelegate.hpp"
#include "HarbexClip/Views/ClipPanelServices.hpp"
#include "HarbexClip/Views/ProblemBanner.hpp"
#include "HarbexClipCore/Panel/ClipKeyPress.hpp"
#include "HarbexClipCore/Panel/ClipPanelFocus.hpp"
#include "HarbexClipCore/Panel/ClipPanelModel.hpp"
#include "HarbexClipCore/Panel/ClipPanelPlacement.hpp"

class QGraphicsOpacityEffect;

namespace harbex {

// The quick panel: a frameless window with the search field "Search your clipboard", the filter
// tabs, the grouped rows (one list view and one painting delegate, however long the history),
// the preview pane, the actions list of actions mode, the pause banner, the fading notice and
// the key hints. It renders ClipPanelModel and forwards every key through ClipPanelKeyRouter and
// every click to the model; it decides nothing itself. Main thread.
class ClipPanel final : public QWidget {
    Q_OBJECT

public:
    // `model`, `focus` and `settings` are observed and must outlive the panel.
    ClipPanel(ClipPanelModel& model, ClipPanelFocus& focus, std::function<ClipSettings()> settings,
              ClipPanelServices services = {}, QWidget* parent = nullptr);
    ~ClipPanel() override;

    // Remembers the front application, opens the model, places the window as the `position`
    // and `size` settings say, and shows it.
    void present();
    void dismiss(ClipPanelFocus::Close reason);

    // The parts tests reach for.
    QLineEdit* searchField() const { return search_; }
    QListView* list() const { return list_; }
    ClipPanelListModel* rows() const { return rows_; }
    QListView* actionList() const { return actionList_; }
    ClipPanelActionListModel* actionRows() const { return actionRows_; }
    ClipPanelFilterBar* filterBar() const { return filters_; }
    ClipPanelPreviewPane* previewPane() const { return preview_; }
    QLabel* noticeLabel() const { return notice_; }
    QLabel* bannerLabel() const { return banner_; }
    // The engine's problem at the top; absent when the services bring no problem to watch.
    ProblemBanner* problemBanner() const { return problem_; }
    QLabel* emptyLabel() const { return empty_; }
    QLabel* hintsLabel() const { return hints_; }
    const ClipPanelPalette& colours() const { return palette_; }
    ClipPanelImages& images() { return images_; }
    // Whether the enlarged preview (Space, ⌘Y) is showing.
    bool isQuickLookOpen() const { return quickLookOpen_; }

signals:
    void settingsRequested();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void redraw();
    void renderNotice();
    void applyAppearance();
    void carryOut(ClipPanelModel::Effect effect);
    bool routeKey(QKeyEvent* key);
    void rememberPlace();
    void hideAndRemember();
    void openLink();
    void revealFile();
    void saveImage();
    void setQuickLook(bool open);
    ClipSettings settings() const { return settings_(); }

    ClipPanelModel& model_;
    ClipPanelFocus& focus_;
    std::function<ClipSettings()> settings_;
    ClipPanelServices services_;
    ClipPanelImages images_;
    ClipPanelPalette palette_;
    std::optional<ClipAppearance> appearance_;

    ProblemBanner* problem_ = nullptr;
    QLineEdit* search_;
    QLabel* target_;
    ClipPanelFilterBar* filters_;
    QLabel* banner_;
    QStackedWidget* body_;
    QListView* list_;
    ClipPanelListModel* rows_;
    ClipPanelRowDelegate* rowDelegate_;
    QListView* actionList_;
    ClipPanelActionListModel* actionRows_;
    ClipPanelActionDelegate* actionDelegate_;
    QLabel* empty_;
    QWidget* divider_;
    ClipPanelPreviewPane* preview_;
    QLabel* notice_;
    QGraphicsOpacityEffect* noticeOpacity_;
    QPropertyAnimation* noticeFade_;
    std::optional<std::uint64_t> noticeShown_;  // the model's notice number on screen
    QLabel* hints_;
    QList<QWidget*> separators_;

    bool composing_ = false;
    bool quickLookOpen_ = false;
    std::optional<ClipPanelPoint> lastOrigin_;
    std::optional<QPoint> dragFrom_;
    Subscription revisionWatch_;
};

}  // namespace harbex
