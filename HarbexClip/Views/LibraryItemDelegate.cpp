#include "HarbexClip/Views/LibraryItemDelegate.hpp"

#include <QDateTime>
#include <QPainter>
#include <QPainterPath>
#include <QPixmapCache>
#include <QScrollBar>

#include "HarbexClip/Views/KindGlyphs.hpp"
#include "HarbexClip/Views/LibraryGlyphs.hpp"
#include "HarbexClip/Views/LibraryListModel.hpp"
#include "HarbexClipCore/Text/ColorParser.hpp"

namespace harbex {
namespace {

constexpr double kRadius = 8;

const LibraryListModel* listModel(const QModelIndex& index) {
    return qobject_cast<const LibraryListModel*>(index.model());
}

std::optional<QColor> swatchOf(const ClipItem& item) {
    if (item.kind != ClipKind::color) return std::nullopt;
    const std::optional<RGBA> rgba =
        ColorParser::parse(item.colorHex ? *item.colorHex : item.text.value_or(""));
    if (!rgba) return std::nullopt;
    return QColor::fromRgbF(float(rgba->r), float(rgba->g), float(rgba->b), float(rgba->a));
}

// A colour between `a` and `b`; `t` is b's share.
QColor mix(const QColor& a, const QColor& b, double t) {
    return QColor::fromRgbF(float(a.redF() * (1 - t) + b.redF() * t),
                            float(a.greenF() * (1 - t) + b.greenF() * t),
                            float(a.blueF() * (1 - t) + b.blueF() * t));
}

// Scales `image` to cover `size` device-independent pixels at `ratio`, cropping the overflow,
// cached so that scrolling does not scale again.
QPixmap covering(const QString& digest, const QImage& image, QSize size, qreal ratio) {
    const QSize pixels = size * ratio;
    const QString key = QStringLiteral("harbex-thumb:%1:%2x%3")
                            .arg(digest)
                            .arg(pixels.width())
                            .arg(pixels.height());
    QPixmap pixmap;
    if (QPixmapCache::find(key, &pixmap)) return pixmap;
    const QImage scaled =
        image.scaled(pixels, Qt::KeepAspectRatioByExpanding, Qt::SmoothTransformation);
    const QRect crop((scaled.width() - pixels.width()) / 2, (scaled.height() - pixels.height()) / 2,
                     pixels.width(), pixels.height());
    pixmap = QPixmap::fromImage(scaled.copy(crop));
    pixmap.setDevicePixelRatio(ratio);
    QPixmapCache::insert(key, pixmap);
    return pixmap;
}

}  // namespace

LibraryItemDelegate::LibraryItemDelegate(QListView& view, LibraryThumbnails& thumbnails,
                                         LibraryAppIcons& icons)
    : QStyledItemDelegate(&view), view_(view), thumbnails_(thumbnails), icons_(icons) {}

QSize LibraryItemDelegate::sizeHint(const QStyleOptionViewItem&, const QModelIndex& index) const {
    const LibraryListModel* model = listModel(index);
    // Rows and headings span the viewport; in the grid a heading still takes a line of its own.
    const int width = std::max(120, view_.viewport()->width() - 2 * view_.spacing() - 2);
    if (!model || model->isHeading(index.row())) return {width, kHeadingHeight};
    if (layout_ == Layout::grid) {
        // As many tiles as fit, widened to share the row's spare room.
        // The view puts the spacing between tiles as well, so each tile leaves room for it.
        const int gap = 2 * view_.spacing() + 1;
        const int columns = std::max(1, width / (kTileSize.width() + gap));
        return {width / columns - gap, kTileSize.height()};
    }
    return {width, kRowHeight};
}

void LibraryItemDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
    const LibraryListModel* model = listModel(index);
    if (!model) return;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::TextAntialiasing);
    if (model->isHeading(index.row())) {
        paintHeading(*painter, option, index.data(Qt::DisplayRole).toString());
    } else if (const ClipItem* item = model->item(index.row())) {
        const bool pinned = model->isPinned(item->id);
        layout_ == Layout::grid ? paintTile(*painter, option, *item, pinned)
                                : paintRow(*painter, option, *item, pinned);
    }
    painter->restore();
}

