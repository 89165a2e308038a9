#include "HarbexClip/Views/ClipPanel.hpp"

#include <gtest/gtest.h>

#include <QApplication>
#include <QBuffer>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>

#include <map>
#include <memory>

#include "HarbexClipCore/Panel/ClipCodeLanguage.hpp"
#include "HarbexClipCore/Testing/EngineRig.hpp"
#include "HarbexClipCore/Testing/MemoryDefaults.hpp"
#include "HarbexClipCore/Testing/MemoryFrontmost.hpp"
#include "HarbexClipCore/Testing/RecordingActivator.hpp"
#include "tests/Core/Panel/PanelTestSupport.hpp"

#include "tests/Support/OffscreenApplication.hpp"

namespace harbex {
namespace {

using paneltest::kNow;
using K = ClipPanelKey::Kind;
using PreviewKind = ClipPanelPreview::Kind;

const ClipTargetApp kEditor{4242, "org.gnome.TextEditor", "Text Editor"};

Bytes pngOf(const QImage& image) {
    QByteArray data;
    QBuffer buffer(&data);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return Bytes(data.begin(), data.end());
}

// A thumbnail: a sky over a hill.
Bytes picture(QColor sky, QColor hill) {
    QImage image(256, 170, QImage::Format_ARGB32_Premultiplied);
    image.fill(sky);
    QPainter(&image).fillRect(0, 110, 256, 60, hill);
    return pngOf(image);
}

ClipItem make(ClipContent content, std::string appID, std::string appName, Date date,
              ClipSensitivity sensitivity = ClipSensitivity::ordinary,
              std::vector<ClipDetail> details = {}) {
    return ClipItem::make(std::move(content), std::move(details),
                          ClipSource{std::move(appID), std::move(appName)}, date, sensitivity);
}

ClipContent text(std::string body, ClipKind kind = ClipKind::text) {
    ClipContent content;
    content.kind = kind;
    content.text = std::move(body);
    return content;
}

class ClipPanelTests : public ::testing::Test {
protected:
    static void SetUpTestSuite() { testing::offscreenApplication(); }

    ClipPanelTests()
        : rig(rigOptions()), clock(rig.clock), scheduler(rig.scheduler), engine(rig.start()) {}

    static testing::EngineRigOptions rigOptions() {
        testing::EngineRigOptions options;
        options.withStore = false;
        options.zone = "Europe/London";
        options.now = kNow;
        return options;
    }

