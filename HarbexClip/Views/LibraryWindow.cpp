#include "HarbexClip/Views/LibraryWindow.hpp"

#include <QApplication>
#include <QButtonGroup>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QScrollBar>
#include <QShortcut>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>
#include <unordered_set>

#include "HarbexClip/Views/LibraryGlyphs.hpp"
#include "HarbexClip/Views/LibraryItemDelegate.hpp"
#include "HarbexClip/Views/LibraryListModel.hpp"
#include "HarbexClip/Views/LibraryPalette.hpp"
#include "HarbexClip/Views/LibrarySidebar.hpp"
#include "HarbexClipCore/Capture/SensitiveDetector.hpp"

namespace harbex {
namespace {

QString qs(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString filterName(ClipFilter filter) {
    switch (filter) {
        case ClipFilter::all: return QObject::tr("All");
        case ClipFilter::pinned: return QObject::tr("Pinned");
        case ClipFilter::text: return QObject::tr("Text");
        case ClipFilter::links: return QObject::tr("Links");
        case ClipFilter::images: return QObject::tr("Images");
        case ClipFilter::files: return QObject::tr("Files");
        case ClipFilter::colours: return QObject::tr("Colours");
        case ClipFilter::code: return QObject::tr("Code");
    }
    return {};
}

ClipKind kindOf(ClipFilter filter) {
    switch (filter) {
        case ClipFilter::links: return ClipKind::link;
        case ClipFilter::images: return ClipKind::image;
        case ClipFilter::files: return ClipKind::file;
        case ClipFilter::colours: return ClipKind::color;
        case ClipFilter::code: return ClipKind::code;
        default: return ClipKind::text;
    }
}

QString colorLabel(std::string_view name) {
    QString text = qs(name);
    if (!text.isEmpty()) text[0] = text[0].toUpper();
    return text;
}

// The list's own keys: Return and Enter paste (the view's handling of them does nothing
// useful); Alt+Up and Alt+Down move the selected copy on the pinboard being shown.
class ListKeyFilter final : public QObject {
public:
    ListKeyFilter(QObject* parent, std::function<void()> onReturn,
                  std::function<bool(ClipLibraryViewModel::Step)> onMove)
        : QObject(parent), onReturn_(std::move(onReturn)), onMove_(std::move(onMove)) {}
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyPress) {
            const auto* key = static_cast<QKeyEvent*>(event);
            const Qt::KeyboardModifiers modifiers = key->modifiers() & ~Qt::KeypadModifier;
            if ((key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) &&
                modifiers == Qt::NoModifier) {
                onReturn_();
                return true;
            }
            if ((key->key() == Qt::Key_Up || key->key() == Qt::Key_Down) &&
                modifiers == Qt::AltModifier) {
                // Taken even at either end, so the selection does not wander off instead.
                (void)onMove_(key->key() == Qt::Key_Up ? ClipLibraryViewModel::Step::up
                                                       : ClipLibraryViewModel::Step::down);
                return true;
            }
        }
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void()> onReturn_;
    std::function<bool(ClipLibraryViewModel::Step)> onMove_;
};

}  // namespace

LibraryWindow::LibraryWindow(LibraryWindowServices services, QWidget* parent)
    : QMainWindow(parent), services_(std::move(services)) {
    setWindowTitle(tr("Harbex Clipboard Library"));
    resize(1080, 660);
    model_ =
        std::make_unique<ClipLibraryViewModel>(services_.engine, services_.now, services_.calendar);
    appIcons_ = std::make_unique<LibraryAppIcons>(services_.desktopEntry);
    thumbnails_ = new LibraryThumbnails(services_.readThumbnail, this);

    auto* central = new QWidget;
    auto* outer = new QVBoxLayout(central);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(0);
    problem_ = new ProblemBanner(services_.engine.problem(), ProblemBanner::Shape::strip);
    outer->addWidget(problem_);
    message_ = new QLabel;
    message_->setWordWrap(true);
    message_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    message_->setContentsMargins(10, 6, 10, 6);
    outer->addWidget(message_);

    auto* splitter = new QSplitter;
    splitter->setChildrenCollapsible(false);
    splitter->setHandleWidth(1);
    splitter->addWidget(buildSidebar());
    splitter->addWidget(buildMiddle());
    splitter->addWidget(buildDetail());
    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 1);
    splitter->setStretchFactor(2, 0);
    splitter->setSizes({210, 520, 350});
    outer->addWidget(splitter, 1);
    setCentralWidget(central);
    buildMenus();

    connect(thumbnails_, &LibraryThumbnails::ready, list_->viewport(),
            qOverload<>(&QWidget::update));
    revisionWatch_ = model_->revision().subscribe([this](std::uint64_t) { render(); });
    settingsWatch_ =
        services_.engine.settings().subscribe([this](const ClipSettings&) { applyAppearance(); });
    applyAppearance();
    render();
    restoreSection();
}