void LibraryItemDelegate::paintHeading(QPainter& painter, const QStyleOptionViewItem& option,
                                       const QString& text) const {
    QFont font = option.font;
    font.setBold(true);
    font.setPointSizeF(font.pointSizeF() * 0.92);
    painter.setFont(font);
    // Headings are not selectable, which would draw them in the disabled colours.
    painter.setPen(option.palette.color(QPalette::Active, QPalette::PlaceholderText));
    const QRect box = option.rect.adjusted(10, 0, -10, -4);
    painter.drawText(box, Qt::AlignLeft | Qt::AlignBottom, text.toUpper());
}

void LibraryItemDelegate::paintRow(QPainter& painter, const QStyleOptionViewItem& option,
                                   const ClipItem& item, bool pinned) const {
    const QRectF rect = QRectF(option.rect).adjusted(4, 1, -4, -1);
    const bool selected = option.state & QStyle::State_Selected;
    const bool hovered = option.state & QStyle::State_MouseOver;
    const QPalette& palette = option.palette;
    if (selected || hovered) {
        QColor fill = palette.color(QPalette::Highlight);
        if (!selected) fill.setAlphaF(0.12f);
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill);
        painter.drawRoundedRect(rect, 6, 6);
    }
    const QColor text =
        selected ? palette.color(QPalette::HighlightedText) : palette.color(QPalette::Text);
    const QColor secondary = selected ? mix(text, palette.color(QPalette::Highlight), 0.3)
                                      : palette.color(QPalette::PlaceholderText);

    const double side = rect.height() - 14;
    const QRectF preview(rect.left() + 8, rect.center().y() - side / 2, side, side);
    paintPreview(painter, preview, item, option, false);

    // Right: the application and the time, and the pin under them.
    const QString time = timeText(item);
    QFont small = option.font;
    small.setPointSizeF(small.pointSizeF() * 0.86);
    const QFontMetricsF smallMetrics(small);
    const double timeWidth = smallMetrics.horizontalAdvance(time);
    const double right = rect.right() - 10;
    const QRectF appBox(right - 16, rect.top() + 9, 16, 16);
    paintApp(painter, appBox, item, option);
    painter.setFont(small);
    painter.setPen(secondary);
    painter.drawText(QRectF(right - 16 - 6 - timeWidth, rect.top() + 8, timeWidth + 1, 18),
                     Qt::AlignRight | Qt::AlignVCenter, time);
    if (pinned) {
        LibraryGlyphs::paintMark(painter, QRectF(right - 13, rect.bottom() - 22, 12, 12),
                                 LibraryGlyphs::Mark::pinned,
                                 selected ? text : LibraryGlyphs::boardColor("orange"));
    }

    // Middle: the title and its second line.
    const double left = preview.right() + 12;
    const double textRight = right - 16 - 12 - timeWidth;
    QFont titleFont = option.font;
    titleFont.setWeight(QFont::DemiBold);
    painter.setFont(titleFont);
    painter.setPen(text);
    const QFontMetricsF titleMetrics(titleFont);
    const QString title = LibraryListModel::titleOf(item).simplified();
    painter.drawText(QRectF(left, rect.top() + 8, textRight - left, titleMetrics.height()),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     titleMetrics.elidedText(title, Qt::ElideRight, textRight - left));
    painter.setFont(small);
    painter.setPen(secondary);
    // A hidden copy does not tell even its length.
    QString second = item.isSensitive ? QString() : QString::fromStdString(item.subtitle());
    if (item.appName) {
        const QString app = QString::fromStdString(*item.appName);
        second = second.isEmpty() ? app : second + QStringLiteral("  ·  ") + app;
    }
    painter.drawText(QRectF(left, rect.bottom() - 8 - smallMetrics.height(), right - left - 20,
                            smallMetrics.height()),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     smallMetrics.elidedText(second, Qt::ElideRight, right - left - 20));
}