    // A varied history: every kind, a pin, a concealed password, over three days.
    void SetUp() override {
        thumbnails["sunset"] = picture(QColor(0xf0, 0x8a, 0x5d), QColor(0x3a, 0x5a, 0x40));
        thumbnails["meadow"] = picture(QColor(0x5d, 0xa9, 0xf0), QColor(0x4c, 0x9a, 0x2a));

        ClipContent link =
            text("https://developer.mozilla.org/en-US/docs/Web/CSS/color", ClipKind::link);
        link.linkTitle = "color - CSS: Cascading Style Sheets | MDN";
        ClipContent image;
        image.kind = ClipKind::image;
        image.image = ClipImageInfo{"public.png", 2560, 1700, 1'840'000, "sunset"};
        ClipContent image2 = image;
        image2.image = ClipImageInfo{"public.png", 1280, 850, 420'000, "meadow"};
        ClipContent files;
        files.kind = ClipKind::file;
        files.filePaths = std::vector<std::string>{"/home/ada/Documents/Quarterly report.pdf",
                                                   "/home/ada/Documents/Budget 2024.ods"};
        ClipContent colour = text("#5E5CE6", ClipKind::color);
        colour.colorHex = "#5E5CE6";
        ClipContent colour2 = text("rgb(48, 209, 88)", ClipKind::color);
        colour2.colorHex = "#30D158";
        ClipContent rich =
            text("Meeting moved to Thursday at 10:00, room Ada Lovelace", ClipKind::richText);
        rich.rtf = Bytes{'{', '\\', 'r', 't', 'f', '1', '}'};

        items = {
            make(text("Thanks for the quick review! I’ll merge it after lunch."),
                 "org.gnome.TextEditor", "Text Editor", kNow - 60),
            make(link, "firefox", "Firefox", kNow - 300),
            make(image, "org.gnome.Screenshot", "Screenshot", kNow - 900),
            make(text("correct-horse-battery-staple"), "org.keepassxc.KeePassXC", "KeePassXC",
                 kNow - 1200, ClipSensitivity::sensitive),
            make(text("fn main() {\n    println!(\"hello\");\n}", ClipKind::code), "code",
                 "Visual Studio Code", kNow - 1800),
            make(colour, "firefox", "Firefox", kNow - 3600),
            make(files, "org.gnome.Nautilus", "Files", kNow - 86400),
            make(rich, "firefox", "Firefox", kNow - 86400 - 600),
            make(colour2, "code", "Visual Studio Code", kNow - 86400 - 1200),
            make(image2, "firefox", "Firefox", kNow - 2 * 86400),
            make(text("git rebase -i HEAD~3"), "org.gnome.TextEditor", "Text Editor",
                 kNow - 2 * 86400 - 60),
        };
        rig.seed(items);
        ASSERT_TRUE(engine.pin(items[10].id));  // the git command, pinned
    }

    void start(ClipAppearance appearance = ClipAppearance::light,
               ClipPanelPosition position = ClipPanelPosition::centre,
               ClipPanelSize size = ClipPanelSize::regular) {
        ClipSettings settings = engine.settings().get();
        settings.window.appearance = appearance;
        settings.panel.position = position;
        settings.panel.size = size;
        engine.updateSettings(settings);
        ClipPanelModel::Options options;
        options.calendar = paneltest::london();
        options.locale = "en_GB";
        model = std::make_unique<ClipPanelModel>(engine, nowFunction(clock),
                                                 scheduleFunction(scheduler), options);
        model->languages = ClipCodeLanguage::knownNames();
        system.activateOther(kEditor);
        focus = std::make_unique<ClipPanelFocus>(system, activator, kPanelFocusSettle,
                                                 scheduleFunction(scheduler));
        ClipPanelServices services;
        services.readThumbnail = [this](const std::string& name) -> std::optional<Bytes> {
            ++thumbnailReads;
            const auto found = thumbnails.find(name);
            if (found == thumbnails.end()) return std::nullopt;
            return found->second;
        };
        services.defaults = &defaults;
        services.problem = &engine.problem();
        panel = std::make_unique<ClipPanel>(
            *model, *focus, [this] { return engine.settings().get(); }, services);
        panel->present();
    }

    // Sends one key press to the search field, as typing into the panel does.
    void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier, QString text = {}) {
        if (text.isEmpty() && key >= Qt::Key_Space && key < Qt::Key_Delete &&
            !(modifiers & Qt::ControlModifier)) {
            text = QChar(key).toLower();
        }
        QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
        QCoreApplication::sendEvent(panel->searchField(), &event);
    }

    void type(const QString& text) {
        for (const QChar c : text) press(c.toUpper().unicode(), Qt::NoModifier, QString(c));
    }

    // The adapter's rows as the list draws them: "# Header" or the title.
    QStringList listed() const {
        QStringList out;
        const ClipPanelListModel* rows = panel->rows();
        for (int i = 0; i < rows->rowCount(); ++i) {
            const QModelIndex index = rows->index(i);
            const bool header = index.data(ClipPanelListModel::isHeaderRole).toBool();
            out << (header ? "# " : "") + index.data(Qt::DisplayRole).toString();
        }
        return out;
    }

    QString selectedTitle() const {
        const int row = panel->rows()->selectedRow();
        return row < 0 ? QString() : panel->rows()->index(row).data(Qt::DisplayRole).toString();
    }

