#pragma once

#include <QListWidget>
#include <QStyledItemDelegate>

#include <functional>
#include <optional>

#include "HarbexClipCore/Support/Uuid.hpp"

namespace harbex {

// The library's sidebar: section rows with their counts drawn at the right, headings between
// the groups, and pinboard rows that can be renamed in place and dragged into a new order.
// It only reports what the person did; the window asks the model. Main thread.
class LibrarySidebar final : public QListWidget {
    Q_OBJECT

public:
    enum Role { countRole = Qt::UserRole + 10, boardRole, headingRole };

    explicit LibrarySidebar(QWidget* parent = nullptr);

    // Appends a heading, or a row with a count (a pinboard row when `board` is given).
    QListWidgetItem* addHeading(const QString& text);
    QListWidgetItem* addSection(const QIcon& icon, const QString& name, qint64 count,
                                std::optional<Uuid> board = std::nullopt);
    // The board a row stands for.
    static std::optional<Uuid> boardOf(const QListWidgetItem* row);

    // A board was dropped so that it becomes the `index`th board.
    std::function<void(const Uuid& board, std::size_t index)> boardDropped;
    // A board row was renamed in place.
    std::function<void(const Uuid& board, const QString& name)> boardRenamed;

    // Where a board dragged onto `row` (above or below it) lands among the boards; for tests
    // and the drop handler.
    std::optional<std::size_t> boardIndexForDrop(const Uuid& board, int row, bool below) const;

protected:
    void dropEvent(QDropEvent* event) override;
};

}  // namespace harbex
