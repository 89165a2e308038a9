#include "HarbexClip/Views/ClipPanelListModel.hpp"

namespace harbex {

ClipPanelListModel::ClipPanelListModel(const ClipPanelModel& model, QObject* parent)
    : QAbstractListModel(parent), model_(model), rowsRevision_(model.rowsRevision()) {
    looks_.resize(model_.rows().size());
    selectedRow_ = findSelectedRow();
}

int ClipPanelListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(model_.rows().size());
}

Qt::ItemFlags ClipPanelListModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) return Qt::NoItemFlags;
    if (model_.rows()[static_cast<std::size_t>(index.row())].isHeader()) return Qt::ItemIsEnabled;
    return Qt::ItemIsEnabled | Qt::ItemIsSelectable;
}

const ClipPanelRowLook& ClipPanelListModel::look(int row) const {
    auto& slot = looks_.at(static_cast<std::size_t>(row));
    if (!slot) slot = model_.look(static_cast<std::size_t>(row));
    return *slot;
}

QVariant ClipPanelListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const ClipPanelRow& row = model_.rows()[static_cast<std::size_t>(index.row())];
    switch (role) {
        case isHeaderRole: return row.isHeader();
        case idRole: return QString::fromStdString(row.id);
        case isSelectedRole: return index.row() == selectedRow_;
        case Qt::DisplayRole:
            if (row.isHeader()) return QString::fromUtf8(rowGroupTitle(row.group).data());
            return QString::fromStdString(look(index.row()).title);
        case subtitleRole:
            if (row.isHeader()) return {};
            return QString::fromStdString(look(index.row()).subtitle);
        case lookRole:
            if (row.isHeader()) return {};
            return QVariant::fromValue(static_cast<const void*>(&look(index.row())));
        default: return {};
    }
}

int ClipPanelListModel::findSelectedRow() const {
    const auto& selected = model_.selectedID();
    if (!selected) return -1;
    const auto& rows = model_.rows();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].item && rows[i].item->id == *selected) return static_cast<int>(i);
    }
    return -1;
}

void ClipPanelListModel::sync() {
    if (model_.rowsRevision() != rowsRevision_ || looks_.size() != model_.rows().size()) {
        beginResetModel();
        rowsRevision_ = model_.rowsRevision();
        looks_.assign(model_.rows().size(), std::nullopt);
        selectedRow_ = findSelectedRow();
        endResetModel();
        return;
    }
    // Pins and the stack change marks without rebuilding rows; looks are cheap to redo for the
    // few rows on screen, so all are dropped and the view repaints what it shows.
    for (auto& look : looks_) look.reset();
    selectedRow_ = findSelectedRow();
    if (!looks_.empty()) emit dataChanged(index(0), index(rowCount() - 1));
}

}  // namespace harbex
