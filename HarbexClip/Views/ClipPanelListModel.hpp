#pragma once

#include <QAbstractListModel>

#include <cstdint>
#include <optional>
#include <vector>

#include "HarbexClipCore/Panel/ClipPanelModel.hpp"

namespace harbex {

// The panel model's rows as a Qt list model, so that one QListView with one delegate draws any
// number of copies: a row's look is worked out only when the row is first drawn, and kept until
// the model's rows or marks change. Main thread.
class ClipPanelListModel final : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role {
        isHeaderRole = Qt::UserRole + 1,  // bool
        lookRole,                         // const ClipPanelRowLook* (valid until the next sync)
        isSelectedRole,                   // bool: the panel model's selection
        idRole,                           // QString: the copy's id, or "header.<group>"
        subtitleRole,                     // QString
    };

    // `model` is observed and must outlive this adapter. Call `sync` after each of its changes.
    explicit ClipPanelListModel(const ClipPanelModel& model, QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

    // Follows the panel model: a full reset when its rows were rebuilt, otherwise a repaint of
    // the rows whose selection or marks may have changed.
    void sync();
    // The row of the selected copy, or -1.
    int selectedRow() const { return selectedRow_; }
    // The look of an item row (computed on first use).
    const ClipPanelRowLook& look(int row) const;

private:
    int findSelectedRow() const;

    const ClipPanelModel& model_;
    std::uint64_t rowsRevision_ = 0;
    int selectedRow_ = -1;
    mutable std::vector<std::optional<ClipPanelRowLook>> looks_;
};

}  // namespace harbex