LibraryWindow::~LibraryWindow() {
    revisionWatch_.cancel();
    settingsWatch_.cancel();
    if (transfer_) {
        *stopTransfer_ = true;
        transfer_->wait();
        delete transfer_;
    }
}

void LibraryWindow::setPasteTarget(std::optional<ClipTargetApp> target) {
    model_->setTarget(std::move(target));
}

void LibraryWindow::buildMenus() {
    QMenu* file = menuBar()->addMenu(tr("&File"));
    file->addAction(tr("New Pinboard"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N), this,
                    [this] { newPinboard(); });
    file->addSeparator();
    QAction* exportAction = file->addAction(tr("Export…"), this, [this] { chooseExport(); });
    exportAction->setToolTip(tr("One file with your copies, pins and pinboards."));
    exportAction->setStatusTip(exportAction->toolTip());
    file->addAction(tr("Import…"), this, [this] { chooseImport(); });
    if (services_.clearHistory) {
        file->addSeparator();
        file->addAction(tr("Clear History…"), this, [this] { services_.clearHistory(); });
    }
    file->addSeparator();
    file->addAction(tr("Close"), QKeySequence::Close, this, &QWidget::close);

    QMenu* view = menuBar()->addMenu(tr("&View"));
    view->addAction(tr("As List"), QKeySequence(Qt::CTRL | Qt::Key_1), this,
                    [this] { model_->setShowsGrid(false); });
    view->addAction(tr("As Grid"), QKeySequence(Qt::CTRL | Qt::Key_2), this,
                    [this] { model_->setShowsGrid(true); });
    view->addSeparator();
    view->addAction(tr("Find"), QKeySequence::Find, this, [this] {
        search_->setFocus();
        search_->selectAll();
    });
}

QWidget* LibraryWindow::buildSidebar() {
    auto* panel = new QWidget;
    panel->setAutoFillBackground(true);
    panel->setBackgroundRole(QPalette::Window);
    auto* layout = new QVBoxLayout(panel);
    layout->setContentsMargins(6, 8, 6, 6);
    layout->setSpacing(4);
    sidebar_ = new LibrarySidebar;
    sidebar_->setMinimumWidth(180);
    sidebar_->setMaximumWidth(300);
    sidebar_->viewport()->setAutoFillBackground(false);
    sidebar_->setContextMenuPolicy(Qt::CustomContextMenu);
    layout->addWidget(sidebar_, 1);
    auto* add = new QToolButton;
    add->setText(tr("New Pinboard"));
    add->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    add->setAutoRaise(true);
    add->setIcon(LibraryGlyphs::markIcon(LibraryGlyphs::Mark::newBoard,
                                         palette().color(QPalette::PlaceholderText)));
    layout->addWidget(add, 0, Qt::AlignLeft);

    connect(add, &QToolButton::clicked, this, [this] { newPinboard(); });
    connect(sidebar_, &QListWidget::currentRowChanged, this, [this] { sidebarChanged(); });
    connect(sidebar_, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { showBoardMenu(at); });
    sidebar_->boardDropped = [this](const Uuid& board, std::size_t index) {
        // Redraw after the drop has finished with the rows.
        QMetaObject::invokeMethod(
            this, [this, board, index] { model_->movePinboard(board, index); },
            Qt::QueuedConnection);
    };
    sidebar_->boardRenamed = [this](const Uuid& board, const QString& name) {
        if (rendering_) return;
        // Later, not inside the row's own change signal: renaming rebuilds the rows.
        QMetaObject::invokeMethod(
            this,
            [this, board, name] {
                if (!model_->renamePinboard(board, name.toStdString())) {
                    // A blank name is refused: show the old one again.
                    sidebarKey_.clear();
                    render();
                }
            },
            Qt::QueuedConnection);
    };
    return panel;
}

