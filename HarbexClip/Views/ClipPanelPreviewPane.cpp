#include "HarbexClip/Views/ClipPanelPreviewPane.hpp"

#include <QEvent>
#include <QFileInfo>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

#include "HarbexClip/Views/ClipPanelGlyphs.hpp"

namespace harbex {

namespace {

QString qs(const std::string& text) { return QString::fromStdString(text); }

QString escaped(const std::string& text) { return qs(text).toHtmlEscaped(); }

}  // namespace

ClipPanelPreviewPane::ClipPanelPreviewPane(ClipPanelImages& images, QWidget* parent)
    : QWidget(parent), images_(images) {
    title_ = new QLabel(this);
    title_->setWordWrap(true);
    title_->setTextFormat(Qt::PlainText);
    QFont titleFont = font();
    titleFont.setPixelSize(15);
    titleFont.setBold(true);
    title_->setFont(titleFont);
    title_->setMaximumHeight(44);
    language_ = new QLabel(this);
    language_->setTextFormat(Qt::PlainText);
    QFont tagFont = font();
    tagFont.setPixelSize(11);
    language_->setFont(tagFont);
    language_->hide();

    pages_ = new QStackedWidget(this);
    text_ = new QPlainTextEdit(pages_);
    text_->setReadOnly(true);
    text_->setFrameShape(QFrame::NoFrame);
    text_->setLineWrapMode(QPlainTextEdit::WidgetWidth);
    text_->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    text_->setFocusPolicy(Qt::NoFocus);
    text_->setTextInteractionFlags(Qt::NoTextInteraction);
    text_->viewport()->setAutoFillBackground(false);
    text_->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);

    auto* visual = new QWidget(pages_);
    picture_ = new QWidget(visual);
    picture_->installEventFilter(this);
    picture_->setMinimumHeight(80);
    lines_ = new QLabel(visual);
    lines_->setWordWrap(true);
    lines_->setTextFormat(Qt::RichText);
    lines_->setAlignment(Qt::AlignTop | Qt::AlignLeft);
    lines_->setTextInteractionFlags(Qt::NoTextInteraction);
    auto* visualLayout = new QVBoxLayout(visual);
    visualLayout->setContentsMargins(0, 0, 0, 0);
    visualLayout->setSpacing(12);
    visualLayout->addWidget(picture_);
    visualLayout->addWidget(lines_, 1);
    visualLayout_ = visualLayout;
    pages_->addWidget(text_);
    pages_->addWidget(visual);

    details_ = new QLabel(this);
    details_->setWordWrap(true);
    QFont small = font();
    small.setPixelSize(11);
    details_->setFont(small);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(16, 12, 16, 12);
    layout->setSpacing(8);
    auto* heading = new QHBoxLayout;
    heading->setContentsMargins(0, 0, 0, 0);
    heading->setSpacing(8);
    heading->addWidget(title_, 1);
    heading->addWidget(language_, 0, Qt::AlignTop);
    layout->addLayout(heading);
    layout->addWidget(pages_, 1);
    layout->addWidget(details_);
}

void ClipPanelPreviewPane::setPalette(const ClipPanelPalette& palette) {
    palette_ = palette;
    QPalette qt = palette.qtPalette();
    QWidget::setPalette(qt);
    // Set on the title itself: it does not reliably take the pane's text colour, which left it
    // black on the dark panel.
    QPalette heading = qt;
    heading.setColor(QPalette::WindowText, palette.text);
    title_->setPalette(heading);
    QPalette soft = qt;
    soft.setColor(QPalette::WindowText, palette.secondaryText);
    details_->setPalette(soft);
    QColor tag = palette.secondaryText;
    tag.setAlphaF(0.16);
    language_->setStyleSheet(QString("background:%1; color:%2; border-radius:5px; padding:1px 6px;")
                                 .arg(tag.name(QColor::HexArgb), palette.secondaryText.name()));
    QPalette code = qt;
    code.setColor(QPalette::Base, Qt::transparent);
    text_->setPalette(code);
    picture_->update();
}

QString ClipPanelPreviewPane::bodyText() const {
    return pages_->currentWidget() == text_ ? text_->toPlainText() : lines_->text();
}

