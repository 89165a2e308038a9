#pragma once

#include <QImage>
#include <QLabel>
#include <QPlainTextEdit>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <QWidget>

#include <optional>

#include "HarbexClip/Views/ClipPanelImages.hpp"
#include "HarbexClip/Views/ClipPanelPalette.hpp"
#include "HarbexClipCore/Panel/ClipPanelPreview.hpp"

namespace harbex {

// The big picture of one copy beside the list: wrapped text (fixed-width for code), the image
// fitted to the pane, a colour swatch with its text forms, the list of files, or a link with its
// title and address; a concealed copy shows why it is hidden. The details line sits at the
// bottom. It draws a ClipPanelPreview as it is. Main thread.
class ClipPanelPreviewPane final : public QWidget {
    Q_OBJECT

public:
    // `images` is observed and must outlive the pane.
    explicit ClipPanelPreviewPane(ClipPanelImages& images, QWidget* parent = nullptr);

    // Shows `preview`; nothing shown for no copy. Does no work when it is already showing it.
    void showPreview(const std::optional<ClipPanelPreview>& preview);
    void setPalette(const ClipPanelPalette& palette);

    // What is showing, for tests: the preview, its title, the text area's text, the details.
    const std::optional<ClipPanelPreview>& shown() const { return shown_; }
    QString titleText() const { return title_->text(); }
    QString bodyText() const;
    QString detailsText() const { return details_->text(); }
    // The tag naming a code copy's language; hidden when there is none.
    QLabel* languageLabel() const { return language_; }
    // The picture area's image (images) or colour (colours).
    const QImage& image() const { return image_; }
    QColor colour() const { return colour_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void paintPicture(QWidget* area);

    ClipPanelImages& images_;
    ClipPanelPalette palette_;
    std::optional<ClipPanelPreview> shown_;
    QLabel* title_;
    QLabel* language_;
    QStackedWidget* pages_;
    QPlainTextEdit* text_;
    QWidget* picture_;  // image or colour swatch, painted
    QLabel* lines_;     // colour forms, files, link address, hidden explanation
    QLabel* details_;
    QVBoxLayout* visualLayout_;
    QImage image_;
    QColor colour_;
};

}  // namespace harbex
