#include "HarbexClip/Views/ClipPanelActionListModel.hpp"

namespace harbex {

namespace {

QString qs(const std::string& text) { return QString::fromStdString(text); }

}  // namespace

ClipPanelActionListModel::ClipPanelActionListModel(const ClipPanelModel& model, QObject* parent)
    : QAbstractListModel(parent), model_(model), shown_(model.actions()) {}

int ClipPanelActionListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

QVariant ClipPanelActionListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= rowCount()) return {};
    const auto row = static_cast<std::size_t>(index.row());
    const ClipPanelAction& action = shown_[row];
    switch (role) {
        case Qt::DisplayRole: return qs(action.title);
        case sectionRole:
            if (row > 0 && shown_[row - 1].section == action.section) return QString();
            return qs(action.section);
        case glyphRole: return action.glyph ? qs(*action.glyph) : QString();
        case symbolRole: return qs(action.symbol);
        case shortcutRole: return action.shortcut ? qs(*action.shortcut) : QString();
        case exampleRole: return action.example ? qs(*action.example) : QString();
        case isDestructiveRole: return action.isDestructive;
        case isSelectedRole: return model_.selectedActionID() == action.id();
        case idRole: return qs(action.id());
        default: return {};
    }
}

void ClipPanelActionListModel::sync() {
    if (shown_ != model_.actions()) {
        beginResetModel();
        shown_ = model_.actions();
        endResetModel();
        return;
    }
    if (!shown_.empty()) emit dataChanged(index(0), index(rowCount() - 1));
}

int ClipPanelActionListModel::selectedRow() const {
    for (std::size_t i = 0; i < shown_.size(); ++i) {
        if (model_.selectedActionID() == shown_[i].id()) return static_cast<int>(i);
    }
    return -1;
}

}  // namespace harbex
