#include "HarbexClip/Views/ClipPanel.hpp"

#include <QApplication>
#include <QCursor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGraphicsOpacityEffect>
#include <QHBoxLayout>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QUrl>
#include <QVBoxLayout>

#include "HarbexClip/Views/ClipPanelGlyphs.hpp"
#include "HarbexClip/Views/QtKeyMapping.hpp"
#include "HarbexClipCore/Panel/ClipPanelKeyRouter.hpp"
#include "HarbexClipCore/Panel/ClipPanelRow.hpp"
#include "HarbexClipCore/Panel/ClipPanelText.hpp"

namespace harbex {

namespace {

constexpr int kFadeMilliseconds = 220;
// Rows are laid out in batches so that a long history shows its first screen at once.
constexpr int kLayoutBatch = 120;

QString qs(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QWidget* hairline(QWidget* parent, Qt::Orientation orientation) {
    auto* line = new QWidget(parent);
    if (orientation == Qt::Horizontal) {
        line->setFixedHeight(1);
    } else {
        line->setFixedWidth(1);
    }
    line->setAutoFillBackground(true);
    return line;
}

// Thin, rounded scroll bars without arrows, in the palette's secondary colour.
QString scrollBarStyle(const ClipPanelPalette& palette) {
    QColor handle = palette.secondaryText;
    handle.setAlphaF(0.45);
    return QString(
               "QScrollBar:vertical { background: transparent; width: 10px; margin: 2px; }"
               "QScrollBar::handle:vertical { background: %1; border-radius: 3px;"
               " min-height: 28px; margin: 0 1px; }"
               "QScrollBar::add-line, QScrollBar::sub-line { height: 0; width: 0; }"
               "QScrollBar::add-page, QScrollBar::sub-page { background: transparent; }")
        .arg(handle.name(QColor::HexArgb));
}

QListView* listView(QWidget* parent) {
    auto* view = new QListView(parent);
    view->setFocusPolicy(Qt::NoFocus);
    view->setFrameShape(QFrame::NoFrame);
    view->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    view->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    view->setSelectionMode(QAbstractItemView::NoSelection);
    view->setMouseTracking(true);
    view->setAttribute(Qt::WA_Hover);
    view->viewport()->setAutoFillBackground(false);
    return view;
}

std::vector<ClipPanelFrame> screenAreas() {
    std::vector<ClipPanelFrame> areas;
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QRect a = screen->availableGeometry();
        areas.push_back({a.x(), a.y(), a.width(), a.height()});
    }
    if (areas.empty()) areas.push_back({0, 0, 1280, 800});
    return areas;
}

}  // namespace

ClipPanel::ClipPanel(ClipPanelModel& model, ClipPanelFocus& focus,
                     std::function<ClipSettings()> settings, ClipPanelServices services,
                     QWidget* parent)
    : QWidget(parent, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      model_(model),
      focus_(focus),
      settings_(std::move(settings)),
      services_(services),
      images_(std::move(services)) {
    setObjectName("clipPanel");
    setWindowTitle(tr("Harbex Clipboard"));
    setAttribute(Qt::WA_InputMethodEnabled);

    // The search row: a magnifier painted by the panel, the field, and where pastes go.
    search_ = new QLineEdit(this);
    search_->setPlaceholderText(qs(ClipPanelText::kSearchPlaceholder));
    search_->setFrame(false);
    search_->installEventFilter(this);
    search_->setAttribute(Qt::WA_MacShowFocusRect, false);
    QFont big = search_->font();
    big.setPixelSize(19);
    search_->setFont(big);
    search_->setMinimumHeight(34);
    search_->setTextMargins(30, 0, 0, 0);
    target_ = new QLabel(this);
    QFont small = font();
    small.setPixelSize(11);
    target_->setFont(small);

    filters_ = new ClipPanelFilterBar(this);
    banner_ = new QLabel(this);
    banner_->setWordWrap(true);
    banner_->setContentsMargins(10, 6, 10, 6);
    banner_->setFont(small);

    list_ = listView(this);
    list_->setLayoutMode(QListView::Batched);
    list_->setBatchSize(kLayoutBatch);
    rows_ = new ClipPanelListModel(model_, this);
    rowDelegate_ = new ClipPanelRowDelegate(images_, this);
    list_->setModel(rows_);
    list_->setItemDelegate(rowDelegate_);

    actionList_ = listView(this);
    actionRows_ = new ClipPanelActionListModel(model_, this);
    actionDelegate_ = new ClipPanelActionDelegate(this);
    actionList_->setModel(actionRows_);
    actionList_->setItemDelegate(actionDelegate_);

    empty_ = new QLabel(this);
    empty_->setWordWrap(true);
    empty_->setAlignment(Qt::AlignCenter);
    empty_->setTextFormat(Qt::RichText);
    empty_->setContentsMargins(40, 0, 40, 20);

    body_ = new QStackedWidget(this);
    body_->addWidget(list_);
    body_->addWidget(actionList_);
    body_->addWidget(empty_);
    preview_ = new ClipPanelPreviewPane(images_, this);
    divider_ = hairline(this, Qt::Vertical);
    separators_ << divider_;

    notice_ = new QLabel(this);
    notice_->setFont(small);
    notice_->setContentsMargins(10, 3, 10, 3);
    noticeOpacity_ = new QGraphicsOpacityEffect(notice_);
    notice_->setGraphicsEffect(noticeOpacity_);
    noticeFade_ = new QPropertyAnimation(noticeOpacity_, "opacity", this);
    noticeFade_->setDuration(kFadeMilliseconds);
    connect(noticeFade_, &QPropertyAnimation::finished, this, [this] {
        if (noticeOpacity_->opacity() < 0.01) notice_->hide();
    });
    notice_->hide();
    hints_ = new QLabel(this);
    hints_->setFont(small);
    hints_->setTextFormat(Qt::RichText);

    auto* searchRow = new QHBoxLayout;
    searchRow->setContentsMargins(14, 10, 14, 4);
    searchRow->addWidget(search_, 1);
    searchRow->addWidget(target_);
    auto* filterRow = new QHBoxLayout;
    filterRow->setContentsMargins(12, 2, 12, 6);
    filterRow->addWidget(filters_, 1);
    auto* bodyRow = new QHBoxLayout;
    bodyRow->setContentsMargins(0, 0, 0, 0);
    bodyRow->setSpacing(0);
    bodyRow->addWidget(body_, 11);
    bodyRow->addWidget(divider_);
    bodyRow->addWidget(preview_, 9);
    auto* footer = new QHBoxLayout;
    footer->setContentsMargins(12, 6, 14, 7);
    footer->addWidget(notice_);
    footer->addStretch(1);
    footer->addWidget(hints_);
    auto* topLine = hairline(this, Qt::Horizontal);
    auto* bottomLine = hairline(this, Qt::Horizontal);
    separators_ << topLine << bottomLine;

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(1, 1, 1, 1);
    layout->setSpacing(0);
    if (services_.problem) {
        problem_ = new ProblemBanner(*services_.problem, ProblemBanner::Shape::rounded, this);
        problem_->setFont(small);
        layout->addWidget(problem_);
    }
    layout->addLayout(searchRow);
    layout->addLayout(filterRow);
    auto* bannerRow = new QHBoxLayout;
    bannerRow->setContentsMargins(12, 0, 12, 6);
    bannerRow->addWidget(banner_);
    layout->addLayout(bannerRow);
    layout->addWidget(topLine);
    layout->addLayout(bodyRow, 1);
    layout->addWidget(bottomLine);
    layout->addLayout(footer);

    connect(search_, &QLineEdit::textEdited, this, [this](const QString& text) {
        if (model_.mode() == ClipPanelMode::actions) {
            model_.setActionQuery(text.toStdString());
        } else {
            model_.setQuery(text.toStdString());
        }
    });
    connect(list_, &QListView::pressed, this, [this](const QModelIndex& index) {
        if (index.data(ClipPanelListModel::isHeaderRole).toBool()) return;
        const auto id =
            Uuid::parse(index.data(ClipPanelListModel::idRole).toString().toStdString());
        if (!id) return;
        model_.select(*id);
        if (QGuiApplication::keyboardModifiers() & Qt::ControlModifier) {
            carryOut(model_.handle(ClipPanelKey{ClipPanelKey::Kind::commandClick}));
        }
    });
    connect(list_, &QListView::doubleClicked, this, [this](const QModelIndex& index) {
        if (index.data(ClipPanelListModel::isHeaderRole).toBool()) return;
        carryOut(model_.handle(ClipPanelKey{ClipPanelKey::Kind::returnKey}));
    });
    connect(actionList_, &QListView::clicked, this, [this](const QModelIndex& index) {
        const std::string id =
            index.data(ClipPanelActionListModel::idRole).toString().toStdString();
        for (const ClipPanelAction& action : model_.actions()) {
            if (action.id() == id) {
                carryOut(model_.perform(action));
                return;
            }
        }
    });
    connect(filters_, &ClipPanelFilterBar::tabClicked, this, [this](int index) {
        if (model_.mode() == ClipPanelMode::actions) {
            constexpr auto kCategories = allCases<ClipActionCategory>();
            if (index >= 0 && index < int(kCategories.size())) {
                model_.setActionCategory(kCategories[static_cast<std::size_t>(index)]);
            }
        } else {
            constexpr auto kFilters = allCases<ClipFilter>();
            if (index >= 0 && index < int(kFilters.size())) {
                model_.setFilter(kFilters[static_cast<std::size_t>(index)]);
            }
        }
        search_->setFocus();
    });
    revisionWatch_ = model_.revision().subscribe([this](std::uint64_t) { redraw(); });
    applyAppearance();
    redraw();
}

ClipPanel::~ClipPanel() = default;

void ClipPanel::present() {
    const ClipSettings current = settings();
    applyAppearance();
    rowDelegate_->setAppIcons(current.panel.showsAppIcons ? ClipPanelRowDelegate::AppIcons::shown
                                                          : ClipPanelRowDelegate::AppIcons::hidden);
    if (!lastOrigin_ && services_.defaults) {
        lastOrigin_ = ClipPanelPlacement::lastOrigin(*services_.defaults);
    }
    const QPoint pointer = QCursor::pos();
    const std::vector<ClipPanelFrame> screens = screenAreas();
    const ClipPanelFrame frame = ClipPanelPlacement::place(
        current.panel.position, ClipPanelPlacement::size(current.panel.size),
        {pointer.x(), pointer.y()}, screens, lastOrigin_);
    if (QGuiApplication::platformName() == "wayland") {
        // A Wayland window cannot place itself; a fixed size is what tiling compositors (sway,
        // Hyprland) take as a dialog to float over the windows rather than tile among them.
        setFixedSize(frame.width, frame.height);
    } else {
        setGeometry(frame.x, frame.y, frame.width, frame.height);
    }
    quickLookOpen_ = false;
    model_.open(focus_.open());
    search_->setText(QString::fromStdString(model_.query()));
    redraw();
    show();
    raise();
    activateWindow();
    search_->setFocus();
}

void ClipPanel::rememberPlace() {
    lastOrigin_ = ClipPanelPoint{x(), y()};
    if (services_.defaults) ClipPanelPlacement::rememberOrigin(*services_.defaults, *lastOrigin_);
}

void ClipPanel::hideAndRemember() {
    rememberPlace();
    hide();
}

void ClipPanel::dismiss(ClipPanelFocus::Close reason) {
    if (!isVisible()) return;
    hideAndRemember();
    focus_.close(reason);
}

bool ClipPanel::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate && isVisible() && !focus_.handedBackForPaste())
        dismiss(ClipPanelFocus::Close::clickedOutside);
    return QWidget::event(event);
}

