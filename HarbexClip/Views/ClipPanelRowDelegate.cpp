#include "HarbexClip/Views/ClipPanelRowDelegate.hpp"

#include <QPainter>
#include <QPainterPath>

#include "HarbexClip/Views/ClipPanelGlyphs.hpp"
#include "HarbexClip/Views/ClipPanelListModel.hpp"

namespace harbex {

namespace {

constexpr int kInset = 8;      // the selection's gap to the list's edges
constexpr int kWell = 34;      // the glyph or thumbnail square
constexpr int kAppIcon = 14;   // the source icon before the subtitle
constexpr int kMarkSide = 14;  // pin and stack marks

QColor withAlpha(QColor colour, qreal alpha) {
    colour.setAlphaF(alpha);
    return colour;
}

}  // namespace

ClipPanelRowDelegate::ClipPanelRowDelegate(ClipPanelImages& images, QObject* parent)
    : QStyledItemDelegate(parent), images_(images) {}

QSize ClipPanelRowDelegate::sizeHint(const QStyleOptionViewItem& option,
                                     const QModelIndex& index) const {
    const bool header = index.data(ClipPanelListModel::isHeaderRole).toBool();
    return QSize(option.rect.width(), header ? kHeaderHeight : kItemHeight);
}

void ClipPanelRowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::TextAntialiasing);
    const QRect rect = option.rect;
    QFont base = option.font;

    if (index.data(ClipPanelListModel::isHeaderRole).toBool()) {
        QFont font = base;
        font.setPixelSize(11);
        font.setBold(true);
        font.setLetterSpacing(QFont::PercentageSpacing, 106);
        painter->setFont(font);
        painter->setPen(palette_.secondaryText);
        const QRect text = rect.adjusted(kInset + 10, 0, -kInset, -5);
        painter->drawText(text, Qt::AlignLeft | Qt::AlignBottom,
                          index.data(Qt::DisplayRole).toString().toUpper());
        painter->restore();
        return;
    }

    const auto* look = static_cast<const ClipPanelRowLook*>(
        index.data(ClipPanelListModel::lookRole).value<const void*>());
    if (!look) {
        painter->restore();
        return;
    }
    const bool selected = index.data(ClipPanelListModel::isSelectedRole).toBool();
    const bool hovered = option.state & QStyle::State_MouseOver;
    const QRectF card = QRectF(rect).adjusted(kInset, 1.5, -kInset, -1.5);
    if (selected) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(palette_.selection);
        painter->drawRoundedRect(card, 8, 8);
    } else if (hovered) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(palette_.chip);
        painter->drawRoundedRect(card, 8, 8);
    }
    const ClipGlyphTone tone = selected ? ClipGlyphTone::onSelection : ClipGlyphTone::normal;
    const QColor titleColour = selected ? palette_.selectedText : palette_.text;
    const QColor detailColour =
        selected ? withAlpha(palette_.selectedText, 0.78) : palette_.secondaryText;

    // The glyph well: thumbnail, swatch, padlock or the kind's mark.
    const QRectF well(card.left() + 8, card.center().y() - kWell / 2.0, kWell, kWell);
    const qreal ratio = painter->device() ? painter->device()->devicePixelRatioF() : 1.0;
    bool drawn = false;
    if (look->isHidden) {
        panelglyph::lock(*painter, well, palette_, tone);
        drawn = true;
    } else if (look->swatch) {
        const auto& c = *look->swatch;
        panelglyph::swatch(*painter, well,
                           QColor::fromRgbF(float(c.r), float(c.g), float(c.b), float(c.a)),
                           palette_);
        drawn = true;
    } else if (look->thumbnail) {
        const QPixmap thumb = images_.thumbnail(*look->thumbnail, kWell, ratio);
        if (!thumb.isNull()) {
            painter->save();
            QPainterPath clip;
            clip.addRoundedRect(well, 7, 7);
            painter->setClipPath(clip);
            painter->drawPixmap(well.topLeft(), thumb);
            painter->restore();
            drawn = true;
        }
    }
    if (!drawn) panelglyph::kind(*painter, well, look->glyph, palette_, tone);

    // Marks and the ⌘-number, right to left.
    qreal right = card.right() - 10;
    QFont small = base;
    small.setPixelSize(11);
    if (!look->numberKeys.empty()) {
        painter->setFont(small);
        const QString keys = QString::fromStdString(look->numberKeys);
        const int width = painter->fontMetrics().horizontalAdvance(keys);
        painter->setPen(selected ? withAlpha(palette_.selectedText, 0.7)
                                 : withAlpha(palette_.secondaryText, 0.85));
        painter->drawText(QRectF(right - width, card.top(), width, card.height()),
                          Qt::AlignVCenter | Qt::AlignRight, keys);
        right -= width + 10;
    }
    if (look->isStacked) {
        panelglyph::stack(
            *painter,
            QRectF(right - kMarkSide, card.center().y() - kMarkSide / 2.0, kMarkSide, kMarkSide),
            selected ? palette_.selectedText : palette_.accent);
        right -= kMarkSide + 8;
    }
    if (look->isPinned) {
        panelglyph::pin(
            *painter,
            QRectF(right - kMarkSide, card.center().y() - kMarkSide / 2.0, kMarkSide, kMarkSide),
            selected ? palette_.selectedText : palette_.accent);
        right -= kMarkSide + 8;
    }

    if (look->language) {
        // A code copy's language as a quiet tag beside the marks.
        painter->setFont(small);
        const QString name = QString::fromStdString(*look->language);
        const qreal tagWidth = painter->fontMetrics().horizontalAdvance(name) + 12;
        const QRectF tag(right - tagWidth, card.center().y() - 9, tagWidth, 18);
        painter->setPen(Qt::NoPen);
        painter->setBrush(selected ? withAlpha(palette_.selectedText, 0.18)
                                   : withAlpha(palette_.secondaryText, 0.16));
        painter->drawRoundedRect(tag, 5, 5);
        painter->setPen(detailColour);
        painter->drawText(tag, Qt::AlignCenter, name);
        right -= tagWidth + 8;
    }

    // Title and subtitle.
    const qreal left = well.right() + 11;
    const qreal width = std::max<qreal>(0, right - left);
    QFont titleFont = base;
    titleFont.setPixelSize(13);
    titleFont.setWeight(QFont::Medium);
    titleFont.setItalic(look->isHidden);
    painter->setFont(titleFont);
    painter->setPen(look->isHidden && !selected ? palette_.secondaryText : titleColour);
    const QFontMetrics titleMetrics(titleFont);
    const QString title = titleMetrics.elidedText(QString::fromStdString(look->title).simplified(),
                                                  Qt::ElideRight, int(width));
    const QRectF titleBox(left, card.top() + 7, width, titleMetrics.height());
    painter->drawText(titleBox, Qt::AlignLeft | Qt::AlignVCenter, title);

    qreal subLeft = left;
    const qreal subTop = titleBox.bottom() + 2;
    if (appIcons_ == AppIcons::shown && look->appID) {
        const QPixmap icon = images_.appIcon(*look->appID, kAppIcon, ratio);
        if (!icon.isNull()) {
            painter->drawPixmap(QPointF(subLeft, subTop + 1), icon);
            subLeft += kAppIcon + 5;
        }
    }
    painter->setFont(small);
    painter->setPen(detailColour);
    const QFontMetrics smallMetrics(small);
    const QString subtitle = smallMetrics.elidedText(QString::fromStdString(look->subtitle),
                                                     Qt::ElideRight, int(right - subLeft));
    painter->drawText(QRectF(subLeft, subTop, right - subLeft, kAppIcon + 2),
                      Qt::AlignLeft | Qt::AlignVCenter, subtitle);
    painter->restore();
}

}  // namespace harbex
