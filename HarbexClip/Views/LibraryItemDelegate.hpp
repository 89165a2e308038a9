#pragma once

#include <QListView>
#include <QStyledItemDelegate>

#include "HarbexClip/Views/LibraryAppIcons.hpp"
#include "HarbexClip/Views/LibraryThumbnails.hpp"
#include "HarbexClipCore/Model/ClipItem.hpp"

namespace harbex {

// Draws the library's rows (list) and tiles (grid) from a LibraryListModel: the thumbnail,
// colour swatch or kind glyph, the title and its second line, the source application's icon,
// the time and a pin mark; and the day headings across the whole width. Everything is drawn
// at the screen's density. Main thread.
class LibraryItemDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    enum class Layout { list, grid };

    static constexpr int kRowHeight = 54;
    static constexpr int kHeadingHeight = 30;
    static constexpr QSize kTileSize{176, 170};

    LibraryItemDelegate(QListView& view, LibraryThumbnails& thumbnails, LibraryAppIcons& icons);

    void setLayout(Layout layout) { layout_ = layout; }
    Layout layout() const { return layout_; }

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;

private:
    void paintHeading(QPainter& painter, const QStyleOptionViewItem& option,
                      const QString& text) const;
    void paintRow(QPainter& painter, const QStyleOptionViewItem& option, const ClipItem& item,
                  bool pinned) const;
    void paintTile(QPainter& painter, const QStyleOptionViewItem& option, const ClipItem& item,
                   bool pinned) const;
    // The thumbnail, swatch or glyph of a copy, filling `box` (clipped to its rounded shape).
    void paintPreview(QPainter& painter, const QRectF& box, const ClipItem& item,
                      const QStyleOptionViewItem& option, bool large) const;
    void paintApp(QPainter& painter, const QRectF& box, const ClipItem& item,
                  const QStyleOptionViewItem& option) const;
    QString timeText(const ClipItem& item) const;

    QListView& view_;
    LibraryThumbnails& thumbnails_;
    LibraryAppIcons& icons_;
    Layout layout_ = Layout::list;
};

}  // namespace harbex