void ClipPanel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.fillRect(rect(), palette_.background);
    // A hairline frame: a frameless window still needs an edge against a window of the same
    // colour below it.
    painter.setPen(palette_.isDark ? QColor(255, 255, 255, 40) : QColor(0, 0, 0, 50));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
    const QRect field = search_->geometry();
    panelglyph::magnifier(painter, QRectF(field.left() + 2, field.center().y() - 10, 20, 20),
                          palette_.secondaryText);
}

void ClipPanel::mousePressEvent(QMouseEvent* event) {
    // The panel has no title bar: its empty areas move it.
    if (event->button() == Qt::LeftButton) {
        dragFrom_ = event->globalPosition().toPoint() - frameGeometry().topLeft();
    }
}

void ClipPanel::mouseMoveEvent(QMouseEvent* event) {
    if (dragFrom_ && (event->buttons() & Qt::LeftButton)) {
        move(event->globalPosition().toPoint() - *dragFrom_);
    }
}

bool ClipPanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched != search_) return QWidget::eventFilter(watched, event);
    if (event->type() == QEvent::InputMethod) {
        composing_ = !static_cast<QInputMethodEvent*>(event)->preeditString().isEmpty();
        return false;
    }
    if (event->type() == QEvent::KeyPress) return routeKey(static_cast<QKeyEvent*>(event));
    return QWidget::eventFilter(watched, event);
}