void LibraryItemDelegate::paintTile(QPainter& painter, const QStyleOptionViewItem& option,
                                    const ClipItem& item, bool pinned) const {
    const QRectF card = QRectF(option.rect).adjusted(5, 5, -5, -5);
    const bool selected = option.state & QStyle::State_Selected;
    const bool hovered = option.state & QStyle::State_MouseOver;
    const QPalette& palette = option.palette;
    const QColor base = palette.color(QPalette::Base);
    const QColor window = palette.color(QPalette::Window);
    const bool dark = base.lightnessF() < 0.5;
    const QColor cardFill = dark ? base.lighter(135) : base;
    QColor border = dark ? base.lighter(180) : window.darker(112);
    if (hovered) border = mix(border, palette.color(QPalette::Highlight), 0.4);
    if (selected) border = palette.color(QPalette::Highlight);
    painter.setPen(QPen(border, selected ? 2.0 : 1.0));
    painter.setBrush(cardFill);
    painter.drawRoundedRect(card, kRadius + 2, kRadius + 2);

    const QRectF preview(card.left() + 6, card.top() + 6, card.width() - 12, 100);
    paintPreview(painter, preview, item, option, true);
    if (pinned) {
        const QRectF badge(preview.right() - 22, preview.top() + 4, 18, 18);
        painter.setPen(Qt::NoPen);
        painter.setBrush(QColor(0, 0, 0, 90));
        painter.drawEllipse(badge);
        LibraryGlyphs::paintMark(painter, badge.adjusted(3, 3, -3, -3), LibraryGlyphs::Mark::pinned,
                                 Qt::white);
    }

    const QColor text = palette.color(QPalette::Text);
    const QColor secondary = palette.color(QPalette::PlaceholderText);
    QFont titleFont = option.font;
    titleFont.setWeight(QFont::DemiBold);
    titleFont.setPointSizeF(titleFont.pointSizeF() * 0.95);
    const QFontMetricsF titleMetrics(titleFont);
    const double textLeft = card.left() + 10;
    const double textWidth = card.width() - 20;
    const double titleTop = preview.bottom() + 8;
    painter.setFont(titleFont);
    painter.setPen(text);
    painter.drawText(QRectF(textLeft, titleTop, textWidth, titleMetrics.height()),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     titleMetrics.elidedText(LibraryListModel::titleOf(item).simplified(),
                                             Qt::ElideRight, textWidth));
    QFont small = option.font;
    small.setPointSizeF(small.pointSizeF() * 0.82);
    const QFontMetricsF smallMetrics(small);
    const double lineTop = titleTop + titleMetrics.height() + 3;
    const QRectF appBox(textLeft, lineTop + (smallMetrics.height() - 14) / 2, 14, 14);
    paintApp(painter, appBox, item, option);
    painter.setFont(small);
    painter.setPen(secondary);
    const QString line =
        (item.isSensitive ? QString() : QString::fromStdString(item.subtitle()) + " · ") +
        timeText(item);
    painter.drawText(QRectF(appBox.right() + 6, lineTop, textWidth - 20, smallMetrics.height()),
                     Qt::AlignLeft | Qt::AlignVCenter,
                     smallMetrics.elidedText(line, Qt::ElideRight, textWidth - 20));
}

