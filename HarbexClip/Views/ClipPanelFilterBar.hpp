#pragma once

#include <QStringList>
#include <QWidget>

#include "HarbexClip/Views/ClipPanelPalette.hpp"

namespace harbex {

// A row of rounded tabs, one chosen: the panel's kind filters, or the action categories in
// actions mode. It only shows and reports; the panel model decides what is chosen. Main thread.
class ClipPanelFilterBar final : public QWidget {
    Q_OBJECT

public:
    explicit ClipPanelFilterBar(QWidget* parent = nullptr);

    void setTabs(const QStringList& titles);
    void setCurrent(int index);
    void setPalette(const ClipPanelPalette& palette);
    const QStringList& tabs() const { return titles_; }
    int current() const { return current_; }
    // The tab's area, for clicks and tests.
    QRect tabRect(int index) const;

    QSize sizeHint() const override;

signals:
    void tabClicked(int index);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    QFont tabFont() const;

    QStringList titles_;
    int current_ = 0;
    int hovered_ = -1;
    ClipPanelPalette palette_;
};

}  // namespace harbex