bool ClipPanel::routeKey(QKeyEvent* key) {
    const ClipKeyPress press = keyPressFor(key->key(), key->modifiers(), key->text());
    const ClipPanelKeyRoute route = ClipPanelKeyRouter::route(
        press, {model_.mode(), search_->text().isEmpty(), composing_, quickLookOpen_});
    switch (route.kind) {
        case ClipPanelKeyRoute::Kind::panel: carryOut(model_.handle(*route.key)); return true;
        case ClipPanelKeyRoute::Kind::field: return false;
        case ClipPanelKeyRoute::Kind::edit: return false;
        case ClipPanelKeyRoute::Kind::closeQuickLook: setQuickLook(false); return true;
        case ClipPanelKeyRoute::Kind::close: dismiss(ClipPanelFocus::Close::dismissed); return true;
        case ClipPanelKeyRoute::Kind::settings:
            dismiss(ClipPanelFocus::Close::handedOff);
            emit settingsRequested();
            return true;
        case ClipPanelKeyRoute::Kind::swallow: return true;
    }
    return true;
}

void ClipPanel::setQuickLook(bool open) {
    if (quickLookOpen_ == open) return;
    quickLookOpen_ = open;
    redraw();
}

void ClipPanel::carryOut(ClipPanelModel::Effect effect) {
    using Effect = ClipPanelModel::Effect;
    switch (effect) {
        case Effect::pasted:
            if (settings().closesAfterPasting) {
                hideAndRemember();
                focus_.close(ClipPanelFocus::Close::lostFront);
            } else {
                focus_.reclaimAfterPaste();
            }
            break;
        case Effect::close: dismiss(ClipPanelFocus::Close::dismissed); break;
        case Effect::quickLook: setQuickLook(!quickLookOpen_); break;
        case Effect::open: openLink(); break;
        case Effect::reveal: revealFile(); break;
        case Effect::saveImage: saveImage(); break;
        case Effect::none:
        case Effect::copied: break;
    }
    redraw();
}