QWidget* LibraryWindow::buildMiddle() {
    auto* middle = new QWidget;
    auto* layout = new QVBoxLayout(middle);
    layout->setContentsMargins(8, 8, 8, 0);
    layout->setSpacing(6);
    auto* bar = new QHBoxLayout;
    search_ = new QLineEdit;
    search_->setPlaceholderText(tr("Search"));
    search_->setClearButtonEnabled(true);
    bar->addWidget(search_, 1);
    sort_ = new QComboBox;
    sort_->addItem(tr("Newest"), static_cast<int>(ClipLibrarySort::newest));
    sort_->addItem(tr("Most pasted"), static_cast<int>(ClipLibrarySort::mostPasted));
    sort_->addItem(tr("Name"), static_cast<int>(ClipLibrarySort::name));
    sort_->setToolTip(tr("Order"));
    bar->addWidget(sort_);
    auto* layoutGroup = new QButtonGroup(middle);
    const QColor glyph = palette().color(QPalette::Text);
    listButton_ = new QToolButton;
    listButton_->setIcon(LibraryGlyphs::markIcon(LibraryGlyphs::Mark::list, glyph));
    listButton_->setToolTip(tr("As List"));
    gridButton_ = new QToolButton;
    gridButton_->setIcon(LibraryGlyphs::markIcon(LibraryGlyphs::Mark::grid, glyph));
    gridButton_->setToolTip(tr("As Grid"));
    for (QToolButton* button : {listButton_, gridButton_}) {
        button->setCheckable(true);
        button->setAutoRaise(true);
        button->setIconSize(QSize(16, 16));
        layoutGroup->addButton(button);
        bar->addWidget(button);
    }
    layout->addLayout(bar);

    listStack_ = new QStackedWidget;
    list_ = new QListView;
    listModel_ = new LibraryListModel(list_);
    list_->setModel(listModel_);
    delegate_ = new LibraryItemDelegate(*list_, *thumbnails_, *appIcons_);
    list_->setItemDelegate(delegate_);
    list_->setSelectionMode(QAbstractItemView::SingleSelection);
    list_->setUniformItemSizes(false);
    list_->setLayoutMode(QListView::Batched);
    list_->setBatchSize(400);
    list_->setResizeMode(QListView::Adjust);
    list_->setMouseTracking(true);
    list_->setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    list_->verticalScrollBar()->setSingleStep(24);
    list_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list_->setFrameShape(QFrame::NoFrame);
    list_->setContextMenuPolicy(Qt::CustomContextMenu);
    list_->installEventFilter(new ListKeyFilter(
        list_, [this] { pasteSelected(); },
        [this](ClipLibraryViewModel::Step step) { return model_->moveSelectedOnPinboard(step); }));
    // Copies on a pinboard are rearranged by dragging them between the others; the drop is
    // handed to the model after the drag has finished, so the rows are not rebuilt under it.
    list_->setDragDropOverwriteMode(false);
    list_->setDropIndicatorShown(true);
    list_->setDefaultDropAction(Qt::MoveAction);
    connect(
        listModel_, &LibraryListModel::moveRequested, this,
        [this](const QString& id, int index) {
            if (auto copy = Uuid::parse(id.toStdString()); copy && index >= 0)
                model_->moveOnPinboard(*copy, static_cast<std::size_t>(index));
        },
        Qt::QueuedConnection);
    listStack_->addWidget(list_);
    empty_ = new QLabel;
    empty_->setAlignment(Qt::AlignCenter);
    empty_->setWordWrap(true);
    empty_->setForegroundRole(QPalette::PlaceholderText);
    QFont emptyFont = empty_->font();
    emptyFont.setPointSizeF(emptyFont.pointSizeF() * 1.2);
    empty_->setFont(emptyFont);
    listStack_->addWidget(empty_);
    layout->addWidget(listStack_, 1);

    connect(list_->selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this] { listChanged(); });
    connect(list_, &QListView::doubleClicked, this, [this](const QModelIndex& index) {
        if (listModel_->item(index.row())) pasteSelected();
    });
    connect(list_, &QWidget::customContextMenuRequested, this,
            [this](const QPoint& at) { showListMenu(at); });
    connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (!rendering_) model_->setQuery(text.toStdString());
    });
    connect(sort_, &QComboBox::currentIndexChanged, this, [this] {
        if (!rendering_)
            model_->setSort(static_cast<ClipLibrarySort>(sort_->currentData().toInt()));
    });
    connect(listButton_, &QToolButton::clicked, this, [this] { model_->setShowsGrid(false); });
    connect(gridButton_, &QToolButton::clicked, this, [this] { model_->setShowsGrid(true); });
    auto* deleteKey =
        new QShortcut(QKeySequence::Delete, list_, nullptr, nullptr, Qt::WidgetShortcut);
    connect(deleteKey, &QShortcut::activated, this, [this] { model_->remove(); });
    auto* copyKey = new QShortcut(QKeySequence::Copy, list_, nullptr, nullptr, Qt::WidgetShortcut);
    connect(copyKey, &QShortcut::activated, this, [this] { model_->copy(); });
    return middle;
}

