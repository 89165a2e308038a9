#include "HarbexClip/Views/LibraryListModel.hpp"

#include <QMimeData>

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
    const bool rearranging = rearranging_ == Rearranging::on;
    // Drops land between rows, which Qt asks of the root.
    if (!index.isValid()) return rearranging ? Qt::ItemIsDropEnabled : Qt::NoItemFlags;
    if (isHeading(index.row())) return Qt::NoItemFlags;
    const Qt::ItemFlags flags = Qt::ItemIsEnabled | Qt::ItemIsSelectable;
    return rearranging ? flags | Qt::ItemIsDragEnabled : flags;
}

Qt::DropActions LibraryListModel::supportedDragActions() const { return Qt::MoveAction; }

Qt::DropActions LibraryListModel::supportedDropActions() const { return Qt::MoveAction; }

QStringList LibraryListModel::mimeTypes() const { return {kMimeType}; }

QMimeData* LibraryListModel::mimeData(const QModelIndexList& indexes) const {
    for (const QModelIndex& index : indexes) {
        if (const ClipItem* copy = item(index.row())) {
            auto* data = new QMimeData;
            data->setData(kMimeType, QByteArray::fromStdString(copy->id.string()));
            return data;
        }
    }
    return nullptr;
}

int LibraryListModel::copiesBefore(int row) const {
    int copies = 0;
    for (int r = 0; r < row && r < rowCount(); ++r) {
        if (!isHeading(r)) ++copies;
    }
    return copies;
}

std::optional<LibraryListModel::Drop> LibraryListModel::dropOf(const QMimeData* data, int row,
                                                               const QModelIndex& parent) const {
    if (rearranging_ != Rearranging::on || !data || !data->hasFormat(kMimeType)) return {};
    const auto id = Uuid::parse(data->data(kMimeType).toStdString());
    if (!id) return {};
    const int from = rowOf(*id);
    if (from < 0) return {};
    if (parent.isValid()) row = parent.row();  // onto a row: before it
    if (row < 0 || row > rowCount()) row = rowCount();
    // `row` is where the copy would be inserted; once it has left its own place, a copy dropped
    // below itself ends one place higher.
    const int before = copiesBefore(row);
    const int own = copiesBefore(from);
    return Drop{*id, before > own ? before - 1 : before};
}

bool LibraryListModel::canDropMimeData(const QMimeData* data, Qt::DropAction action, int row, int,
                                       const QModelIndex& parent) const {
    return action == Qt::MoveAction && dropOf(data, row, parent).has_value();
}

bool LibraryListModel::dropMimeData(const QMimeData* data, Qt::DropAction action, int row, int,
                                    const QModelIndex& parent) {
    if (action != Qt::MoveAction) return false;
    const std::optional<Drop> drop = dropOf(data, row, parent);
    if (!drop) return false;
    emit moveRequested(QString::fromStdString(drop->id.string()), drop->index);
    return true;
}

}  // namespace harbex