void ClipPanel::openLink() {
    const ClipItem* item = model_.selectedItem();
    if (!item || !item->text) return;
    dismiss(ClipPanelFocus::Close::handedOff);
    QDesktopServices::openUrl(QUrl(QString::fromStdString(*item->text)));
}

void ClipPanel::revealFile() {
    const ClipItem* item = model_.selectedItem();
    if (!item || !item->filePaths || item->filePaths->empty()) return;
    const QString path = QString::fromStdString(item->filePaths->front());
    dismiss(ClipPanelFocus::Close::handedOff);
    // The file manager's own "show this file" when it offers one; else its folder.
    QDBusMessage call = QDBusMessage::createMethodCall("org.freedesktop.FileManager1",
                                                       "/org/freedesktop/FileManager1",
                                                       "org.freedesktop.FileManager1", "ShowItems");
    call << QStringList{QUrl::fromLocalFile(path).toString()} << QString();
    const QDBusMessage reply = QDBusConnection::sessionBus().call(call, QDBus::Block, 2000);
    if (reply.type() != QDBusMessage::ReplyMessage) {
        QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(path).path()));
    }
}

void ClipPanel::saveImage() {
    const ClipItem* item = model_.selectedItem();
    if (!item || !item->image || !services_.readImage) return;
    const std::string digest = item->image->digest;
    const auto bytes = services_.readImage(digest);
    if (!bytes) return;
    const QString suffix = item->image->type.find("png") != std::string::npos    ? "png"
                           : item->image->type.find("jpeg") != std::string::npos ? "jpg"
                           : item->image->type.find("tiff") != std::string::npos ? "tiff"
                                                                                 : "png";
    dismiss(ClipPanelFocus::Close::handedOff);
    const QString name = QFileDialog::getSaveFileName(
        nullptr, tr("Save Image"),
        QDir::home().filePath(QString::fromStdString(item->title()) + "." + suffix));
    if (name.isEmpty()) return;
    QFile file(name);
    if (file.open(QIODevice::WriteOnly)) {
        file.write(reinterpret_cast<const char*>(bytes->data()), qint64(bytes->size()));
    }
}