    void clickTab(int index) {
        const QPoint at = panel->filterBar()->tabRect(index).center();
        QMouseEvent event(QEvent::MouseButtonPress, at, panel->filterBar()->mapToGlobal(at),
                          Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QCoreApplication::sendEvent(panel->filterBar(), &event);
    }

    void selectTitled(const std::string& title) {
        for (const ClipPanelRow& row : model->rows()) {
            if (row.item && (row.item->title() == title)) {
                model->select(row.item->id);
                return;
            }
        }
        FAIL() << "no row " << title;
    }

    // Writes the panel, drawn at `ratio` device pixels per point, into the build folder.
    QString screenshot(const QString& name, qreal ratio = 1) {
        QPixmap pixmap(panel->size() * ratio);
        pixmap.setDevicePixelRatio(ratio);
        pixmap.fill(Qt::transparent);
        panel->render(&pixmap);
        const QString path = QString(HARBEX_BINARY_DIR) + "/" + name;
        EXPECT_TRUE(pixmap.save(path)) << path.toStdString();
        return path;
    }

    testing::EngineRig rig;
    FixedClock& clock;
    ManualScheduler& scheduler;
    ClipEngine& engine;
    MemoryFrontmost system;
    RecordingActivator activator;
    MemoryDefaults defaults;
    std::map<std::string, Bytes> thumbnails;
    int thumbnailReads = 0;
    std::vector<ClipItem> items;
    std::unique_ptr<ClipPanelModel> model;
    std::unique_ptr<ClipPanelFocus> focus;
    std::unique_ptr<ClipPanel> panel;
};

TEST_F(ClipPanelTests, TheListShowsTheModelsGroupsAndEachFilterTabNarrowsIt) {
    start();
    struct Case {
        ClipFilter filter;
        QStringList rows;
    };
    const Case cases[] = {
        {ClipFilter::links, {"# Today", "color - CSS: Cascading Style Sheets | MDN"}},
        {ClipFilter::images,
         {"# Today", "Image 2560 × 1700", "# Earlier this week", "Image 1280 × 850"}},
        {ClipFilter::files, {"# Yesterday", "Quarterly report.pdf and 1 more"}},
        {ClipFilter::colours, {"# Today", "#5E5CE6", "# Yesterday", "#30D158"}},
        {ClipFilter::code, {"# Today", "fn main() {"}},
        {ClipFilter::pinned, {"# Pinned", "git rebase -i HEAD~3"}},
        {ClipFilter::text,
         {"# Pinned", "git rebase -i HEAD~3", "# Today",
          "Thanks for the quick review! I’ll merge it after lunch.", "Sensitive, hidden",
          "# Yesterday", "Meeting moved to Thursday at 10:00, room Ada Lovelace"}},
    };
    constexpr auto kFilters = allCases<ClipFilter>();
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(enumName(c.filter)));
        clickTab(int(std::ranges::find(kFilters, c.filter) - kFilters.begin()));
        EXPECT_EQ(model->filter(), c.filter);
        EXPECT_EQ(panel->filterBar()->tabs().at(panel->filterBar()->current()),
                  QString::fromUtf8(ClipPanelText::filterTitle(c.filter).data()));
        EXPECT_EQ(listed(), c.rows);
        EXPECT_EQ(panel->rows()->rowCount(), int(model->rows().size()));
    }
    clickTab(0);
    EXPECT_EQ(model->filter(), ClipFilter::all);
    EXPECT_EQ(listed().size(), 11 + 4) << "eleven copies under four headers";
    EXPECT_EQ(listed().front(), "# Pinned");
}

TEST_F(ClipPanelTests, KeysGoThroughTheRouterToTheModel) {
    start();
    ASSERT_EQ(selectedTitle(), "git rebase -i HEAD~3");
    press(Qt::Key_Down);
    EXPECT_EQ(selectedTitle(), "Thanks for the quick review! I’ll merge it after lunch.");
    press(Qt::Key_Down, Qt::ShiftModifier);
    EXPECT_EQ(selectedTitle(), "#5E5CE6") << "shift-down moves five";
    press(Qt::Key_Up);
    EXPECT_EQ(selectedTitle(), "fn main() {");

    press(Qt::Key_Tab);  // the next filter, whose only copy takes the selection
    EXPECT_EQ(model->filter(), ClipFilter::pinned);
    EXPECT_EQ(selectedTitle(), "git rebase -i HEAD~3");
    EXPECT_EQ(panel->filterBar()->current(), 1);
    press(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(model->filter(), ClipFilter::all);

    press(Qt::Key_K, Qt::ControlModifier);
    EXPECT_EQ(model->mode(), ClipPanelMode::actions);
    EXPECT_TRUE(panel->actionList()->isVisibleTo(panel.get()));
    EXPECT_FALSE(panel->list()->isVisibleTo(panel.get()));
    EXPECT_EQ(panel->filterBar()->tabs().front(), "All actions");
    EXPECT_EQ(panel->actionRows()->rowCount(), int(model->actions().size()));
    EXPECT_EQ(panel->actionRows()->selectedRow(), 0);
    press(Qt::Key_Down);
    EXPECT_EQ(panel->actionRows()->selectedRow(), 1);
    press(Qt::Key_Tab);  // the next action group
    EXPECT_EQ(model->actionCategory(), ClipActionCategory::paste);
    EXPECT_EQ(panel->filterBar()->current(), 1);
    press(Qt::Key_Escape);
    EXPECT_EQ(model->mode(), ClipPanelMode::browse);
    EXPECT_TRUE(panel->list()->isVisibleTo(panel.get()));
    EXPECT_EQ(selectedTitle(), "git rebase -i HEAD~3");

    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_TRUE(panel->rows()->look(panel->rows()->selectedRow()).isStacked);
    EXPECT_EQ(panel->noticeLabel()->text(), "Added to the paste stack");
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_FALSE(panel->rows()->look(panel->rows()->selectedRow()).isStacked);
}

TEST_F(ClipPanelTests, TypingSearchesAndReturnPastesIntoTheFrontApplication) {
    start();
    type("rebase");
    EXPECT_EQ(model->query(), "rebase");
    EXPECT_EQ(listed(), (QStringList{"# Pinned", "git rebase -i HEAD~3"}));
    press(Qt::Key_Escape);
    EXPECT_EQ(model->query(), "") << "escape clears the query first";
    EXPECT_EQ(panel->searchField()->text(), "");
    EXPECT_TRUE(panel->isVisible());
    press(Qt::Key_Down);
    press(Qt::Key_Return);
    ASSERT_EQ(rig.activator.requests.size(), 1u);
    EXPECT_EQ(rig.activator.requests.front().pid, kEditor.pid);
    EXPECT_FALSE(panel->isVisible()) << "closes after pasting";
    scheduler.advance(0.2);
    EXPECT_EQ(rig.typer.count, 1);
    EXPECT_EQ(engine.library().items.front().text,
              "Thanks for the quick review! I’ll merge it after lunch.");
}

// The pane shows each kind of copy; a code copy's language is tagged on its row and the pane.
TEST_F(ClipPanelTests, ThePreviewShowsEachKindOfCopyAndCodeItsLanguage) {
    start();
    struct Case {
        std::string title;
        PreviewKind kind;
        QString body;  // a part of what the pane shows
        QString details;
        QString language;  // empty: no tag
    };
    const Case cases[] = {
        {"fn main() {", PreviewKind::text, "println!(\"hello\");", "Visual Studio Code · 4 words",
         "Rust"},
        {"Thanks for the quick review! I’ll merge it after lunch.", PreviewKind::text, "merge",
         "Text Editor", ""},
        {"Image 2560 × 1700", PreviewKind::image, "", "Screenshot · 2560 × 1700 · 1.8 MB", ""},
        {"#5E5CE6", PreviewKind::colour, "rgb(94, 92, 230)", "Firefox · Colour", ""},
        {"Sensitive, hidden", PreviewKind::hidden, "looked like a password", "KeePassXC", ""},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.title);
        // Hidden rows have no title of their own to find them by.
        if (c.kind == PreviewKind::hidden) {
            model->select(items[3].id);
        } else {
            selectTitled(c.title);
        }
        const auto& shown = panel->previewPane()->shown();
        ASSERT_TRUE(shown);
        EXPECT_EQ(shown->kind, c.kind);
        EXPECT_EQ(panel->previewPane()->titleText(), QString::fromStdString(c.title));
        EXPECT_TRUE(panel->previewPane()->bodyText().contains(c.body))
            << panel->previewPane()->bodyText().toStdString();
        EXPECT_TRUE(panel->previewPane()->detailsText().startsWith(c.details))
            << panel->previewPane()->detailsText().toStdString();
        EXPECT_FALSE(panel->previewPane()->bodyText().contains("correct-horse"));
        const int row = panel->rows()->selectedRow();
        ASSERT_GE(row, 0);
        const std::optional<std::string>& tagged = panel->rows()->look(row).language;
        EXPECT_EQ(tagged ? QString::fromStdString(*tagged) : QString(), c.language);
        QLabel* label = panel->previewPane()->languageLabel();
        EXPECT_EQ(label->isVisibleTo(panel.get()), !c.language.isEmpty());
        EXPECT_EQ(label->isVisibleTo(panel.get()) ? label->text() : QString(), c.language);
    }
    selectTitled("Image 2560 × 1700");
    EXPECT_EQ(panel->previewPane()->image().size(), QSize(256, 170))
        << "without the stored image the thumbnail stands in";
    selectTitled("#5E5CE6");
    EXPECT_EQ(panel->previewPane()->colour(), QColor(0x5e, 0x5c, 0xe6));
    selectTitled("fn main() {");
    screenshot("panel-code-language-light.png");
}

TEST_F(ClipPanelTests, ThePreviewPaneFollowsTheSettingsAndSpaceEnlargesIt) {
    start();
    EXPECT_TRUE(panel->previewPane()->isVisibleTo(panel.get()));
    ClipSettings settings = engine.settings().get();
    settings.panel.size = ClipPanelSize::compact;
    engine.updateSettings(settings);
    panel->present();
    EXPECT_FALSE(panel->previewPane()->isVisibleTo(panel.get()));
    EXPECT_EQ(panel->width(), ClipPanelPlacement::size(ClipPanelSize::compact).width);
    press(Qt::Key_Space, Qt::NoModifier, " ");
    EXPECT_TRUE(panel->isQuickLookOpen());
    EXPECT_TRUE(panel->previewPane()->isVisibleTo(panel.get()));
    EXPECT_FALSE(panel->list()->isVisibleTo(panel.get()));
    press(Qt::Key_Escape);
    EXPECT_FALSE(panel->isQuickLookOpen());
    EXPECT_TRUE(panel->isVisible()) << "escape closed the preview, not the panel";
}

TEST_F(ClipPanelTests, AnActionChosenByKeysIsCarriedOutAndItsNoticeFades) {
    start();
    press(Qt::Key_K, Qt::ControlModifier);
    type("copy");
    EXPECT_EQ(model->actionQuery(), "copy");
    ASSERT_EQ(panel->actionRows()->rowCount(), 1);
    EXPECT_EQ(panel->actionRows()->index(0).data(Qt::DisplayRole).toString(), "Copy");
    press(Qt::Key_Return);
    EXPECT_EQ(model->mode(), ClipPanelMode::browse);
    EXPECT_EQ(panel->searchField()->text(), "") << "the field shows the copies' query again";
    EXPECT_TRUE(panel->noticeLabel()->isVisibleTo(panel.get()));
    EXPECT_EQ(panel->noticeLabel()->text(), "Copied, press Ctrl+V");
    const auto written = rig.pasteboard.contents("public.utf8-plain-text");
    ASSERT_TRUE(written);
    EXPECT_EQ(std::string(written->begin(), written->end()), "git rebase -i HEAD~3");

    scheduler.advance(model->settleDelay() + 0.1);
    EXPECT_EQ(model->notice(), std::nullopt);
    QElapsedTimer waited;
    waited.start();
    while (panel->noticeLabel()->isVisibleTo(panel.get()) && waited.elapsed() < 3000) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }
    EXPECT_FALSE(panel->noticeLabel()->isVisibleTo(panel.get())) << "faded out and hidden";
}

