#pragma once

#include <QStyledItemDelegate>

#include "HarbexClip/Views/ClipPanelPalette.hpp"

namespace harbex {

// Paints one action: its well (glyph text or symbol), title (red when destructive), the
// result's preview, the shortcut, and the section heading above the first of a section.
class ClipPanelActionDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr int kRowHeight = 36;
    static constexpr int kHeadingHeight = 26;

    using QStyledItemDelegate::QStyledItemDelegate;
    void setPalette(const ClipPanelPalette& palette) { palette_ = palette; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    ClipPanelPalette palette_;
};

}  // namespace harbex