void ClipPanel::applyAppearance() {
    const ClipAppearance appearance = settings().window.appearance;
    if (appearance_ == appearance) return;
    appearance_ = appearance;
    palette_ = ClipPanelPalette::make(appearance, QApplication::palette());
    setPalette(palette_.qtPalette());
    filters_->setPalette(palette_);
    rowDelegate_->setPalette(palette_);
    actionDelegate_->setPalette(palette_);
    preview_->setPalette(palette_);
    for (QWidget* line : separators_) {
        QPalette p = line->palette();
        p.setColor(QPalette::Window, palette_.separator);
        line->setPalette(p);
    }
    // The field sits on the panel's own background, which carries the magnifier.
    QPalette field = palette_.qtPalette();
    field.setColor(QPalette::Base, Qt::transparent);
    search_->setPalette(field);
    const QString bars = scrollBarStyle(palette_);
    list_->setStyleSheet(bars);
    actionList_->setStyleSheet(bars);
    preview_->setStyleSheet(bars);
    QPalette soft = palette_.qtPalette();
    soft.setColor(QPalette::WindowText, palette_.secondaryText);
    target_->setPalette(soft);
    hints_->setPalette(soft);
    empty_->setPalette(soft);
    if (problem_) {
        problem_->setShade(palette_.isDark ? ProblemBanner::Shade::dark
                                           : ProblemBanner::Shade::light);
    }
    banner_->setStyleSheet(QString("background:%1; color:%2; border-radius:6px;")
                               .arg(palette_.banner.name(QColor::HexArgb), palette_.text.name()));
    notice_->setStyleSheet(
        QString("background:%1; color:#ffffff; border-radius:9px;").arg(palette_.notice.name()));
    update();
}