TEST_F(ClipPanelTests, ThePanelOpensWhereItWasLastEvenAfterARestart) {
    defaults.setString(ClipPanelPlacement::kLastOriginKey, "40,60");
    // Compact, so that it fits the test screen wherever it was.
    start(ClipAppearance::light, ClipPanelPosition::whereItWas, ClipPanelSize::compact);
    EXPECT_EQ(panel->pos(), QPoint(40, 60));
    panel->move(24, 30);
    panel->dismiss(ClipPanelFocus::Close::dismissed);
    EXPECT_EQ(defaults.string(ClipPanelPlacement::kLastOriginKey), "24,30");
    panel.reset();  // a new panel, as after a restart, reads the place back
    start(ClipAppearance::light, ClipPanelPosition::whereItWas, ClipPanelSize::compact);
    EXPECT_EQ(panel->pos(), QPoint(24, 30));
}

TEST_F(ClipPanelTests, PicturesAreLoadedOnceAndKeptForRepaints) {
    start();
    (void)panel->grab();
    const int reads = thumbnailReads;
    EXPECT_GE(reads, 1) << "the screenshot's thumbnail was read when its row was painted";
    const int loads = panel->images().loads();
    (void)panel->grab();
    model->handle(K::down);
    (void)panel->grab();
    EXPECT_EQ(thumbnailReads, reads);
    EXPECT_EQ(panel->images().loads(), loads);
}