QWidget* LibraryWindow::buildDetail() {
    detailStack_ = new QStackedWidget;
    detailStack_->setMinimumWidth(300);
    auto* detail = new QWidget;
    auto* layout = new QVBoxLayout(detail);
    layout->setContentsMargins(12, 10, 12, 10);
    layout->setSpacing(8);
    title_ = new QLabel;
    QFont font = title_->font();
    font.setPointSizeF(font.pointSizeF() * 1.3);
    font.setBold(true);
    title_->setFont(font);
    title_->setWordWrap(true);
    title_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(title_);
    lines_ = new QLabel;
    lines_->setWordWrap(true);
    lines_->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(lines_);
    preview_ = new QLabel;
    preview_->setAlignment(Qt::AlignCenter);
    preview_->setMinimumHeight(160);
    layout->addWidget(preview_, 1);
    editor_ = new QPlainTextEdit;
    layout->addWidget(editor_, 1);
    auto* editRow = new QHBoxLayout;
    save_ = new QPushButton(tr("Save"));
    revert_ = new QPushButton(tr("Revert"));
    editRow->addWidget(save_);
    editRow->addWidget(revert_);
    editRow->addStretch(1);
    layout->addLayout(editRow);
    auto* actionRow = new QHBoxLayout;
    paste_ = new QPushButton(tr("Paste"));
    paste_->setDefault(false);
    copy_ = new QPushButton(tr("Copy"));
    pin_ = new QPushButton(tr("Pin"));
    for (QPushButton* button : {paste_, copy_, pin_}) actionRow->addWidget(button);
    actionRow->addStretch(1);
    delete_ = new QPushButton(tr("Delete"));
    actionRow->addWidget(delete_);
    layout->addLayout(actionRow);
    auto* boardRow = new QHBoxLayout;
    board_ = new QPushButton(tr("Add to Pinboard"));
    board_->setMenu(new QMenu(board_));
    unboard_ = new QPushButton(tr("Remove from Pinboard"));
    boardRow->addWidget(board_);
    boardRow->addWidget(unboard_);
    boardRow->addStretch(1);
    layout->addLayout(boardRow);
    notice_ = new QLabel;
    notice_->setWordWrap(true);
    layout->addWidget(notice_);
    detailStack_->addWidget(detail);
    noSelection_ = new QLabel(tr("Choose a copy to see it here"));
    noSelection_->setAlignment(Qt::AlignCenter);
    noSelection_->setForegroundRole(QPalette::PlaceholderText);
    detailStack_->addWidget(noSelection_);

    connect(editor_, &QPlainTextEdit::textChanged, this, [this] {
        if (!rendering_) model_->setDraft(editor_->toPlainText().toStdString());
    });
    connect(save_, &QPushButton::clicked, this, [this] { model_->saveDraft(); });
    connect(revert_, &QPushButton::clicked, this, [this] {
        // Back to the copy as first captured when it was edited; otherwise drop unsaved typing.
        const std::optional<Uuid> id = model_->selectedID();
        const int row = id ? listModel_->rowOf(*id) : -1;
        const ClipItem* item = listModel_->item(row);
        if (item && item->original && item->original->text) {
            model_->setDraft(*item->original->text);
            model_->saveDraft();
        } else {
            model_->select(id);
        }
    });
    connect(paste_, &QPushButton::clicked, this, [this] { pasteSelected(); });
    connect(copy_, &QPushButton::clicked, this, [this] { model_->copy(); });
    connect(pin_, &QPushButton::clicked, this, [this] { model_->togglePin(); });
    connect(delete_, &QPushButton::clicked, this, [this] { model_->remove(); });
    connect(unboard_, &QPushButton::clicked, this,
            [this] { model_->removeSelectedFromPinboard(); });
    connect(board_->menu(), &QMenu::aboutToShow, this, [this] {
        board_->menu()->clear();
        fillBoardMenu(*board_->menu());
    });
    auto* saveKey =
        new QShortcut(QKeySequence::Save, editor_, nullptr, nullptr, Qt::WidgetShortcut);
    connect(saveKey, &QShortcut::activated, this, [this] { model_->saveDraft(); });
    return detailStack_;
}

void LibraryWindow::applyAppearance() {
    const ClipAppearance appearance = services_.engine.settings()->window.appearance;
    if (appearance_ == appearance) return;
    appearance_ = appearance;
    setPalette(libraryPalette(appearance, QApplication::palette()));
    problem_->setShade(ProblemBanner::shadeFor(palette()));
    // The painted icons take their colour from the palette.
    const QColor glyph = palette().color(QPalette::Text);
    if (listButton_)
        listButton_->setIcon(LibraryGlyphs::markIcon(LibraryGlyphs::Mark::list, glyph));
    if (gridButton_)
        gridButton_->setIcon(LibraryGlyphs::markIcon(LibraryGlyphs::Mark::grid, glyph));
    sidebarKey_.clear();
    if (model_) render();
}

void LibraryWindow::render() {
    if (rendering_) return;
    rendering_ = true;
    message_->setVisible(!message_->text().isEmpty());
    const int sortIndex = sort_->findData(static_cast<int>(model_->sort()));
    if (sort_->currentIndex() != sortIndex) sort_->setCurrentIndex(sortIndex);
    listButton_->setChecked(!model_->showsGrid());
    gridButton_->setChecked(model_->showsGrid());
    if (search_->text().toStdString() != model_->query()) search_->setText(qs(model_->query()));
    renderSidebar();
    renderList();
    renderDetail();
    rendering_ = false;
}

