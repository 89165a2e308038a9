#pragma once

#include <QStyledItemDelegate>

#include "HarbexClip/Views/ClipPanelImages.hpp"
#include "HarbexClip/Views/ClipPanelPalette.hpp"

namespace harbex {

// Paints one row of the panel's list: a group header, or a copy with its kind glyph (a colour
// swatch, an image thumbnail, a padlock when concealed), title, source icon and subtitle, and its
// pin, stack and ⌘-number marks. Sizes are fixed per kind of row, so laying out thousands of rows
// costs no text measuring. Main thread.
class ClipPanelRowDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    static constexpr int kHeaderHeight = 30;
    static constexpr int kItemHeight = 50;

    // `images` is observed and must outlive the delegate.
    ClipPanelRowDelegate(ClipPanelImages& images, QObject* parent = nullptr);

    void setPalette(const ClipPanelPalette& palette) { palette_ = palette; }
    // Whether rows show their source application's icon.
    enum class AppIcons { shown, hidden };
    void setAppIcons(AppIcons icons) { appIcons_ = icons; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    ClipPanelImages& images_;
    ClipPanelPalette palette_;
    AppIcons appIcons_ = AppIcons::shown;
};

}  // namespace harbex
