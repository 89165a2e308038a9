#pragma once

#include <QAbstractListModel>

#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "HarbexClipCore/Library/ClipLibraryCounts.hpp"

namespace harbex {

// The library's grouped copies as one flat Qt list: a heading row before each titled group,
// then one row per copy. It holds its own copy of the groups, so the view model may change
// under it; a new state that equals the old one changes nothing (no reset, no lost scroll).
// While rearranging is on, a copy may be dragged between the others: the drop is reported
// through `moveRequested` and the rows change only when the new order comes back through
// `setGroups`. Main thread.
class LibraryListModel final : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { headingRole = Qt::UserRole + 1, idRole };
    enum class Rearranging { off, on };
    // The drag's data: the dragged copy's id.
    static constexpr const char* kMimeType = "application/x-harbex-clip-id";

    using QAbstractListModel::QAbstractListModel;

    // Takes the groups and the pinned ids; returns whether the rows changed.
    bool setGroups(const std::vector<ClipLibraryGroup>& groups,
                   const std::unordered_set<Uuid>& pinned);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    void setRearranging(Rearranging rearranging) { rearranging_ = rearranging; }
    Rearranging rearranging() const { return rearranging_; }
    Qt::DropActions supportedDragActions() const override;
    Qt::DropActions supportedDropActions() const override;
    QStringList mimeTypes() const override;
    QMimeData* mimeData(const QModelIndexList& indexes) const override;
    // Takes only a copy of this list dropped between rows (a drop onto a row means before it).
    bool canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                         const QModelIndex& parent) const override;
    bool dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int column,
                      const QModelIndex& parent) override;

    // The copy on `row`; nothing for a heading or a row out of range.
    const ClipItem* item(int row) const;
    bool isHeading(int row) const;
    bool isPinned(const Uuid& id) const { return pinned_.contains(id); }
    // The row of a copy, or -1.
    int rowOf(const Uuid& id) const;

    // What a row shows as its title: a hidden copy says only what it is.
    static QString titleOf(const ClipItem& item);

signals:
    // The copy `id` was dropped so that it ends up at `index` among the listed copies
    // (headings not counted).
    void moveRequested(const QString& id, int index);

private:
    struct Row {
        std::size_t group;
        std::optional<std::size_t> index;  // none for the group's heading
    };

    std::vector<ClipLibraryGroup> groups_;
    std::unordered_set<Uuid> pinned_;
    std::vector<Row> rows_;
    std::unordered_map<Uuid, int> rowsByID_;
    Rearranging rearranging_ = Rearranging::off;

    // The dragged copy's id and the place it would land, when `data` is a drop this list takes.
    struct Drop {
        Uuid id;
        int index;
    };
    std::optional<Drop> dropOf(const QMimeData* data, int row, const QModelIndex& parent) const;
    // The number of copies (not headings) on rows before `row`.
    int copiesBefore(int row) const;
};

}  // namespace harbex