void LibraryWindow::renderSidebar() {
    const ClipLibraryCounts& counts = model_->counts();
    struct Row {
        std::optional<ClipLibrarySection> section;  // none for a heading
        QString text;
        qint64 count = 0;
        QIcon icon;
        QString iconKey;
    };
    std::vector<Row> rows;
    const QColor markColor = palette().color(QPalette::Highlight);
    const auto mark = [&](LibraryGlyphs::Mark which) {
        return LibraryGlyphs::markIcon(which, markColor);
    };
    rows.push_back(
        {ClipLibrarySection::all(), tr("All"), counts.all, mark(LibraryGlyphs::Mark::all), "all"});
    rows.push_back({ClipLibrarySection::today(), tr("Today"), counts.today,
                    mark(LibraryGlyphs::Mark::today), "today"});
    rows.push_back({ClipLibrarySection::pinned(), tr("Pinned"), counts.pinned,
                    mark(LibraryGlyphs::Mark::pinned), "pinned"});
    rows.push_back({std::nullopt, tr("Kinds"), 0, {}, {}});
    for (const auto& [filter, count] : counts.kinds) {
        if (filter == ClipFilter::all || filter == ClipFilter::pinned) continue;
        rows.push_back({ClipLibrarySection::ofKind(filter), filterName(filter), count,
                        LibraryGlyphs::kindIcon(kindOf(filter)), "kind"});
    }
    const std::vector<Pinboard>& boards = services_.engine.pinboards().get();
    rows.push_back({std::nullopt, tr("Pinboards"), 0, {}, {}});
    for (const Pinboard& board : boards) {
        const auto found = counts.pinboards.find(board.id);
        rows.push_back({ClipLibrarySection::pinboard(board.id), qs(board.name),
                        found == counts.pinboards.end() ? 0 : found->second,
                        LibraryGlyphs::boardIcon(board.color, board.symbol),
                        qs(board.color + "/" + board.symbol)});
    }
    if (!counts.apps.empty()) rows.push_back({std::nullopt, tr("Apps"), 0, {}, {}});
    for (const ClipLibraryApp& app : counts.apps) {
        QIcon icon = appIcons_->icon(app.id);
        if (icon.isNull()) icon = mark(LibraryGlyphs::Mark::app);
        rows.push_back({ClipLibrarySection::app(app.id), qs(app.name), app.count, icon, "app"});
    }

    QStringList key;
    for (const Row& row : rows) {
        key << (row.section ? qs(persistedName(*row.section)) : QStringLiteral("-")) + '|' +
                   row.text + '|' + QString::number(row.count) + '|' + row.iconKey;
    }
    int current = -1;
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].section && *rows[i].section == model_->section()) current = int(i);
    }
    const QSignalBlocker blocker(sidebar_);
    if (key != sidebarKey_) {
        sidebar_->clear();
        sections_.clear();
        for (const Row& row : rows) {
            if (row.section) {
                sidebar_->addSection(row.icon, row.text, row.count, row.section->pinboardID);
            } else {
                sidebar_->addHeading(row.text);
            }
            sections_.push_back(row.section.value_or(ClipLibrarySection::all()));
        }
        sidebarKey_ = key;
    }
    if (sidebar_->currentRow() != current) sidebar_->setCurrentRow(current);
}

void LibraryWindow::renderList() {
    std::unordered_set<Uuid> pinned;
    for (const ClipItem& pin : services_.engine.pins().get()) pinned.insert(pin.id);
    const auto wanted =
        model_->showsGrid() ? LibraryItemDelegate::Layout::grid : LibraryItemDelegate::Layout::list;
    const bool relayout = delegate_->layout() != wanted;
    if (relayout) {
        delegate_->setLayout(wanted);
        const bool grid = wanted == LibraryItemDelegate::Layout::grid;
        list_->setFlow(grid ? QListView::LeftToRight : QListView::TopToBottom);
        list_->setWrapping(grid);
        list_->setSpacing(grid ? 2 : 0);
    }
    const bool rearranging = model_->canRearrange();
    listModel_->setRearranging(rearranging ? LibraryListModel::Rearranging::on
                                           : LibraryListModel::Rearranging::off);
    list_->setDragDropMode(rearranging ? QAbstractItemView::DragDrop
                                       : QAbstractItemView::NoDragDrop);
    const bool changed = listModel_->setGroups(model_->groups(), pinned);
    if (relayout && !changed) list_->doItemsLayout();

    const std::optional<std::string> empty = model_->emptyState();
    empty_->setText(empty ? qs(*empty) : QString());
    listStack_->setCurrentWidget(empty ? static_cast<QWidget*>(empty_) : list_);

    const std::optional<Uuid>& id = model_->selectedID();
    const int row = id ? listModel_->rowOf(*id) : -1;
    const QModelIndex index = row >= 0 ? listModel_->index(row) : QModelIndex();
    if (list_->currentIndex() != index) {
        const QSignalBlocker blocker(list_->selectionModel());
        list_->selectionModel()->setCurrentIndex(index, QItemSelectionModel::ClearAndSelect);
        list_->viewport()->update();
    }
    if (index.isValid() && (changed || relayout)) list_->scrollTo(index);
}