void LibraryItemDelegate::paintPreview(QPainter& painter, const QRectF& box, const ClipItem& item,
                                       const QStyleOptionViewItem& option, bool large) const {
    const double radius = large ? kRadius : 7;
    QPainterPath shape;
    shape.addRoundedRect(box, radius, radius);
    const bool dark = option.palette.color(QPalette::Base).lightnessF() < 0.5;
    const QColor tint = kindglyph::tint(item.kind, dark);
    painter.save();
    painter.setClipPath(shape);

    if (const std::optional<QColor> swatch = swatchOf(item)) {
        painter.fillRect(box, *swatch);
        if (large && item.colorHex) {
            QFont font = option.font;
            font.setFamily(QStringLiteral("monospace"));
            font.setPointSizeF(font.pointSizeF() * 0.95);
            painter.setFont(font);
            painter.setPen(LibraryGlyphs::onColor(*swatch));
            painter.drawText(box, Qt::AlignCenter, QString::fromStdString(*item.colorHex));
        }
    } else if (item.kind == ClipKind::image && item.image && !item.isSensitive) {
        const std::optional<QImage> image = thumbnails_.image(*item.image);
        if (image) {
            const qreal ratio = view_.devicePixelRatioF();
            painter.drawPixmap(box.topLeft(), covering(QString::fromStdString(item.image->digest),
                                                       *image, box.size().toSize(), ratio));
        } else {
            painter.fillRect(box, mix(option.palette.color(QPalette::Base), tint, 0.14));
            const double glyph = std::min(box.width(), box.height()) * 0.5;
            kindglyph::paint(
                painter,
                QRectF(box.center().x() - glyph / 2, box.center().y() - glyph / 2, glyph, glyph),
                item.kind, tint);
        }
    } else if (large && item.text && !item.isSensitive &&
               (item.kind == ClipKind::text || item.kind == ClipKind::richText ||
                item.kind == ClipKind::code)) {
        // A page of the text itself reads better in a tile than a glyph.
        painter.fillRect(box, dark ? option.palette.color(QPalette::Base).lighter(115)
                                   : mix(option.palette.color(QPalette::Base), tint, 0.06));
        QFont font = option.font;
        if (item.kind == ClipKind::code) font.setFamily(QStringLiteral("monospace"));
        font.setPointSizeF(font.pointSizeF() * 0.8);
        painter.setFont(font);
        painter.setPen(option.palette.color(QPalette::Text));
        const QString body = QString::fromStdString(item.text->substr(0, 400));
        painter.drawText(box.adjusted(8, 6, -8, -4),
                         Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap, body);
    } else {
        painter.fillRect(box, mix(option.palette.color(QPalette::Base), tint, dark ? 0.3 : 0.14));
        const double glyph = std::min(box.width(), box.height()) * (large ? 0.38 : 0.62);
        kindglyph::paint(painter,
                         QRectF(box.center().x() - glyph / 2,
                                box.center().y() - glyph / 2 - (large ? 8 : 0), glyph, glyph),
                         item.kind, tint);
        if (large && item.kind == ClipKind::link) {
            QFont font = option.font;
            font.setPointSizeF(font.pointSizeF() * 0.82);
            painter.setFont(font);
            painter.setPen(option.palette.color(QPalette::PlaceholderText));
            painter.drawText(box.adjusted(6, 0, -6, -8), Qt::AlignHCenter | Qt::AlignBottom,
                             QString::fromStdString(item.host().value_or("")));
        }
    }
    painter.restore();
    // A hairline keeps light swatches and pictures from melting into the page.
    QColor edge = option.palette.color(QPalette::Text);
    edge.setAlphaF(0.08f);
    painter.setPen(QPen(edge, 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(shape);
}

void LibraryItemDelegate::paintApp(QPainter& painter, const QRectF& box, const ClipItem& item,
                                   const QStyleOptionViewItem& option) const {
    const QIcon icon = icons_.icon(item.appID.value_or(""));
    if (!icon.isNull()) {
        icon.paint(&painter, box.toRect());
        return;
    }
    // No icon: the application's initial in a circle.
    const QString name = QString::fromStdString(item.appName.value_or(item.appID.value_or("?")));
    QColor fill = option.palette.color(QPalette::PlaceholderText);
    fill.setAlphaF(0.35f);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawEllipse(box);
    QFont font = option.font;
    font.setPixelSize(int(box.height() * 0.62));
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(option.palette.color(QPalette::Base));
    painter.drawText(box, Qt::AlignCenter, name.left(1).toUpper());
}

QString LibraryItemDelegate::timeText(const ClipItem& item) const {
    const QDateTime when = QDateTime::fromMSecsSinceEpoch(qint64(item.date.unixSeconds() * 1000.0));
    const QLocale locale;
    if (when.date() == QDate::currentDate()) {
        // The short format of some locales still carries seconds.
        QString format = locale.timeFormat(QLocale::ShortFormat);
        format.remove(QStringLiteral(":ss"));
        return locale.toString(when.time(), format);
    }
    if (when.date().year() == QDate::currentDate().year()) {
        return locale.toString(when.date(), QStringLiteral("d MMM"));
    }
    return locale.toString(when.date(), QLocale::ShortFormat);
}

}  // namespace harbex