TEST_F(ClipPanelTests, TheEnginesProblemStandsAtTheTopWhileThereIsOne) {
    struct Case {
        ClipAppearance appearance;
        ProblemBanner::Shade shade;
        const char* screenshot;
    };
    const Case cases[] = {
        {ClipAppearance::light, ProblemBanner::Shade::light, "panel-problem-light.png"},
        {ClipAppearance::dark, ProblemBanner::Shade::dark, "panel-problem-dark.png"},
    };
    // The longest message the engine shows, to see it wrap.
    const std::string message =
        "Harbex Clipboard can’t read its key from the keychain yet, so your history stays closed "
        "for now and nothing new is kept. It tries again every half minute.";
    for (const Case& c : cases) {
        SCOPED_TRACE(c.screenshot);
        panel.reset();
        engine.problem().set(std::nullopt);
        start(c.appearance);
        ProblemBanner* banner = panel->problemBanner();
        ASSERT_NE(banner, nullptr);
        EXPECT_FALSE(banner->isVisibleTo(panel.get()));

        engine.problem().set(message);
        EXPECT_TRUE(banner->isVisibleTo(panel.get()));
        EXPECT_EQ(banner->text().toStdString(), message);
        EXPECT_EQ(banner->shade(), c.shade);
        EXPECT_EQ(banner->focusPolicy(), Qt::NoFocus) << "the search field keeps the keys";
        panel->layout()->activate();
        EXPECT_LT(banner->geometry().bottom(), panel->searchField()->geometry().top())
            << "the problem stands above the search field";
        const QImage written(screenshot(c.screenshot));
        // Past the box's own margin (12 across, 10 down), above the text.
        const QPoint inside = banner->geometry().topLeft() + QPoint(16, 12);
        EXPECT_EQ(ProblemBanner::shadeFor(panel->palette()), c.shade);
        EXPECT_NE(written.pixelColor(inside).rgb(), panel->colours().background.rgb())
            << "the banner has its own fill";

        engine.problem().set(std::nullopt);
        EXPECT_FALSE(banner->isVisibleTo(panel.get()));
    }
}

TEST_F(ClipPanelTests, ScreenshotsOfAVariedHistory) {
    struct Case {
        ClipAppearance appearance;
        const char* name;
        qreal ratio;
        bool actions;
    };
    const Case cases[] = {
        {ClipAppearance::light, "panel-light.png", 1, false},
        {ClipAppearance::dark, "panel-dark.png", 1, false},
        {ClipAppearance::light, "panel-light@2x.png", 2, false},
        {ClipAppearance::dark, "panel-actions-dark.png", 1, true},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        panel.reset();
        start(c.appearance);
        EXPECT_EQ(panel->colours().isDark, c.appearance == ClipAppearance::dark);
        press(Qt::Key_Down);
        press(Qt::Key_Down);  // the link
        if (c.actions) {
            model->select(items[0].id);
            press(Qt::Key_K, Qt::ControlModifier);
            type("upper");
        }
        const QString path = screenshot(c.name, c.ratio);
        const QImage written(path);
        EXPECT_EQ(written.size(), panel->size() * c.ratio);
        // The body is the palette's background, not left blank.
        EXPECT_EQ(written.pixelColor(written.width() / 2, 3).rgb(),
                  panel->colours().background.rgb());
    }
}

}  // namespace
}  // namespace harbex
