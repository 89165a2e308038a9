#include "HarbexClip/Views/ClipPanelFilterBar.hpp"

#include <QMouseEvent>
#include <QPainter>

namespace harbex {

namespace {

constexpr int kHeight = 26;
constexpr int kPadding = 11;
constexpr int kGap = 4;

}  // namespace

ClipPanelFilterBar::ClipPanelFilterBar(QWidget* parent) : QWidget(parent) {
    setMouseTracking(true);
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

QFont ClipPanelFilterBar::tabFont() const {
    QFont f = font();
    f.setPixelSize(12);
    f.setWeight(QFont::Medium);
    return f;
}

void ClipPanelFilterBar::setTabs(const QStringList& titles) {
    if (titles == titles_) return;
    titles_ = titles;
    current_ = std::clamp(current_, 0, std::max(0, int(titles_.size()) - 1));
    updateGeometry();
    update();
}

void ClipPanelFilterBar::setCurrent(int index) {
    if (index == current_) return;
    current_ = index;
    update();
}

void ClipPanelFilterBar::setPalette(const ClipPanelPalette& palette) {
    palette_ = palette;
    update();
}

QRect ClipPanelFilterBar::tabRect(int index) const {
    const QFontMetrics metrics(tabFont());
    int x = 0;
    for (int i = 0; i < titles_.size(); ++i) {
        const int width = metrics.horizontalAdvance(titles_[i]) + 2 * kPadding;
        if (i == index) return QRect(x, (height() - kHeight) / 2, width, kHeight);
        x += width + kGap;
    }
    return {};
}

QSize ClipPanelFilterBar::sizeHint() const {
    const QRect last = tabRect(int(titles_.size()) - 1);
    return QSize(last.right() + 1, kHeight + 4);
}

void ClipPanelFilterBar::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(tabFont());
    for (int i = 0; i < titles_.size(); ++i) {
        const QRectF tab = QRectF(tabRect(i)).adjusted(0.5, 0.5, -0.5, -0.5);
        const bool chosen = i == current_;
        if (chosen) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(palette_.accent);
            painter.drawRoundedRect(tab, tab.height() / 2, tab.height() / 2);
        } else if (i == hovered_) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(palette_.chip);
            painter.drawRoundedRect(tab, tab.height() / 2, tab.height() / 2);
        }
        painter.setPen(chosen ? palette_.selectedText : palette_.secondaryText);
        painter.drawText(tab, Qt::AlignCenter, titles_[i]);
    }
}

void ClipPanelFilterBar::mousePressEvent(QMouseEvent* event) {
    for (int i = 0; i < titles_.size(); ++i) {
        if (tabRect(i).contains(event->position().toPoint())) {
            emit tabClicked(i);
            return;
        }
    }
}

void ClipPanelFilterBar::mouseMoveEvent(QMouseEvent* event) {
    int hovered = -1;
    for (int i = 0; i < titles_.size(); ++i) {
        if (tabRect(i).contains(event->position().toPoint())) hovered = i;
    }
    if (hovered != hovered_) {
        hovered_ = hovered;
        update();
    }
}

void ClipPanelFilterBar::leaveEvent(QEvent*) {
    hovered_ = -1;
    update();
}

}  // namespace harbex