void LibraryWindow::renderDetail() {
    const std::optional<ClipLibraryDetail> detail = model_->detail();
    const std::optional<std::string>& notice = model_->notice();
    notice_->setText(notice ? qs(*notice) : QString());
    detailStack_->setCurrentIndex(detail ? 0 : 1);
    unboard_->setVisible(detail && model_->section().kind == ClipLibrarySection::Kind::pinboard);
    if (!detail) return;
    const std::optional<Uuid> id = model_->selectedID();
    const ClipItem* item = id ? listModel_->item(listModel_->rowOf(*id)) : nullptr;
    title_->setText(item ? LibraryListModel::titleOf(*item) : QString());
    QStringList lines{qs(detail->kindLine), qs(detail->sourceLine), qs(detail->usageLine)};
    if (detail->pinLine) lines << qs(*detail->pinLine);
    lines.removeAll(QString());
    lines_->setText(lines.join('\n'));
    pin_->setText(detail->pinLine ? tr("Unpin") : tr("Pin"));
    board_->setEnabled(!services_.engine.pinboards()->empty());

    // Pictures and colours show themselves; text can be edited.
    const bool isImage = item && item->kind == ClipKind::image && item->image && !item->isSensitive;
    const bool isColor = item && item->kind == ClipKind::color;
    preview_->setVisible(isImage || isColor);
    if (isImage) {
        const std::optional<QImage> image = thumbnails_->image(*item->image);
        const qreal ratio = devicePixelRatioF();
        if (image) {
            const QSize room = QSize(std::max(200, detailStack_->width() - 40), 260);
            QPixmap pixmap = QPixmap::fromImage(
                image->scaled(room * ratio, Qt::KeepAspectRatio, Qt::SmoothTransformation));
            pixmap.setDevicePixelRatio(ratio);
            preview_->setPixmap(pixmap);
        } else {
            preview_->setText(tr("Loading…"));
            connect(
                thumbnails_, &LibraryThumbnails::ready, this, [this] { renderDetail(); },
                Qt::SingleShotConnection);
        }
    } else if (isColor) {
        const QColor color(qs(item->colorHex.value_or(item->text.value_or(""))).left(7));
        preview_->setPixmap(QPixmap());
        preview_->setText(qs(item->colorHex.value_or("")));
        preview_->setStyleSheet(
            QStringLiteral("QLabel { background: %1; color: %2; border-radius: 10px; }")
                .arg(color.name(), LibraryGlyphs::onColor(color).name()));
    }
    if (!isColor) preview_->setStyleSheet(QString());

    const bool editable =
        item && !item->isSensitive && item->kind != ClipKind::image && item->kind != ClipKind::file;
    editor_->setVisible(!isImage);
    editor_->setReadOnly(!editable);
    save_->setVisible(editable);
    revert_->setVisible(editable);
    const QString draft = editable ? qs(model_->draft()) : QString();
    editor_->setPlaceholderText(item && item->isSensitive ? qs(kSensitiveExplanation) : QString());
    if (item && item->kind == ClipKind::file && item->filePaths) {
        QStringList paths;
        for (const std::string& path : *item->filePaths) paths << qs(path);
        if (editor_->toPlainText() != paths.join('\n')) editor_->setPlainText(paths.join('\n'));
    } else if (editor_->toPlainText() != draft) {
        editor_->setPlainText(draft);
    }
}

void LibraryWindow::sidebarChanged() {
    if (rendering_) return;
    const int row = sidebar_->currentRow();
    if (row < 0 || row >= int(sections_.size())) return;
    if (!(sidebar_->item(row)->flags() & Qt::ItemIsSelectable)) return;
    const ClipLibrarySection section = sections_[std::size_t(row)];
    if (services_.defaults) services_.defaults->setString(kSectionKey, persistedName(section));
    model_->setSection(section);
}

void LibraryWindow::restoreSection() {
    if (!services_.defaults) return;
    const std::optional<std::string> stored = services_.defaults->string(kSectionKey);
    if (!stored) return;
    if (const std::optional<ClipLibrarySection> section = sectionFromPersistedName(*stored)) {
        // A board or an app that is gone leaves the window on every copy.
        showSection(*section);
    }
}

void LibraryWindow::listChanged() {
    if (rendering_) return;
    const ClipItem* item = listModel_->item(list_->currentIndex().row());
    model_->select(item ? std::optional<Uuid>(item->id) : std::nullopt);
}

void LibraryWindow::pasteSelected() {
    if (!model_->selectedID()) return;
    model_->paste();
}