void ClipPanel::redraw() {
    applyAppearance();
    const bool actions = model_.mode() == ClipPanelMode::actions;

    // The field shows what the mode searches.
    const QString fieldText =
        QString::fromStdString(actions ? model_.actionQuery() : model_.query());
    if (search_->text() != fieldText) search_->setText(fieldText);
    search_->setPlaceholderText(actions ? tr("Search actions")
                                        : qs(ClipPanelText::kSearchPlaceholder));
    const auto& target = model_.target();
    target_->setText(target && target->name && !actions
                         ? tr("Pastes into %1").arg(QString::fromStdString(*target->name))
                         : QString());

    QStringList tabs;
    int current = 0;
    if (actions) {
        for (const ClipActionCategory category : allCases<ClipActionCategory>()) {
            if (category == model_.actionCategory()) current = int(tabs.size());
            tabs << (category == ClipActionCategory::all
                         ? tr("All actions")
                         : qs(enumName(category)).left(1).toUpper() +
                               qs(enumName(category)).mid(1));
        }
    } else {
        for (const ClipFilter filter : allCases<ClipFilter>()) {
            if (filter == model_.filter()) current = int(tabs.size());
            tabs << qs(ClipPanelText::filterTitle(filter));
        }
    }
    filters_->setTabs(tabs);
    filters_->setCurrent(current);

    rows_->sync();
    actionRows_->sync();
    if (actions) {
        body_->setCurrentWidget(actionList_);
        if (const int row = actionRows_->selectedRow(); row >= 0) {
            actionList_->scrollTo(actionRows_->index(row));
        }
    } else if (const auto emptyState = model_.emptyState()) {
        body_->setCurrentWidget(empty_);
        QString html;
        if (!emptyState->title.empty()) {
            html += "<p style='font-size:15px; font-weight:600; color:" + palette_.text.name() +
                    "'>" + QString::fromStdString(emptyState->title).toHtmlEscaped() + "</p>";
        }
        html += "<p>" + QString::fromStdString(emptyState->body).toHtmlEscaped() + "</p>";
        empty_->setText(html);
    } else {
        body_->setCurrentWidget(list_);
        if (const int row = rows_->selectedRow(); row >= 0) {
            const QModelIndex index = rows_->index(row);
            // The first copy brings the header above it into view.
            bool first = true;
            for (int above = 0; above < row && first; ++above) {
                first = rows_->index(above).data(ClipPanelListModel::isHeaderRole).toBool();
            }
            if (first) {
                list_->scrollToTop();
            } else {
                list_->scrollTo(index);
            }
        }
    }

    const bool showsPreview = model_.showsPreview() || quickLookOpen_;
    preview_->setVisible(showsPreview);
    divider_->setVisible(showsPreview && !quickLookOpen_);
    body_->setVisible(!quickLookOpen_);
    if (showsPreview) preview_->showPreview(model_.preview());

    const auto banner = model_.pauseBanner();
    banner_->setVisible(banner.has_value());
    if (banner) banner_->setText(QString::fromStdString(*banner));

    QString hintHtml;
    for (const ClipPanelHint& hint : model_.hints()) {
        if (!hintHtml.isEmpty()) hintHtml += "&nbsp;&nbsp;&nbsp;";
        hintHtml += "<span style='color:" + palette_.text.name() + "; font-weight:600'>" +
                    QString::fromStdString(hint.key).toHtmlEscaped() + "</span>&nbsp;" +
                    QString::fromStdString(hint.label).toHtmlEscaped();
    }
    hints_->setText(hintHtml);
    renderNotice();
}

void ClipPanel::renderNotice() {
    const auto& notice = model_.notice();
    if (notice) {
        if (noticeShown_ == model_.noticeNumber()) return;
        noticeShown_ = model_.noticeNumber();
        notice_->setText(QString::fromStdString(*notice));
        noticeFade_->stop();
        const bool wasHidden = !notice_->isVisible() || noticeOpacity_->opacity() < 1;
        notice_->show();
        if (wasHidden) {
            noticeFade_->setStartValue(noticeOpacity_->opacity() < 1 && notice_->isVisible()
                                           ? noticeOpacity_->opacity()
                                           : 0.0);
            noticeFade_->setEndValue(1.0);
            noticeFade_->start();
        }
        return;
    }
    if (!noticeShown_) return;
    // The model took its notice back (its time ran out): fade it away.
    noticeShown_.reset();
    noticeFade_->stop();
    noticeFade_->setStartValue(noticeOpacity_->opacity());
    noticeFade_->setEndValue(0.0);
    noticeFade_->start();
}

}  // namespace harbex
