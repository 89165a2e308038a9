#include "HarbexClip/Views/LibraryListModel.hpp"

#include <algorithm>

namespace harbex {

bool LibraryListModel::setGroups(const std::vector<ClipLibraryGroup>& groups,
                                 const std::unordered_set<Uuid>& pinned) {
    if (groups == groups_ && pinned == pinned_) return false;
    beginResetModel();
    groups_ = groups;
    pinned_ = pinned;
    rows_.clear();
    rowsByID_.clear();
    for (std::size_t g = 0; g < groups_.size(); ++g) {
        if (groups_[g].title) rows_.push_back({g, std::nullopt});
        for (std::size_t i = 0; i < groups_[g].items.size(); ++i) {
            rowsByID_.emplace(groups_[g].items[i].id, static_cast<int>(rows_.size()));
            rows_.push_back({g, i});
        }
    }
    endResetModel();
    return true;
}

int LibraryListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

const ClipItem* LibraryListModel::item(int row) const {
    if (row < 0 || row >= static_cast<int>(rows_.size())) return nullptr;
    const Row& at = rows_[static_cast<std::size_t>(row)];
    return at.index ? &groups_[at.group].items[*at.index] : nullptr;
}

bool LibraryListModel::isHeading(int row) const {
    return row >= 0 && row < static_cast<int>(rows_.size()) &&
           !rows_[static_cast<std::size_t>(row)].index;
}

int LibraryListModel::rowOf(const Uuid& id) const {
    const auto found = rowsByID_.find(id);
    return found == rowsByID_.end() ? -1 : found->second;
}

QString LibraryListModel::titleOf(const ClipItem& item) {
    if (!item.isSensitive) return QString::fromStdString(item.title());
    const bool isCode =
        std::ranges::find(item.details, ClipDetail::oneTimeCode) != item.details.end();
    return isCode ? tr("One-time code, hidden") : tr("Sensitive, hidden");
}

QVariant LibraryListModel::data(const QModelIndex& index, int role) const {
    const int row = index.row();
    if (isHeading(row)) {
        const ClipLibraryGroup& group = groups_[rows_[static_cast<std::size_t>(row)].group];
        switch (role) {
            case Qt::DisplayRole:
            case Qt::AccessibleTextRole: return QString::fromStdString(group.title.value_or(""));
            case headingRole: return true;
            default: return {};
        }
    }
    const ClipItem* copy = item(row);
    if (!copy) return {};
    switch (role) {
        case Qt::DisplayRole:
        case Qt::AccessibleTextRole: return titleOf(*copy);
        case Qt::ToolTipRole:
            return copy->isSensitive ? QVariant() : QString::fromStdString(copy->subtitle());
        case headingRole: return false;
        case idRole: return QString::fromStdString(copy->id.string());
        default: return {};
    }
}

Qt::ItemFlags LibraryListModel::flags(const QModelIndex& index) const {
    if (!index.isValid() || isHeading(index.row())) return Qt::NoItemFlags;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

}  // namespace harbex