void ClipPanelPreviewPane::showPreview(const std::optional<ClipPanelPreview>& preview) {
    if (preview == shown_) return;
    shown_ = preview;
    image_ = QImage();
    colour_ = QColor();
    language_->setVisible(preview && preview->language);
    language_->setText(preview && preview->language ? qs(*preview->language) : QString());
    if (!preview) {
        title_->clear();
        text_->clear();
        lines_->clear();
        details_->clear();
        pages_->setCurrentWidget(text_);
        return;
    }
    using Kind = ClipPanelPreview::Kind;
    title_->setText(qs(preview->title).left(300));
    details_->setText(qs(preview->details));
    const QString secondary = palette_.secondaryText.name();
    switch (preview->kind) {
        case Kind::text: {
            QFont font = this->font();
            if (preview->isCode) font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
            font.setPixelSize(preview->isCode ? 12 : 13);
            text_->setFont(font);
            QString body = qs(preview->body);
            if (preview->isCut) body += QString::fromUtf8("\n…");
            text_->setPlainText(body);
            pages_->setCurrentWidget(text_);
            return;
        }
        case Kind::image:
            if (preview->image) image_ = images_.previewImage(preview->image->digest);
            lines_->clear();
            break;
        case Kind::colour: {
            if (preview->colour) {
                const auto& c = *preview->colour;
                colour_ = QColor::fromRgbF(float(c.r), float(c.g), float(c.b), float(c.a));
            }
            QString html;
            for (const std::string& form : preview->colourForms) {
                html += "<div style='margin-bottom:6px; font-family:monospace; font-size:13px'>" +
                        escaped(form) + "</div>";
            }
            lines_->setText(html);
            break;
        }
        case Kind::files: {
            QString html;
            for (const std::string& path : preview->files) {
                const QFileInfo info(qs(path));
                html += "<div style='margin-bottom:7px'><b>" + info.fileName().toHtmlEscaped() +
                        "</b><br><span style='color:" + secondary + "; font-size:11px'>" +
                        info.path().toHtmlEscaped() + "</span></div>";
            }
            lines_->setText(html);
            break;
        }
        case Kind::link: {
            QString html;  // the title line above already carries the page title
            html += "<p style='color:" + palette_.accent.name() + "; font-size:12px'>" +
                    escaped(preview->body) + "</p>";
            lines_->setText(html);
            break;
        }
        case Kind::hidden:
            lines_->setText("<p style='color:" + secondary + "'>" + escaped(preview->body) +
                            "</p>");
            break;
    }
    // The image takes the whole page; a swatch a band; the other marks a small square.
    const bool image = preview->kind == Kind::image;
    const int pictureHeight = image ? QWIDGETSIZE_MAX : preview->kind == Kind::colour ? 130 : 60;
    picture_->setMinimumHeight(image ? 80 : pictureHeight);
    picture_->setMaximumHeight(pictureHeight);
    picture_->setVisible(preview->kind != Kind::files);
    lines_->setVisible(!image);
    visualLayout_->setStretchFactor(picture_, image ? 1 : 0);
    pages_->setCurrentIndex(1);
    picture_->update();
}

bool ClipPanelPreviewPane::eventFilter(QObject* watched, QEvent* event) {
    if (watched == picture_ && event->type() == QEvent::Paint) {
        paintPicture(picture_);
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void ClipPanelPreviewPane::paintPicture(QWidget* area) {
    if (!shown_) return;
    QPainter painter(area);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    const QRectF bounds = QRectF(area->rect()).adjusted(1, 1, -1, -1);
    using Kind = ClipPanelPreview::Kind;
    switch (shown_->kind) {
        case Kind::image: {
            if (image_.isNull()) {
                panelglyph::kind(painter, QRectF(bounds.center() - QPointF(28, 28), QSizeF(56, 56)),
                                 ClipKind::image, palette_, ClipGlyphTone::normal);
                return;
            }
            // Fitted, never enlarged beyond its own pixels, drawn at the screen's density.
            const qreal ratio = area->devicePixelRatioF();
            QSizeF size = QSizeF(image_.size()) / ratio;
            size.scale(bounds.size().boundedTo(size), Qt::KeepAspectRatio);
            const QRectF target(bounds.center() - QPointF(size.width() / 2, size.height() / 2),
                                size);
            QPainterPath clip;
            clip.addRoundedRect(target, 8, 8);
            painter.setClipPath(clip);
            painter.drawImage(target, image_);
            return;
        }
        case Kind::colour: {
            const qreal side = std::min(bounds.width(), bounds.height());
            const QRectF square(bounds.left(), bounds.top(), std::min(bounds.width(), side * 1.6),
                                side);
            panelglyph::swatch(painter, square, colour_, palette_);
            return;
        }
        case Kind::hidden: {
            panelglyph::lock(painter, QRectF(bounds.left(), bounds.top(), 56, 56), palette_,
                             ClipGlyphTone::normal);
            return;
        }
        case Kind::link: {
            panelglyph::kind(painter, QRectF(bounds.left(), bounds.top(), 56, 56), ClipKind::link,
                             palette_, ClipGlyphTone::normal);
            return;
        }
        case Kind::text:
        case Kind::files: return;
    }
}

}  // namespace harbex
