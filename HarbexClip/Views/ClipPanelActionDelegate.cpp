#include "HarbexClip/Views/ClipPanelActionDelegate.hpp"

#include <QPainter>

#include "HarbexClip/Views/ClipPanelActionListModel.hpp"
#include "HarbexClip/Views/ClipPanelGlyphs.hpp"

namespace harbex {

namespace {

QColor withAlpha(QColor colour, qreal alpha) {
    colour.setAlphaF(alpha);
    return colour;
}

}  // namespace

QSize ClipPanelActionDelegate::sizeHint(const QStyleOptionViewItem& option,
                                        const QModelIndex& index) const {
    const bool heading = !index.data(ClipPanelActionListModel::sectionRole).toString().isEmpty();
    return QSize(option.rect.width(), kRowHeight + (heading ? kHeadingHeight : 0));
}

void ClipPanelActionDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                                    const QModelIndex& index) const {
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    QRect rect = option.rect;
    QFont base = option.font;
    const QString section = index.data(ClipPanelActionListModel::sectionRole).toString();
    if (!section.isEmpty()) {
        QFont font = base;
        font.setPixelSize(11);
        font.setBold(true);
        painter->setFont(font);
        painter->setPen(palette_.secondaryText);
        painter->drawText(
            QRect(rect.left() + 18, rect.top(), rect.width() - 36, kHeadingHeight - 4),
            Qt::AlignLeft | Qt::AlignBottom, section.toUpper());
        rect.setTop(rect.top() + kHeadingHeight);
    }
    const bool selected = index.data(ClipPanelActionListModel::isSelectedRole).toBool();
    const bool destructive = index.data(ClipPanelActionListModel::isDestructiveRole).toBool();
    const QRectF card = QRectF(rect).adjusted(8, 1, -8, -1);
    if (selected) {
        painter->setPen(Qt::NoPen);
        painter->setBrush(destructive ? palette_.destructive : palette_.selection);
        painter->drawRoundedRect(card, 7, 7);
    }
    const QColor ink =
        selected ? palette_.selectedText : (destructive ? palette_.destructive : palette_.text);
    const QColor soft = selected ? withAlpha(palette_.selectedText, 0.75) : palette_.secondaryText;

    // The well: the action's short text, a drawn mark for pins, stacks and looking, or the
    // first letter of its title.
    const QRectF well(card.left() + 8, card.center().y() - 12, 24, 24);
    QColor wellFill = selected ? withAlpha(palette_.selectedText, 0.2) : palette_.chip;
    painter->setPen(Qt::NoPen);
    painter->setBrush(wellFill);
    painter->drawRoundedRect(well, 6, 6);
    const QString symbol = index.data(ClipPanelActionListModel::symbolRole).toString();
    QString glyph = index.data(ClipPanelActionListModel::glyphRole).toString();
    const QRectF mark = well.adjusted(5, 5, -5, -5);
    if (glyph.isEmpty() && symbol.startsWith("pin")) {
        panelglyph::pin(*painter, mark, ink);
    } else if (glyph.isEmpty() && symbol.startsWith("square.stack")) {
        panelglyph::stack(*painter, mark, ink);
    } else if (glyph.isEmpty() && symbol == "eye") {
        panelglyph::magnifier(*painter, mark, ink);
    } else {
        if (glyph.isEmpty()) glyph = index.data(Qt::DisplayRole).toString().left(1);
        QFont font = base;
        font.setPixelSize(glyph.size() > 2 ? 9 : 12);
        font.setBold(true);
        painter->setFont(font);
        painter->setPen(ink);
        painter->drawText(well, Qt::AlignCenter, glyph);
    }

    qreal right = card.right() - 10;
    QFont small = base;
    small.setPixelSize(11);
    const QString shortcut = index.data(ClipPanelActionListModel::shortcutRole).toString();
    if (!shortcut.isEmpty()) {
        painter->setFont(small);
        painter->setPen(soft);
        const int width = painter->fontMetrics().horizontalAdvance(shortcut);
        painter->drawText(QRectF(right - width, card.top(), width, card.height()),
                          Qt::AlignVCenter | Qt::AlignRight, shortcut);
        right -= width + 12;
    }
    QFont titleFont = base;
    titleFont.setPixelSize(13);
    painter->setFont(titleFont);
    painter->setPen(ink);
    const QString title = index.data(Qt::DisplayRole).toString();
    const qreal left = well.right() + 10;
    const int titleWidth = painter->fontMetrics().horizontalAdvance(title);
    painter->drawText(QRectF(left, card.top(), right - left, card.height()),
                      Qt::AlignVCenter | Qt::AlignLeft,
                      painter->fontMetrics().elidedText(title, Qt::ElideRight, int(right - left)));
    const QString example = index.data(ClipPanelActionListModel::exampleRole).toString();
    const qreal exampleLeft = left + titleWidth + 12;
    if (!example.isEmpty() && right - exampleLeft > 40) {
        painter->setFont(small);
        painter->setPen(soft);
        painter->drawText(
            QRectF(exampleLeft, card.top(), right - exampleLeft, card.height()),
            Qt::AlignVCenter | Qt::AlignLeft,
            painter->fontMetrics().elidedText(example, Qt::ElideRight, int(right - exampleLeft)));
    }
    painter->restore();
}

}  // namespace harbex
