#include "HarbexClip/Views/LibrarySidebar.hpp"

#include <QDropEvent>
#include <QPainter>

namespace harbex {
namespace {

// Draws a row's count in a soft capsule at the right, and headings in small capitals.
class SidebarDelegate final : public QStyledItemDelegate {
public:
    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override {
        QSize size = QStyledItemDelegate::sizeHint(option, index);
        size.setHeight(index.data(LibrarySidebar::headingRole).toBool() ? 30 : 28);
        return size;
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override {
        if (index.data(LibrarySidebar::headingRole).toBool()) {
            painter->save();
            QFont font = option.font;
            font.setBold(true);
            font.setPointSizeF(font.pointSizeF() * 0.85);
            painter->setFont(font);
            painter->setPen(option.palette.color(QPalette::Active, QPalette::PlaceholderText));
            painter->drawText(option.rect.adjusted(10, 0, -8, -5), Qt::AlignLeft | Qt::AlignBottom,
                              index.data().toString().toUpper());
            painter->restore();
            return;
        }
        QStyleOptionViewItem body = option;
        const QVariant count = index.data(LibrarySidebar::countRole);
        const QString text = count.isValid() ? QString::number(count.toLongLong()) : QString();
        const QFontMetrics metrics(option.font);
        const int capsule = text.isEmpty() ? 0 : metrics.horizontalAdvance(text) + 14;
        body.rect.setRight(option.rect.right() - capsule - 8);
        // The row's selection spans the whole width, the text stops short of the count.
        QStyleOptionViewItem background = option;
        background.text.clear();
        background.icon = QIcon();
        option.widget->style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &background, painter,
                                              option.widget);
        body.state &= ~(QStyle::State_Selected | QStyle::State_MouseOver);
        const bool selected = option.state & QStyle::State_Selected;
        if (selected) {
            body.palette.setColor(QPalette::Text, option.palette.color(QPalette::HighlightedText));
        }
        QStyledItemDelegate::paint(painter, body, index);
        if (text.isEmpty()) return;
        painter->save();
        painter->setRenderHint(QPainter::Antialiasing);
        const QRectF pill(option.rect.right() - capsule - 6,
                          option.rect.center().y() - metrics.height() / 2.0 - 1, capsule,
                          metrics.height() + 2);
        QColor fill = selected ? option.palette.color(QPalette::HighlightedText)
                               : option.palette.color(QPalette::Text);
        fill.setAlphaF(0.12f);
        painter->setPen(Qt::NoPen);
        painter->setBrush(fill);
        painter->drawRoundedRect(pill, pill.height() / 2, pill.height() / 2);
        painter->setPen(selected ? option.palette.color(QPalette::HighlightedText)
                                 : option.palette.color(QPalette::PlaceholderText));
        painter->setFont(option.font);
        painter->drawText(pill, Qt::AlignCenter, text);
        painter->restore();
    }
};

}  // namespace

LibrarySidebar::LibrarySidebar(QWidget* parent) : QListWidget(parent) {
    setItemDelegate(new SidebarDelegate(this));
    setIconSize(QSize(18, 18));
    setDragDropMode(QAbstractItemView::InternalMove);
    setDefaultDropAction(Qt::MoveAction);
    setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::DoubleClicked);
    setFrameShape(QFrame::NoFrame);
    connect(this, &QListWidget::itemChanged, this, [this](QListWidgetItem* row) {
        const std::optional<Uuid> board = boardOf(row);
        if (board && boardRenamed) boardRenamed(*board, row->text());
    });
}

QListWidgetItem* LibrarySidebar::addHeading(const QString& text) {
    auto* row = new QListWidgetItem(text);
    row->setFlags(Qt::NoItemFlags);
    row->setData(headingRole, true);
    addItem(row);
    return row;
}

QListWidgetItem* LibrarySidebar::addSection(const QIcon& icon, const QString& name, qint64 count,
                                            std::optional<Uuid> board) {
    auto* row = new QListWidgetItem(icon, name);
    row->setData(countRole, count);
    Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    if (board) {
        row->setData(boardRole, QString::fromStdString(board->string()));
        flags |= Qt::ItemIsEditable | Qt::ItemIsDragEnabled;
    }
    row->setFlags(flags);
    const QSignalBlocker blocker(this);
    addItem(row);
    return row;
}

std::optional<Uuid> LibrarySidebar::boardOf(const QListWidgetItem* row) {
    if (!row) return std::nullopt;
    const QVariant id = row->data(boardRole);
    if (!id.isValid()) return std::nullopt;
    return Uuid::parse(id.toString().toStdString());
}

std::optional<std::size_t> LibrarySidebar::boardIndexForDrop(const Uuid& board, int row,
                                                             bool below) const {
    // Count the other boards that stay above the drop point.
    const int boundary = below ? row + 1 : row;
    std::size_t index = 0;
    bool anyBoard = false;
    for (int i = 0; i < count(); ++i) {
        const std::optional<Uuid> each = boardOf(item(i));
        if (!each) continue;
        anyBoard = true;
        if (i < boundary && *each != board) ++index;
    }
    if (!anyBoard) return std::nullopt;
    return index;
}

void LibrarySidebar::dropEvent(QDropEvent* event) {
    // The rows are redrawn from the model after the move: never let the widget move them.
    event->setDropAction(Qt::IgnoreAction);
    event->accept();
    const std::optional<Uuid> board = boardOf(currentItem());
    if (!board || !boardDropped) return;
    const QModelIndex target = indexAt(event->position().toPoint());
    const int row = target.isValid() ? target.row() : count() - 1;
    bool below = false;
    switch (dropIndicatorPosition()) {
        case QAbstractItemView::AboveItem: below = false; break;
        case QAbstractItemView::BelowItem:
        case QAbstractItemView::OnViewport: below = true; break;
        // Dropped on a row: take its place, from whichever side the board came.
        case QAbstractItemView::OnItem: below = row > currentRow(); break;
    }
    if (const std::optional<std::size_t> index = boardIndexForDrop(*board, row, below)) {
        boardDropped(*board, *index);
    }
}

}  // namespace harbex
