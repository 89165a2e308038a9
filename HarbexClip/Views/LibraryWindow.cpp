#include "HarbexClip/Views/LibraryWindow.hpp"

#include <QFile>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QMenuBar>
#include <QShortcut>
#include <QSplitter>
#include <QVBoxLayout>

#include <algorithm>

#include "HarbexClipCore/Capture/SensitiveDetector.hpp"
#include "HarbexClipCore/Library/ClipLibraryModel.hpp"

namespace harbex {
namespace {

constexpr int kIdRole = Qt::UserRole + 1;

QString qs(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString sidebarText(const QString& name, std::int64_t count) {
    return name + QStringLiteral("  ") + QString::number(count);
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

// A sensitive copy never shows its text in a list.
QString rowTitle(const ClipItem& item) {
    if (!item.isSensitive) return QString::fromStdString(item.title());
    const bool isCode =
        std::ranges::find(item.details, ClipDetail::oneTimeCode) != item.details.end();
    return isCode ? QObject::tr("One-time code, hidden") : QObject::tr("Sensitive, hidden");
}

QListWidgetItem* headingRow(const QString& text) {
    auto* row = new QListWidgetItem(text);
    row->setFlags(Qt::NoItemFlags);
    QFont font = row->font();
    font.setBold(true);
    row->setFont(font);
    return row;
}

}  // namespace

LibraryWindow::LibraryWindow(LibraryWindowServices services, QWidget* parent)
    : QMainWindow(parent), services_(std::move(services)) {
    setWindowTitle(tr("Harbex Clipboard Library"));
    resize(960, 600);
    model_ =
        std::make_unique<ClipLibraryViewModel>(services_.engine, services_.now, services_.calendar);

    auto* central = new QWidget;
    auto* outer = new QVBoxLayout(central);
    problem_ = new QLabel;
    problem_->setWordWrap(true);
    problem_->setStyleSheet("QLabel { background: #fff3cd; color: #5c4400; padding: 6px; }");
    outer->addWidget(problem_);
    message_ = new QLabel;
    message_->setWordWrap(true);
    message_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    outer->addWidget(message_);

    auto* splitter = new QSplitter;
    sidebar_ = new QListWidget;
    sidebar_->setMinimumWidth(170);
    sidebar_->setMaximumWidth(280);
    splitter->addWidget(sidebar_);

    auto* middle = new QWidget;
    auto* middleLayout = new QVBoxLayout(middle);
    middleLayout->setContentsMargins(0, 0, 0, 0);
    auto* searchRow = new QHBoxLayout;
    search_ = new QLineEdit;
    search_->setPlaceholderText(tr("Search"));
    search_->setClearButtonEnabled(true);
    searchRow->addWidget(search_, 1);
    sort_ = new QComboBox;
    sort_->addItem(tr("Newest"), static_cast<int>(ClipLibrarySort::newest));
    sort_->addItem(tr("Most pasted"), static_cast<int>(ClipLibrarySort::mostPasted));
    sort_->addItem(tr("Name"), static_cast<int>(ClipLibrarySort::name));
    // The window opens in the order the settings keep.
    sortOrder_ = services_.engine.settings()->window.sort;
    sort_->setCurrentIndex(sort_->findData(static_cast<int>(sortOrder_)));
    searchRow->addWidget(sort_);
    middleLayout->addLayout(searchRow);
    list_ = new QListWidget;
    list_->setMinimumWidth(260);
    list_->setSpacing(2);
    middleLayout->addWidget(list_, 1);
    splitter->addWidget(middle);

    splitter->addWidget(buildDetail());
    splitter->setStretchFactor(0, 0);
    splitter->setStretchFactor(1, 1);
    splitter->setStretchFactor(2, 1);
    splitter->setSizes({200, 340, 420});
    outer->addWidget(splitter, 1);
    setCentralWidget(central);
    buildMenus();

    connect(sidebar_, &QListWidget::currentRowChanged, this, [this] { sidebarChanged(); });
    connect(list_, &QListWidget::currentItemChanged, this, [this] { listChanged(); });
    connect(search_, &QLineEdit::textChanged, this, [this](const QString& text) {
        if (!rendering_) model_->setQuery(text.toStdString());
    });
    connect(sort_, &QComboBox::currentIndexChanged, this, [this] {
        sortOrder_ = static_cast<ClipLibrarySort>(sort_->currentData().toInt());
        render();
    });
    connect(editor_, &QPlainTextEdit::textChanged, this, [this] {
        if (!rendering_) model_->setDraft(editor_->toPlainText().toStdString());
    });
    connect(save_, &QPushButton::clicked, this, [this] { model_->saveDraft(); });
    connect(revert_, &QPushButton::clicked, this, [this] {
        // Back to the copy as first captured when it was edited; otherwise drop unsaved typing.
        const std::optional<Uuid> id = model_->selectedID();
        const auto found = std::ranges::find_if(
            model_->items(), [&](const ClipItem& item) { return id && item.id == *id; });
        if (found != model_->items().end() && found->original && found->original->text) {
            model_->setDraft(*found->original->text);
            model_->saveDraft();
        } else {
            model_->select(id);
        }
    });
    connect(copy_, &QPushButton::clicked, this, [this] { model_->copy(); });
    connect(pin_, &QPushButton::clicked, this, [this] { model_->togglePin(); });
    connect(delete_, &QPushButton::clicked, this, [this] { model_->remove(); });
    connect(unboard_, &QPushButton::clicked, this, [this] {
        const std::optional<Uuid>& board = model_->section().pinboardID;
        const std::optional<Uuid>& id = model_->selectedID();
        if (board && id) services_.engine.removeFromPinboard(*board, *id);
    });
    auto* deleteKey =
        new QShortcut(QKeySequence::Delete, list_, nullptr, nullptr, Qt::WidgetShortcut);
    connect(deleteKey, &QShortcut::activated, this, [this] { model_->remove(); });
    auto* saveKey =
        new QShortcut(QKeySequence::Save, editor_, nullptr, nullptr, Qt::WidgetShortcut);
    connect(saveKey, &QShortcut::activated, this, [this] { model_->saveDraft(); });

    revisionWatch_ = model_->revision().subscribe([this](std::uint64_t) { render(); });
    problemWatch_ = services_.engine.problem().subscribe(
        [this](const std::optional<std::string>&) { render(); });
    render();
}

LibraryWindow::~LibraryWindow() {
    revisionWatch_.cancel();
    problemWatch_.cancel();
}

void LibraryWindow::buildMenus() {
    QMenu* file = menuBar()->addMenu(tr("&File"));
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
}

QWidget* LibraryWindow::buildDetail() {
    detail_ = new QWidget;
    auto* layout = new QVBoxLayout(detail_);
    layout->setContentsMargins(8, 0, 0, 0);
    title_ = new QLabel;
    QFont font = title_->font();
    font.setPointSizeF(font.pointSizeF() * 1.3);
    font.setBold(true);
    title_->setFont(font);
    title_->setWordWrap(true);
    layout->addWidget(title_);
    lines_ = new QLabel;
    lines_->setWordWrap(true);
    lines_->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(lines_);
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
    copy_ = new QPushButton(tr("Copy"));
    pin_ = new QPushButton(tr("Pin"));
    delete_ = new QPushButton(tr("Delete"));
    actionRow->addWidget(copy_);
    actionRow->addWidget(pin_);
    actionRow->addWidget(delete_);
    unboard_ = new QPushButton(tr("Remove from Pinboard"));
    actionRow->addWidget(unboard_);
    actionRow->addStretch(1);
    layout->addLayout(actionRow);
    notice_ = new QLabel;
    notice_->setWordWrap(true);
    layout->addWidget(notice_);
    empty_ = new QLabel;
    empty_->setAlignment(Qt::AlignCenter);
    empty_->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(empty_);
    return detail_;
}

void LibraryWindow::render() {
    if (rendering_) return;
    rendering_ = true;
    const std::optional<std::string>& problem = services_.engine.problem().get();
    problem_->setVisible(problem.has_value());
    problem_->setText(problem ? qs(*problem) : QString());
    message_->setVisible(!message_->text().isEmpty());
    renderSidebar();
    renderList();
    renderDetail();
    rendering_ = false;
}

void LibraryWindow::renderSidebar() {
    const ClipLibraryCounts& counts = model_->counts();
    std::vector<ClipLibrarySection> sections;
    QStringList texts;
    std::vector<bool> headings;
    auto add = [&](ClipLibrarySection section, const QString& text) {
        sections.push_back(std::move(section));
        texts << text;
        headings.push_back(false);
    };
    auto heading = [&](const QString& text) {
        sections.push_back(ClipLibrarySection::all());
        texts << text;
        headings.push_back(true);
    };
    add(ClipLibrarySection::all(), sidebarText(tr("All"), counts.all));
    add(ClipLibrarySection::today(), sidebarText(tr("Today"), counts.today));
    add(ClipLibrarySection::pinned(), sidebarText(tr("Pinned"), counts.pinned));
    heading(tr("Kinds"));
    for (const auto& [filter, count] : counts.kinds) {
        if (filter == ClipFilter::all || filter == ClipFilter::pinned) continue;
        add(ClipLibrarySection::ofKind(filter), sidebarText(filterName(filter), count));
    }
    const std::vector<Pinboard>& boards = services_.engine.pinboards().get();
    if (!boards.empty()) heading(tr("Pinboards"));
    for (const Pinboard& board : boards) {
        const auto found = counts.pinboards.find(board.id);
        add(ClipLibrarySection::pinboard(board.id),
            sidebarText(qs(board.name), found == counts.pinboards.end() ? 0 : found->second));
    }
    if (!counts.apps.empty()) heading(tr("Apps"));
    for (const ClipLibraryApp& app : counts.apps) {
        add(ClipLibrarySection::app(app.id), sidebarText(qs(app.name), app.count));
    }

    const QSignalBlocker blocker(sidebar_);
    sidebar_->clear();
    int current = -1;
    for (std::size_t i = 0; i < sections.size(); ++i) {
        QListWidgetItem* row =
            headings[i] ? headingRow(texts[int(i)]) : new QListWidgetItem(texts[int(i)]);
        sidebar_->addItem(row);
        if (!headings[i] && current < 0 && sections[i] == model_->section()) current = int(i);
    }
    sections_ = std::move(sections);
    sidebar_->setCurrentRow(current);
}

void LibraryWindow::renderList() {
    const QSignalBlocker blocker(list_);
    list_->clear();
    QListWidgetItem* selected = nullptr;
    auto addRow = [&](const ClipItem& item) {
        auto* row = new QListWidgetItem(rowTitle(item) + QStringLiteral("\n") +
                                        QString::fromStdString(item.subtitle()));
        row->setData(kIdRole, QString::fromStdString(item.id.string()));
        row->setToolTip(QString::fromStdString(item.subtitle()));
        list_->addItem(row);
        if (model_->selectedID() && *model_->selectedID() == item.id) selected = row;
    };
    if (sortOrder_ == ClipLibrarySort::newest) {
        // Day headings only make sense while the list runs by date.
        for (const ClipLibraryGroup& group : model_->groups()) {
            if (group.title) list_->addItem(headingRow(qs(*group.title)));
            for (const ClipItem& item : group.items) addRow(item);
        }
    } else {
        std::vector<ClipItem> items = model_->items();
        ClipLibraryModel::sortItems(items, sortOrder_);
        for (const ClipItem& item : items) addRow(item);
    }
    if (selected) list_->setCurrentItem(selected);
}

void LibraryWindow::renderDetail() {
    const std::optional<ClipLibraryDetail> detail = model_->detail();
    const std::optional<std::string> empty = model_->emptyState();
    empty_->setVisible(empty.has_value());
    empty_->setText(empty ? qs(*empty) : QString());
    const std::optional<std::string>& notice = model_->notice();
    notice_->setText(notice ? qs(*notice) : QString());

    const bool has = detail.has_value();
    for (QWidget* part : std::initializer_list<QWidget*>{title_, lines_, editor_, save_, revert_,
                                                         copy_, pin_, delete_}) {
        part->setVisible(has);
    }
    unboard_->setVisible(has && model_->section().kind == ClipLibrarySection::Kind::pinboard);
    if (!has) return;
    const std::optional<Uuid> id = model_->selectedID();
    const auto found = std::ranges::find_if(
        model_->items(), [&](const ClipItem& item) { return id && item.id == *id; });
    const ClipItem* item = found == model_->items().end() ? nullptr : &*found;
    title_->setText(item ? rowTitle(*item) : QString());
    QStringList lines{qs(detail->kindLine), qs(detail->sourceLine), qs(detail->usageLine)};
    if (detail->pinLine) lines << qs(*detail->pinLine);
    lines.removeAll(QString());
    lines_->setText(lines.join('\n'));
    pin_->setText(detail->pinLine ? tr("Unpin") : tr("Pin"));

    const bool editable =
        item && !item->isSensitive && item->kind != ClipKind::image && item->kind != ClipKind::file;
    editor_->setReadOnly(!editable);
    save_->setEnabled(editable);
    revert_->setEnabled(editable);
    const QString draft = editable ? QString::fromStdString(model_->draft()) : QString();
    editor_->setPlaceholderText(item && item->isSensitive ? qs(kSensitiveExplanation) : QString());
    if (editor_->toPlainText() != draft) editor_->setPlainText(draft);
}

void LibraryWindow::sidebarChanged() {
    if (rendering_) return;
    const int row = sidebar_->currentRow();
    if (row < 0 || row >= int(sections_.size())) return;
    model_->setSection(sections_[std::size_t(row)]);
}

void LibraryWindow::listChanged() {
    if (rendering_) return;
    QListWidgetItem* row = list_->currentItem();
    if (!row) return model_->select(std::nullopt);
    model_->select(Uuid::parse(row->data(kIdRole).toString().toStdString()));
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

QString LibraryWindow::exportTo(const QString& path) {
    const std::string text = model_->exportFile(services_.readImage);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) ||
        file.write(text.data(), qint64(text.size())) != qint64(text.size())) {
        return tr("The export couldn’t be written: %1").arg(file.errorString());
    }
    file.close();
    return tr("Exported to %1").arg(path);
}

QString LibraryWindow::importFrom(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return tr("The file couldn’t be read: %1").arg(file.errorString());
    }
    const QByteArray bytes = file.readAll();
    const auto result = model_->importFile(std::string_view(bytes.constData(), bytes.size()));
    if (!result) return qs(result.error().message);
    QString text = model_->notice() ? qs(*model_->notice()) : tr("Imported");
    qsizetype lost = 0;
    for (const ClipExportImage& image : result->images) {
        if (!services_.storeImage(image)) ++lost;
    }
    if (lost > 0) text += QStringLiteral(" ") + tr("%n image(s) couldn’t be kept.", "", int(lost));
    return text;
}

void LibraryWindow::chooseExport() {
    const QString path = QFileDialog::getSaveFileName(this, tr("Export"), QString(),
                                                      tr("Harbex Clipboard export (*.json)"));
    if (!path.isEmpty()) showMessage(exportTo(path));
}

void LibraryWindow::chooseImport() {
    const QString path = QFileDialog::getOpenFileName(this, tr("Import"), QString(),
                                                      tr("Harbex Clipboard export (*.json)"));
    if (!path.isEmpty()) showMessage(importFrom(path));
}

void LibraryWindow::showMessage(const QString& text) {
    message_->setText(text);
    message_->setVisible(!text.isEmpty());
}

}  // namespace harbex