bool LibraryWindow::showSection(const ClipLibrarySection& section) {
    for (std::size_t i = 0; i < sections_.size(); ++i) {
        QListWidgetItem* row = sidebar_->item(int(i));
        if (sections_[i] == section && row && (row->flags() & Qt::ItemIsSelectable)) {
            sidebar_->setCurrentRow(int(i));
            return true;
        }
    }
    return false;
}

bool LibraryWindow::selectCopy(const Uuid& id) {
    const int row = listModel_->rowOf(id);
    if (row < 0) return false;
    list_->setCurrentIndex(listModel_->index(row));
    return true;
}

void LibraryWindow::fillBoardMenu(QMenu& menu) {
    for (const Pinboard& board : services_.engine.pinboards().get()) {
        const Uuid id = board.id;
        menu.addAction(LibraryGlyphs::boardIcon(board.color, board.symbol), qs(board.name), this,
                       [this, id] { model_->addSelectedToPinboard(id); });
    }
    if (!menu.isEmpty()) menu.addSeparator();
    menu.addAction(tr("New Pinboard"), this, [this] {
        const std::optional<Uuid> id = model_->addPinboard("");
        if (id) model_->addSelectedToPinboard(*id);
    });
}

std::unique_ptr<QMenu> LibraryWindow::copyMenu() {
    auto menu = std::make_unique<QMenu>(this);
    if (!model_->selectedID()) return menu;
    menu->addAction(tr("Paste"), this, [this] { pasteSelected(); });
    menu->addAction(tr("Copy"), this, [this] { model_->copy(); });
    const std::optional<ClipLibraryDetail> detail = model_->detail();
    menu->addAction(detail && detail->pinLine ? tr("Unpin") : tr("Pin"), this,
                    [this] { model_->togglePin(); });
    QMenu* boards = menu->addMenu(tr("Add to Pinboard"));
    fillBoardMenu(*boards);
    if (model_->section().kind == ClipLibrarySection::Kind::pinboard) {
        menu->addAction(tr("Remove from Pinboard"), this,
                        [this] { model_->removeSelectedFromPinboard(); });
    }
    if (model_->canRearrange()) {
        const std::vector<ClipItem>& listed = model_->items();
        const auto at = std::ranges::find(listed, *model_->selectedID(), &ClipItem::id);
        using Step = ClipLibraryViewModel::Step;
        QAction* up = menu->addAction(tr("Move Up"), this,
                                      [this] { model_->moveSelectedOnPinboard(Step::up); });
        up->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Up));
        up->setEnabled(at != listed.begin() && at != listed.end());
        QAction* down = menu->addAction(tr("Move Down"), this,
                                        [this] { model_->moveSelectedOnPinboard(Step::down); });
        down->setShortcut(QKeySequence(Qt::ALT | Qt::Key_Down));
        down->setEnabled(at != listed.end() && std::next(at) != listed.end());
    }
    menu->addSeparator();
    menu->addAction(tr("Delete"), this, [this] { model_->remove(); });
    return menu;
}

std::unique_ptr<QMenu> LibraryWindow::boardMenu(const Uuid& board) {
    auto menu = std::make_unique<QMenu>(this);
    menu->addAction(tr("Rename"), this, [this, board] {
        for (int i = 0; i < sidebar_->count(); ++i) {
            if (LibrarySidebar::boardOf(sidebar_->item(i)) == board) {
                sidebar_->editItem(sidebar_->item(i));
            }
        }
    });
    QMenu* colors = menu->addMenu(tr("Colour"));
    for (std::string_view color : kPinboardColors) {
        colors->addAction(
            LibraryGlyphs::swatchIcon(LibraryGlyphs::boardColor(color)), colorLabel(color), this,
            [this, board, color] { model_->setPinboardColor(board, std::string(color)); });
    }
    QMenu* symbols = menu->addMenu(tr("Symbol"));
    const std::vector<Pinboard>& boards = services_.engine.pinboards().get();
    const auto found =
        std::ranges::find_if(boards, [&](const Pinboard& each) { return each.id == board; });
    const std::string color = found != boards.end() ? found->color : std::string();
    for (std::string_view symbol : kPinboardSymbols) {
        symbols->addAction(
            LibraryGlyphs::boardIcon(color, symbol), colorLabel(symbol), this,
            [this, board, symbol] { model_->setPinboardSymbol(board, std::string(symbol)); });
    }
    menu->addSeparator();
    menu->addAction(tr("Move Up"), this,
                    [this, board] { model_->movePinboard(board, ClipLibraryViewModel::Step::up); });
    menu->addAction(tr("Move Down"), this, [this, board] {
        model_->movePinboard(board, ClipLibraryViewModel::Step::down);
    });
    menu->addSeparator();
    menu->addAction(tr("Delete Pinboard…"), this, [this, board] {
        const auto answer =
            QMessageBox::question(this, tr("Delete Pinboard"),
                                  tr("Delete this pinboard? Its copies stay in your history."),
                                  QMessageBox::Cancel | QMessageBox::Ok, QMessageBox::Cancel);
        if (answer == QMessageBox::Ok) model_->removePinboard(board);
    });
    return menu;
}

