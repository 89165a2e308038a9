#include "HarbexClip/Views/SettingsWindow.hpp"

#include <QCheckBox>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QLabel>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include "HarbexClip/Views/ShortcutRecorder.hpp"
#include "HarbexClipCore/Settings/ClipSettingsStore.hpp"
#include "HarbexClipCore/Store/ClipStorageUsage.hpp"
#include "HarbexClipCore/Support/ByteCount.hpp"

namespace harbex {

namespace {

constexpr const char* kShowAtLaunchKey = "clipShowAtLaunch";

QString pageTitle(ClipSettingsPage page) {
    switch (page) {
        case ClipSettingsPage::general: return QObject::tr("General");
        case ClipSettingsPage::panel: return QObject::tr("Panel");
        case ClipSettingsPage::capture: return QObject::tr("Capture");
        case ClipSettingsPage::privacy: return QObject::tr("Privacy");
        case ClipSettingsPage::history: return QObject::tr("History");
        case ClipSettingsPage::pinboards: return QObject::tr("Pinboards");
        case ClipSettingsPage::shortcuts: return QObject::tr("Shortcuts");
        case ClipSettingsPage::about: return QObject::tr("About");
    }
    return {};
}

QString triggerLabel(ClipPanelTrigger trigger) {
    switch (trigger) {
        case ClipPanelTrigger::doubleCommand: return QObject::tr("Double-tap Ctrl");
        case ClipPanelTrigger::doubleOption: return QObject::tr("Double-tap Alt");
        case ClipPanelTrigger::doubleControl: return QObject::tr("Double-tap Super");
        case ClipPanelTrigger::doubleShift: return QObject::tr("Double-tap Shift");
        case ClipPanelTrigger::off: return QObject::tr("Off");
    }
    return {};
}

QString kindLabel(ClipKind kind) {
    switch (kind) {
        case ClipKind::text: return QObject::tr("Text");
        case ClipKind::richText: return QObject::tr("Rich text");
        case ClipKind::link: return QObject::tr("Links");
        case ClipKind::image: return QObject::tr("Images");
        case ClipKind::file: return QObject::tr("Files");
        case ClipKind::color: return QObject::tr("Colours");
        case ClipKind::code: return QObject::tr("Code");
    }
    return {};
}

QString retentionLabel(ClipRetention retention) {
    switch (retention) {
        case ClipRetention::day: return QObject::tr("A day");
        case ClipRetention::week: return QObject::tr("A week");
        case ClipRetention::month: return QObject::tr("A month");
        case ClipRetention::threeMonths: return QObject::tr("Three months");
        case ClipRetention::year: return QObject::tr("A year");
        case ClipRetention::forever: return QObject::tr("Forever");
    }
    return {};
}

QString stackLabel(ClipStackMode mode) {
    switch (mode) {
        case ClipStackMode::onePerPaste: return QObject::tr("One copy per paste");
        case ClipStackMode::newLines: return QObject::tr("All at once, on separate lines");
        case ClipStackMode::commas: return QObject::tr("All at once, separated by commas");
        case ClipStackMode::spaces: return QObject::tr("All at once, separated by spaces");
    }
    return {};
}

QString appearanceLabel(ClipAppearance appearance) {
    switch (appearance) {
        case ClipAppearance::system: return QObject::tr("Follow the system");
        case ClipAppearance::light: return QObject::tr("Light");
        case ClipAppearance::dark: return QObject::tr("Dark");
    }
    return {};
}

QString sortLabel(ClipLibrarySort sort) {
    switch (sort) {
        case ClipLibrarySort::newest: return QObject::tr("Newest first");
        case ClipLibrarySort::mostPasted: return QObject::tr("Most pasted");
        case ClipLibrarySort::name: return QObject::tr("Name");
    }
    return {};
}

QLabel* note(const QString& text) {
    auto* label = new QLabel(text);
    label->setWordWrap(true);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

QFormLayout* form(QWidget* page) {
    auto* layout = new QFormLayout(page);
    layout->setRowWrapPolicy(QFormLayout::DontWrapRows);
    layout->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    layout->setLabelAlignment(Qt::AlignRight);
    layout->setContentsMargins(24, 20, 24, 20);
    layout->setVerticalSpacing(10);
    return layout;
}

}  // namespace

SettingsWindow::SettingsWindow(SettingsWindowServices services, QWidget* parent)
    : QWidget(parent, Qt::Window), services_(std::move(services)) {
    setWindowTitle(tr("Harbex Clipboard Settings"));
    setObjectName("settingsWindow");
    resize(780, 540);
    sidebar_ = new QListWidget(this);
    sidebar_->setFixedWidth(170);
    sidebar_->setFrameShape(QFrame::NoFrame);
    sidebar_->setStyleSheet(
        "QListWidget { padding-top: 12px; }"
        "QListWidget::item { padding: 6px 14px; border-radius: 6px; }"
        "QListWidget::item:selected { background: palette(highlight); "
        "color: palette(highlighted-text); }");
    pages_ = new QStackedWidget(this);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(sidebar_);
    layout->addWidget(pages_, 1);

    const std::function<QWidget*()> builders[] = {
        [this] { return generalPage(); },   [this] { return panelPage(); },
        [this] { return capturePage(); },   [this] { return privacyPage(); },
        [this] { return historyPage(); },   [this] { return pinboardsPage(); },
        [this] { return shortcutsPage(); }, [this] { return aboutPage(); },
    };
    for (ClipSettingsPage page : allCases<ClipSettingsPage>()) {
        sidebar_->addItem(pageTitle(page));
        pages_->addWidget(builders[static_cast<int>(page)]());
    }
    connect(sidebar_, &QListWidget::currentRowChanged, this, [this](int row) {
        if (row < 0) return;
        pages_->setCurrentIndex(row);
        ClipSettingsStore::savePage(static_cast<ClipSettingsPage>(row), services_.defaults);
        // Measured when looked at, so the figures are those of now.
        if (static_cast<ClipSettingsPage>(row) == ClipSettingsPage::history && storageRefresher_)
            storageRefresher_();
    });
    sidebar_->setCurrentRow(static_cast<int>(ClipSettingsStore::loadPage(services_.defaults)));

    settingsWatch_ = services_.settings.subscribe([this](const ClipSettings&) { refresh(); });
    pinboardsWatch_ = services_.pinboards.subscribe([this](const std::vector<Pinboard>&) {
        for (auto& refresher : pinboardRefreshers_) refresher();
    });
    refresh();
    for (auto& refresher : pinboardRefreshers_) refresher();
}

void SettingsWindow::showPage(ClipSettingsPage page) {
    sidebar_->setCurrentRow(static_cast<int>(page));
}

ClipSettingsPage SettingsWindow::currentPage() const {
    return static_cast<ClipSettingsPage>(std::max(0, sidebar_->currentRow()));
}

void SettingsWindow::change(const std::function<void(ClipSettings&)>& change) {
    if (refreshing_) return;
    ClipSettings settings = services_.settings.get();
    change(settings);
    if (settings == services_.settings.get()) return;
    services_.updateSettings(std::move(settings));
}

void SettingsWindow::refresh() {
    refreshing_ = true;
    const ClipSettings& settings = services_.settings.get();
    for (auto& refresher : refreshers_) refresher(settings);
    refreshing_ = false;
}

namespace {

// A check box bound to one Boolean field.
template <class Get, class Set>
QCheckBox* boolField(const QString& text, Get get, Set set, SettingsWindow* window,
                     std::vector<std::function<void(const ClipSettings&)>>& refreshers,
                     const std::function<void(const std::function<void(ClipSettings&)>&)>& change) {
    auto* box = new QCheckBox(text, window);
    QObject::connect(box, &QCheckBox::toggled, window,
                     [change, set](bool on) { change([&](ClipSettings& s) { set(s, on); }); });
    refreshers.push_back([box, get](const ClipSettings& s) { box->setChecked(get(s)); });
    return box;
}

// A menu bound to one enumeration field, its cases in declaration order.
template <class E, class Get, class Set, class Label>
QComboBox* enumField(Get get, Set set, Label label, SettingsWindow* window,
                     std::vector<std::function<void(const ClipSettings&)>>& refreshers,
                     const std::function<void(const std::function<void(ClipSettings&)>&)>& change) {
    auto* combo = new QComboBox(window);
    for (E value : allCases<E>()) combo->addItem(label(value));
    QObject::connect(combo, &QComboBox::currentIndexChanged, window, [change, set](int index) {
        if (index < 0) return;
        change([&](ClipSettings& s) { set(s, allCases<E>()[std::size_t(index)]); });
    });
    refreshers.push_back([combo, get](const ClipSettings& s) {
        const auto cases = allCases<E>();
        for (std::size_t i = 0; i < cases.size(); ++i) {
            if (cases[i] == get(s)) combo->setCurrentIndex(int(i));
        }
    });
    return combo;
}

}  // namespace

#define HARBEX_BOOL(text, field)                             \
    boolField(                                               \
        text, [](const ClipSettings& s) { return s.field; }, \
        [](ClipSettings& s, bool on) { s.field = on; }, this, refreshers_, changer)
#define HARBEX_ENUM(E, field, label)                                                          \
    enumField<E>([](const ClipSettings& s) { return s.field; },                               \
                 [](ClipSettings& s, E value) { s.field = value; }, label, this, refreshers_, \
                 changer)

QWidget* SettingsWindow::generalPage() {
    auto* page = new QWidget;
    auto* layout = form(page);
    auto changer = [this](const std::function<void(ClipSettings&)>& c) { change(c); };

    auto* login = new QCheckBox(tr("Open Harbex Clipboard when you log in"), page);
    login->setChecked(services_.startsAtLogin && services_.startsAtLogin());
    connect(login, &QCheckBox::toggled, this, [this, login](bool on) {
        if (services_.setStartsAtLogin && !services_.setStartsAtLogin(on)) {
            const QSignalBlocker blocker(login);
            login->setChecked(!on);
        }
    });
    layout->addRow(tr("Startup:"), login);
    auto* showAtLaunch = new QCheckBox(tr("Show the library when you open Harbex Clipboard"), page);
    showAtLaunch->setChecked(services_.defaults.boolean(kShowAtLaunchKey).value_or(true));
    connect(showAtLaunch, &QCheckBox::toggled, this,
            [this](bool on) { services_.defaults.setBool(kShowAtLaunchKey, on); });
    layout->addRow(QString(), showAtLaunch);
    layout->addRow(tr("Appearance:"),
                   HARBEX_ENUM(ClipAppearance, window.appearance, appearanceLabel));
    layout->addRow(tr("Feedback:"),
                   HARBEX_BOOL(tr("Play a sound when a copy is saved"), window.soundOnCopy));
    layout->addRow(tr("Library order:"), HARBEX_ENUM(ClipLibrarySort, window.sort, sortLabel));
    auto* grid = boolField(
        tr("Show the library as a grid"),
        [](const ClipSettings& s) { return s.window.layout == ClipLibraryLayout::grid; },
        [](ClipSettings& s, bool on) {
            s.window.layout = on ? ClipLibraryLayout::grid : ClipLibraryLayout::list;
        },
        this, refreshers_, changer);
    layout->addRow(QString(), grid);
    return page;
}

QWidget* SettingsWindow::panelPage() {
    auto* page = new QWidget;
    auto* layout = form(page);
    auto changer = [this](const std::function<void(ClipSettings&)>& c) { change(c); };
    layout->addRow(tr("Open with:"), HARBEX_ENUM(ClipPanelTrigger, panel.trigger, triggerLabel));
    layout->addRow(tr("Size:"), HARBEX_ENUM(ClipPanelSize, panel.size, [](ClipPanelSize size) {
                       return QString::fromUtf8(label(size).data()) + " — " +
                              QString::fromUtf8(detail(size).data());
                   }));
    layout->addRow(tr("Opens:"),
                   HARBEX_ENUM(ClipPanelPosition, panel.position, [](ClipPanelPosition p) {
                       return QString::fromUtf8(label(p).data());
                   }));
    layout->addRow(tr("Show:"), HARBEX_BOOL(tr("The preview pane"), panel.showsPreview));
    layout->addRow(QString(), HARBEX_BOOL(tr("Application icons"), panel.showsAppIcons));
    layout->addRow(tr("Return:"),
                   HARBEX_BOOL(tr("Copies instead of pasting"), panel.returnCopiesOnly));
    layout->addRow(QString(), HARBEX_BOOL(tr("Close the panel after pasting"), closesAfterPasting));
    layout->addRow(QString(), HARBEX_BOOL(tr("Paste without formatting"), pastesPlainByDefault));
    layout->addRow(QString(), HARBEX_BOOL(tr("Remember the last filter"), remembersFilter));
    layout->addRow(tr("Paste stack:"), HARBEX_ENUM(ClipStackMode, panel.stackMode, stackLabel));
    return page;
}

QWidget* SettingsWindow::capturePage() {
    auto* page = new QWidget;
    auto* layout = form(page);
    auto changer = [this](const std::function<void(ClipSettings&)>& c) { change(c); };
    bool first = true;
    for (ClipKind kind : allCases<ClipKind>()) {
        auto* box = boolField(
            kindLabel(kind), [kind](const ClipSettings& s) { return s.keptKinds.contains(kind); },
            [kind](ClipSettings& s, bool on) {
                if (on) {
                    s.keptKinds.insert(kind);
                } else {
                    s.keptKinds.erase(kind);
                }
            },
            this, refreshers_, changer);
        layout->addRow(first ? tr("Keep:") : QString(), box);
        first = false;
    }
    layout->addRow(tr("Text:"), HARBEX_BOOL(tr("Recognise e-mail addresses, phone numbers, "
                                               "numbers and one-time codes"),
                                            window.recognisesDetails));
    layout->addRow(QString(),
                   HARBEX_BOOL(tr("Ignore copies that are only spaces"), window.ignoresSpacesOnly));
    auto* shortRow = new QWidget(page);
    auto* shortLayout = new QHBoxLayout(shortRow);
    shortLayout->setContentsMargins(0, 0, 0, 0);
    shortLayout->addWidget(HARBEX_BOOL(tr("Ignore copies shorter than"), ignoresShortCopies));
    auto* minimum = new QSpinBox(shortRow);
    minimum->setRange(0, 1000);
    minimum->setSuffix(tr(" characters"));
    connect(minimum, &QSpinBox::valueChanged, this, [this](int value) {
        change([&](ClipSettings& s) { s.window.minimumLength = value; });
    });
    refreshers_.push_back([minimum](const ClipSettings& s) {
        minimum->setValue(int(std::clamp<std::int64_t>(s.window.minimumLength, 0, 1000)));
        minimum->setEnabled(s.ignoresShortCopies);
    });
    shortLayout->addWidget(minimum);
    shortLayout->addStretch();
    layout->addRow(QString(), shortRow);
    layout->addRow(tr("Links:"),
                   HARBEX_BOOL(tr("Remove tracking parameters"), window.stripsTrackingOnCopy));
    layout->addRow(tr("Images:"),
                   HARBEX_ENUM(ClipImageKeeping, window.keepsImages, [](ClipImageKeeping k) {
                       return QString::fromUtf8(label(k).data());
                   }));
    auto* limit = new QSpinBox(page);
    limit->setRange(1, 500);
    limit->setSuffix(tr(" MB"));
    connect(limit, &QSpinBox::valueChanged, this, [this](int megabytes) {
        change([&](ClipSettings& s) { s.imageLimit = std::int64_t(megabytes) * 1'000'000; });
    });
    refreshers_.push_back([limit](const ClipSettings& s) {
        limit->setValue(int(std::clamp<std::int64_t>(s.imageLimit / 1'000'000, 1, 500)));
    });
    layout->addRow(tr("Largest image:"), limit);
    auto* textLimit = new QSpinBox(page);
    textLimit->setRange(1, 500);
    textLimit->setSuffix(tr(" MB"));
    connect(textLimit, &QSpinBox::valueChanged, this, [this](int megabytes) {
        change([&](ClipSettings& s) { s.textLimit = std::int64_t(megabytes) * 1'000'000; });
    });
    refreshers_.push_back([textLimit](const ClipSettings& s) {
        textLimit->setValue(int(std::clamp<std::int64_t>(s.textLimit / 1'000'000, 1, 500)));
    });
    layout->addRow(tr("Largest text:"), textLimit);
    layout->addRow(tr("Apps:"), HARBEX_BOOL(tr("Keep the clipboard when an app quits"),
                                            window.keepsClipboardOnQuit));
    auto* duty =
        note(tr("Another clipboard manager already keeps the clipboard when an app "
                "quits, so Harbex Clipboard leaves that to it."));
    refreshers_.push_back([duty, keepOnQuit = services_.keepOnQuit](const ClipSettings&) {
        duty->setVisible(keepOnQuit() == ClipKeepOnQuit::anotherManager);
    });
    layout->addRow(QString(), duty);
    return page;
}

QWidget* SettingsWindow::privacyPage() {
    auto* page = new QWidget;
    auto* layout = form(page);
    auto changer = [this](const std::function<void(ClipSettings&)>& c) { change(c); };
    layout->addRow(tr("Skip:"),
                   HARBEX_BOOL(tr("Copies from password managers"), skipPasswordManagers));
    layout->addRow(tr("Sensitive:"), HARBEX_BOOL(tr("Recognise passwords, keys and card "
                                                    "numbers, and hide them"),
                                                 detectSensitive));
    auto* lifetime = new QSpinBox(page);
    lifetime->setRange(1, 24 * 60);
    lifetime->setSuffix(tr(" minutes"));
    connect(lifetime, &QSpinBox::valueChanged, this, [this](int minutes) {
        change([&](ClipSettings& s) { s.sensitiveLifetime = minutes * 60.0; });
    });
    refreshers_.push_back([lifetime](const ClipSettings& s) {
        lifetime->setValue(int(std::clamp(s.sensitiveLifetime / 60.0, 1.0, 24.0 * 60)));
        lifetime->setEnabled(s.detectSensitive);
    });
    layout->addRow(tr("Forget them after:"), lifetime);

    auto* excluded = new QListWidget(page);
    excluded->setObjectName("excludedApps");
    excluded->setMinimumHeight(140);
    refreshers_.push_back([excluded](const ClipSettings& s) {
        excluded->clear();
        for (const std::string& id : s.excludedApps) excluded->addItem(QString::fromStdString(id));
    });
    auto* add = new QPushButton(tr("Add Application…"), page);
    auto* remove = new QPushButton(tr("Remove"), page);
    connect(add, &QPushButton::clicked, this, [this] {
        QStringList names;
        std::vector<std::string> ids;
        const auto& current = services_.settings->excludedApps;
        for (const auto& [id, name] : services_.applications
                                          ? services_.applications()
                                          : decltype(services_.applications()){}) {
            if (std::find(current.begin(), current.end(), id) != current.end()) continue;
            names << QString::fromStdString(name + "  (" + id + ")");
            ids.push_back(id);
        }
        if (names.isEmpty()) return;
        bool ok = false;
        const QString chosen = QInputDialog::getItem(
            this, tr("Add Application"), tr("Never keep copies from:"), names, 0, false, &ok);
        if (!ok) return;
        const auto index = names.indexOf(chosen);
        if (index < 0) return;
        change([&](ClipSettings& s) { s.excludedApps.push_back(ids[std::size_t(index)]); });
    });
    connect(remove, &QPushButton::clicked, this, [this, excluded] {
        const int row = excluded->currentRow();
        if (row < 0) return;
        change([&](ClipSettings& s) {
            if (std::size_t(row) < s.excludedApps.size())
                s.excludedApps.erase(s.excludedApps.begin() + row);
        });
    });
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(remove);
    buttons->addStretch();
    layout->addRow(tr("Never keep copies from:"), excluded);
    layout->addRow(QString(), buttons);
    return page;
}

QWidget* SettingsWindow::historyPage() {
    auto* page = new QWidget;
    auto* layout = form(page);
    auto changer = [this](const std::function<void(ClipSettings&)>& c) { change(c); };
    layout->addRow(tr("Keep copies for:"), HARBEX_ENUM(ClipRetention, retention, retentionLabel));
    auto* count = new QSpinBox(page);
    count->setRange(10, 100000);
    count->setSingleStep(100);
    connect(count, &QSpinBox::valueChanged, this,
            [this](int value) { change([&](ClipSettings& s) { s.maxItems = value; }); });
    refreshers_.push_back([count](const ClipSettings& s) {
        count->setValue(int(std::clamp<std::int64_t>(s.maxItems, 10, 100000)));
    });
    layout->addRow(tr("Keep at most:"), count);
    layout->addRow(tr("Pins:"), HARBEX_BOOL(tr("Clearing the history keeps pinned copies"),
                                            window.clearKeepsPins));
    auto* clear = new QPushButton(tr("Clear History…"), page);
    connect(clear, &QPushButton::clicked, this, [this] {
        if (services_.clearHistory) services_.clearHistory();
    });
    layout->addRow(QString(), clear);
    auto* storage = new QLabel(page);
    storage->setObjectName("storageBreakdown");
    storage->setTextFormat(Qt::PlainText);
    storageRefresher_ = [this, storage] {
        const ClipStorageUsage usage = measureStorage(services_.historyFolder);
        auto size = [](std::int64_t bytes) {
            return QString::fromStdString(formatByteCount(bytes));
        };
        auto files = [](std::int64_t count) {
            return count == 1 ? tr("1 file") : tr("%1 files").arg(count);
        };
        QStringList lines;
        lines << tr("History: %1").arg(size(usage.historyBytes));
        lines << tr("Images: %1 in %2").arg(size(usage.imageBytes), files(usage.imageCount));
        lines << tr("Thumbnails: %1").arg(size(usage.thumbnailBytes));
        if (usage.setAsideCount > 0) {
            lines << tr("Unreadable histories set aside: %1 in %2")
                         .arg(size(usage.setAsideBytes), files(usage.setAsideCount));
        }
        lines << tr("In all: %1").arg(size(usage.totalBytes()));
        storage->setText(lines.join("\n"));
    };
    storageRefresher_();
    layout->addRow(tr("Space used:"), storage);
    layout->addRow(tr("Stored in:"), note(QString::fromStdString(services_.historyFolder) + "\n" +
                                          tr("Encrypted with a key kept in your login keyring.")));
    return page;
}

QWidget* SettingsWindow::pinboardsPage() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(24, 20, 24, 20);
    layout->addWidget(note(tr("Pinboards keep copies together by topic. They never expire.")));
    auto* list = new QListWidget(page);
    layout->addWidget(list, 1);
    pinboardRefreshers_.push_back([this, list] {
        list->clear();
        for (const Pinboard& board : services_.pinboards.get()) {
            auto* item = new QListWidgetItem(QString::fromStdString(board.name) + "  —  " +
                                             tr("%n copies", nullptr, int(board.itemIDs.size())));
            item->setData(Qt::UserRole, QString::fromStdString(board.id.string()));
            list->addItem(item);
        }
    });
    auto selected = [this, list]() -> std::optional<Pinboard> {
        const int row = list->currentRow();
        const auto& boards = services_.pinboards.get();
        if (row < 0 || std::size_t(row) >= boards.size()) return std::nullopt;
        return boards[std::size_t(row)];
    };
    auto* add = new QPushButton(tr("New Pinboard…"), page);
    auto* rename = new QPushButton(tr("Rename…"), page);
    auto* remove = new QPushButton(tr("Delete"), page);
    connect(add, &QPushButton::clicked, this, [this] {
        bool ok = false;
        const QString name = QInputDialog::getText(this, tr("New Pinboard"), tr("Name:"),
                                                   QLineEdit::Normal, QString(), &ok)
                                 .trimmed();
        if (ok && !name.isEmpty() && services_.addPinboard)
            services_.addPinboard(name.toStdString());
    });
    connect(rename, &QPushButton::clicked, this, [this, selected] {
        auto board = selected();
        if (!board) return;
        bool ok = false;
        const QString name =
            QInputDialog::getText(this, tr("Rename Pinboard"), tr("Name:"), QLineEdit::Normal,
                                  QString::fromStdString(board->name), &ok)
                .trimmed();
        if (ok && !name.isEmpty() && services_.renamePinboard)
            services_.renamePinboard(board->id, name.toStdString());
    });
    connect(remove, &QPushButton::clicked, this, [this, selected] {
        if (auto board = selected(); board && services_.removePinboard)
            services_.removePinboard(board->id);
    });
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(add);
    buttons->addWidget(rename);
    buttons->addWidget(remove);
    buttons->addStretch();
    layout->addLayout(buttons);
    return page;
}

QWidget* SettingsWindow::shortcutsPage() {
    auto* page = new QWidget;
    auto* layout = form(page);
    struct Slot {
        ClipShortcutSlot slot;
        QString title;
        std::optional<ClipShortcut> ClipSettings::*plain;
        std::optional<ClipShortcut> ClipPanelSettings::*panel;
        std::optional<ClipShortcut> ClipWindowSettings::*window;
    };
    const Slot rows[] = {
        {ClipShortcutSlot::panel, tr("Open the panel:"), nullptr, &ClipPanelSettings::fallback,
         nullptr},
        {ClipShortcutSlot::mainWindow, tr("Open the library:"), &ClipSettings::libraryShortcut,
         nullptr, nullptr},
        {ClipShortcutSlot::pause, tr("Pause saving copies:"), nullptr, nullptr,
         &ClipWindowSettings::pauseShortcut},
    };
    for (const Slot& slot : rows) {
        auto field = [slot](ClipSettings& s) -> std::optional<ClipShortcut>& {
            if (slot.panel) return s.panel.*slot.panel;
            if (slot.window) return s.window.*slot.window;
            return s.*slot.plain;
        };
        auto* recorder = new ShortcutRecorder(
            slot.slot, [this] { return services_.settings.get(); }, page);
        recorder->setObjectName(QString("shortcut-") + enumName(slot.slot).data());
        connect(recorder, &ShortcutRecorder::shortcutChosen, this,
                [this, field](std::optional<ClipShortcut> chosen) {
                    change([&](ClipSettings& s) { field(s) = chosen; });
                });
        refreshers_.push_back([recorder, field](const ClipSettings& s) {
            ClipSettings copy = s;
            recorder->setShortcut(field(copy));
        });
        layout->addRow(slot.title, recorder);
    }
    layout->addRow(QString(), note(tr("Desktops that keep global shortcuts to themselves can run "
                                      "“harbex-clipboard --panel”, “--library” or “--pause” "
                                      "from their own keyboard settings.")));
    return page;
}

QWidget* SettingsWindow::aboutPage() {
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins(24, 28, 24, 20);
    auto* icon = new QLabel(page);
    icon->setPixmap(QIcon(":/harbex/app.harbexapps.clip.svg").pixmap(96, 96));
    layout->addWidget(icon, 0, Qt::AlignHCenter);
    auto* name = new QLabel(tr("Harbex Clipboard"), page);
    QFont font = name->font();
    font.setPointSizeF(font.pointSizeF() * 1.6);
    font.setBold(true);
    name->setFont(font);
    layout->addWidget(name, 0, Qt::AlignHCenter);
    layout->addWidget(
        new QLabel(tr("Version %1").arg(QCoreApplication::applicationVersion()), page), 0,
        Qt::AlignHCenter);
    auto* text =
        note(tr("Keeps what you copy, encrypted with a key from your login keyring, and "
                "pastes it back. Nothing leaves this computer."));
    text->setAlignment(Qt::AlignHCenter);
    layout->addWidget(text);
    layout->addStretch();
    return page;
}

#undef HARBEX_BOOL
#undef HARBEX_ENUM

}  // namespace harbex
