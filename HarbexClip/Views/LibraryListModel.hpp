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
// Main thread.
class LibraryListModel final : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role { headingRole = Qt::UserRole + 1, idRole };

    using QAbstractListModel::QAbstractListModel;

    // Takes the groups and the pinned ids; returns whether the rows changed.
    bool setGroups(const std::vector<ClipLibraryGroup>& groups,
                   const std::unordered_set<Uuid>& pinned);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    // The copy on `row`; nothing for a heading or a row out of range.
    const ClipItem* item(int row) const;
    bool isHeading(int row) const;
    bool isPinned(const Uuid& id) const { return pinned_.contains(id); }
    // The row of a copy, or -1.
    int rowOf(const Uuid& id) const;

    // What a row shows as its title: a hidden copy says only what it is.
    static QString titleOf(const ClipItem& item);

private:
    struct Row {
        std::size_t group;
        std::optional<std::size_t> index;  // none for the group's heading
    };

    std::vector<ClipLibraryGroup> groups_;
    std::unordered_set<Uuid> pinned_;
    std::vector<Row> rows_;
    std::unordered_map<Uuid, int> rowsByID_;
};

}  // namespace harbex