void LibraryWindow::showListMenu(const QPoint& at) {
    const QModelIndex index = list_->indexAt(at);
    if (!listModel_->item(index.row())) return;
    list_->setCurrentIndex(index);
    copyMenu()->exec(list_->viewport()->mapToGlobal(at));
}

void LibraryWindow::showBoardMenu(const QPoint& at) {
    const std::optional<Uuid> board = LibrarySidebar::boardOf(sidebar_->itemAt(at));
    if (!board) return;
    boardMenu(*board)->exec(sidebar_->viewport()->mapToGlobal(at));
}

void LibraryWindow::newPinboard() {
    const std::optional<Uuid> id = model_->addPinboard("");
    if (!id) return;
    showSection(ClipLibrarySection::pinboard(*id));
    for (int i = 0; i < sidebar_->count(); ++i) {
        if (LibrarySidebar::boardOf(sidebar_->item(i)) == id) sidebar_->editItem(sidebar_->item(i));
    }
}

bool LibraryWindow::runTransfer(const QString& label, TransferWork work) {
    if (transfer_) return false;
    auto stop = std::make_shared<std::atomic<bool>>(false);
    stopTransfer_ = stop;
    progress_ = new QProgressDialog(label, tr("Stop"), 0, 1000, this);
    connect(progress_, &QProgressDialog::canceled, this, [stop] { *stop = true; });
    progress_->setWindowModality(Qt::WindowModal);
    // Small files finish before a dialog would be worth showing.
    progress_->setMinimumDuration(400);
    progress_->setAutoClose(false);
    progress_->setAutoReset(false);
    transfer_ = QThread::create([this, stop, work = std::move(work)] {
        std::function<QString()> finish = work([this, stop](double fraction) {
            QMetaObject::invokeMethod(
                this, [this, fraction] { transferMoved(fraction); }, Qt::QueuedConnection);
            return !*stop;
        });
        QMetaObject::invokeMethod(
            this,
            [this, finish] {
                endTransfer();
                const QString message = finish();
                showMessage(message);
                emit transferFinished(message);
            },
            Qt::QueuedConnection);
    });
    transfer_->start();
    return true;
}

bool LibraryWindow::startExport(const QString& path) {
    const ClipExportSnapshot snapshot = model_->exportSnapshot();
    const std::string fileName = QFileInfo(path).fileName().toStdString();
    return runTransfer(
        tr("Exporting your copies…"),
        [this, snapshot, path, fileName, read = services_.readImage](const ClipProgress& progress) {
            auto result = writeClipExportFile(path.toStdString(), snapshot, read, progress);
            return std::function<QString()>([this, result, fileName] {
                model_->exportFinished(result, fileName);
                return model_->notice() ? qs(*model_->notice()) : QString();
            });
        });
}

bool LibraryWindow::startImport(const QString& path) {
    return runTransfer(tr("Importing copies…"), [this, path](const ClipProgress& progress) {
        auto file = std::make_shared<std::expected<ClipExportFile, ClipTransferError>>(
            readClipExportFile(path.toStdString(), progress));
        return std::function<QString()>([this, file] {
            auto result = model_->importFinished(std::move(*file));
            QString message = model_->notice() ? qs(*model_->notice()) : QString();
            if (!result) return message;
            qsizetype lost = 0;
            for (const ClipExportImage& image : result->images) {
                if (!services_.storeImage(image)) ++lost;
            }
            if (lost > 0) message += ' ' + tr("%n image(s) couldn’t be kept.", "", int(lost));
            return message;
        });
    });
}

void LibraryWindow::transferMoved(double fraction) {
    const int permille = std::clamp(int(fraction * 1000), 0, 1000);
    if (progress_) progress_->setValue(permille);
    emit transferProgress(permille);
}

void LibraryWindow::endTransfer() {
    if (transfer_) {
        transfer_->wait();
        delete transfer_;
        transfer_ = nullptr;
    }
    if (progress_) {
        progress_->close();
        progress_->deleteLater();
    }
}

void LibraryWindow::chooseExport() {
    const QString path =
        QFileDialog::getSaveFileName(this, tr("Export"), QStringLiteral("Harbex Clipboard.json"),
                                     tr("Harbex Clipboard export (*.json)"));
    if (!path.isEmpty()) startExport(path);
}

void LibraryWindow::chooseImport() {
    const QString path = QFileDialog::getOpenFileName(this, tr("Import"), QString(),
                                                      tr("Harbex Clipboard export (*.json)"));
    if (!path.isEmpty()) startImport(path);
}

void LibraryWindow::showMessage(const QString& text) {
    message_->setText(text);
    message_->setVisible(!text.isEmpty());
}

}  // namespace harbex
