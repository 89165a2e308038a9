#pragma once

#include <QAbstractListModel>

#include "HarbexClipCore/Panel/ClipPanelModel.hpp"

namespace harbex {

// The actions of the panel model's actions mode as a Qt list model: one row per action, the
// first of each section carrying its heading. Main thread.
class ClipPanelActionListModel final : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role {
        sectionRole = Qt::UserRole + 1,  // QString: the heading above this row, or empty
        glyphRole,                       // QString: the short text drawn in the well, or empty
        symbolRole,                      // QString: the symbol name
        shortcutRole,                    // QString
        exampleRole,                     // QString: the preview of the result
        isDestructiveRole,               // bool
        isSelectedRole,                  // bool
        idRole,                          // QString: the action's id
    };

    // `model` is observed and must outlive this adapter. Call `sync` after each of its changes.
    explicit ClipPanelActionListModel(const ClipPanelModel& model, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    void sync();
    int selectedRow() const;

private:
    const ClipPanelModel& model_;
    std::vector<ClipPanelAction> shown_;
};

}  // namespace harbex
