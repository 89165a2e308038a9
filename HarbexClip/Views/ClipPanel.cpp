#include "HarbexClip/Views/ClipPanel.hpp"

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QScreen>
#include <QVBoxLayout>

#include "HarbexClipCore/Panel/ClipPanelKeyRouter.hpp"
#include "HarbexClipCore/Panel/ClipPanelRow.hpp"
#include "HarbexClipCore/Panel/ClipPanelText.hpp"

namespace harbex {

ClipKeyPress keyPressFor(int qtKey, Qt::KeyboardModifiers modifiers, const QString& text) {
    using Kind = ClipKeyPress::Name::Kind;
    ClipKeyPress press;
    switch (qtKey) {
        case Qt::Key_Up: press.name = Kind::up; break;
        case Qt::Key_Down: press.name = Kind::down; break;
        case Qt::Key_Left: press.name = Kind::left; break;
        case Qt::Key_Right: press.name = Kind::right; break;
        case Qt::Key_Escape: press.name = Kind::escape; break;
        case Qt::Key_Return: press.name = Kind::returnKey; break;
        case Qt::Key_Enter: press.name = Kind::enter; break;
        case Qt::Key_Backspace: press.name = Kind::deleteKey; break;
        case Qt::Key_Delete: press.name = Kind::forwardDelete; break;
        case Qt::Key_Tab:
        case Qt::Key_Backtab: press.name = Kind::tab; break;
        case Qt::Key_Space: press.name = Kind::space; break;
        default: {
            // Shortcuts match the unmodified character: Ctrl+C gives a control code as text.
            QString character = text;
            if (qtKey >= Qt::Key_A && qtKey <= Qt::Key_Z) {
                character = QChar(char('a' + (qtKey - Qt::Key_A)));
            } else if (qtKey >= 0x20 && qtKey < 0x7f) {
                character = QChar(char(qtKey));
            }
            press.name = ClipKeyPress::Name::character(character.toStdString());
        }
    }
    press.command = modifiers & Qt::ControlModifier;
    press.shift = (modifiers & Qt::ShiftModifier) || qtKey == Qt::Key_Backtab;
    press.option = modifiers & Qt::AltModifier;
    press.control = modifiers & Qt::MetaModifier;
    return press;
}

ClipPanel::ClipPanel(ClipPanelModel& model, ClipPanelFocus& focus,
                     std::function<ClipSettings()> settings, QWidget* parent)
    : QWidget(parent, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint),
      model_(model),
      focus_(focus),
      settings_(std::move(settings)) {
    setObjectName("clipPanel");
    setWindowTitle(tr("Harbex Clipboard"));
    search_ = new QLineEdit(this);
    search_->setPlaceholderText(
        QString::fromUtf8(ClipPanelText::kSearchPlaceholder.data(),
                          qsizetype(ClipPanelText::kSearchPlaceholder.size())));
    search_->installEventFilter(this);
    QFont big = search_->font();
    big.setPointSizeF(big.pointSizeF() * 1.3);
    search_->setFont(big);
    banner_ = new QLabel(this);
    banner_->setWordWrap(true);
    rows_ = new QListWidget(this);
    rows_->setFocusPolicy(Qt::NoFocus);
    rows_->setFrameShape(QFrame::NoFrame);
    empty_ = new QLabel(this);
    empty_->setWordWrap(true);
    empty_->setAlignment(Qt::AlignCenter);
    notice_ = new QLabel(this);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(12, 12, 12, 10);
    layout->addWidget(search_);
    layout->addWidget(banner_);
    layout->addWidget(rows_, 1);
    layout->addWidget(empty_, 1);
    layout->addWidget(notice_);
    connect(search_, &QLineEdit::textEdited, this,
            [this](const QString& text) { model_.setQuery(text.toStdString()); });
    connect(rows_, &QListWidget::itemClicked, this, [this](QListWidgetItem* item) {
        const auto id = Uuid::parse(item->data(Qt::UserRole).toString().toStdString());
        if (id) model_.select(*id);
    });
    connect(rows_, &QListWidget::itemDoubleClicked, this, [this](QListWidgetItem*) {
        carryOut(model_.handle(ClipPanelKey{ClipPanelKey::Kind::returnKey}));
    });
    revisionWatch_ = model_.revision().subscribe([this](std::uint64_t) { render(); });
}

void ClipPanel::present() {
    const ClipSettings settings = settings_();
    const QSize sizes[] = {{460, 420}, {760, 480}, {960, 600}};
    resize(sizes[static_cast<int>(settings.panel.size)]);
    QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen) screen = QGuiApplication::primaryScreen();
    const QRect area = screen->availableGeometry();
    if (settings.panel.position == ClipPanelPosition::nearPointer) {
        QPoint at = QCursor::pos() + QPoint(8, 8);
        at.setX(std::clamp(at.x(), area.left(), area.right() - width()));
        at.setY(std::clamp(at.y(), area.top(), area.bottom() - height()));
        move(at);
    } else if (settings.panel.position == ClipPanelPosition::centre || pos().isNull()) {
        move(area.center() - QPoint(width() / 2, height() / 2));
    }
    model_.open(focus_.open());
    search_->setText(QString::fromStdString(model_.query()));
    render();
    show();
    raise();
    activateWindow();
    search_->setFocus();
}

void ClipPanel::dismiss(ClipPanelFocus::Close reason) {
    if (!isVisible()) return;
    hide();
    focus_.close(reason);
}

bool ClipPanel::event(QEvent* event) {
    if (event->type() == QEvent::WindowDeactivate && isVisible() && !focus_.handedBackForPaste())
        dismiss(ClipPanelFocus::Close::clickedOutside);
    return QWidget::event(event);
}

bool ClipPanel::eventFilter(QObject* watched, QEvent* event) {
    if (watched != search_ || event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    auto* key = static_cast<QKeyEvent*>(event);
    const ClipKeyPress press = keyPressFor(key->key(), key->modifiers(), key->text());
    const ClipPanelKeyRoute route =
        ClipPanelKeyRouter::route(press, {model_.mode(), search_->text().isEmpty(), false, false});
    switch (route.kind) {
        case ClipPanelKeyRoute::Kind::panel: carryOut(model_.handle(*route.key)); return true;
        case ClipPanelKeyRoute::Kind::field: return false;
        case ClipPanelKeyRoute::Kind::edit: return false;
        case ClipPanelKeyRoute::Kind::close:
        case ClipPanelKeyRoute::Kind::closeQuickLook:
            dismiss(ClipPanelFocus::Close::dismissed);
            return true;
        case ClipPanelKeyRoute::Kind::settings:
            dismiss(ClipPanelFocus::Close::handedOff);
            emit settingsRequested();
            return true;
        case ClipPanelKeyRoute::Kind::swallow: return true;
    }
    return true;
}

void ClipPanel::carryOut(ClipPanelModel::Effect effect) {
    using Effect = ClipPanelModel::Effect;
    switch (effect) {
        case Effect::pasted:
            if (settings_().closesAfterPasting) {
                hide();
                focus_.close(ClipPanelFocus::Close::lostFront);
            } else {
                focus_.reclaimAfterPaste();
            }
            break;
        case Effect::close: dismiss(ClipPanelFocus::Close::dismissed); break;
        default: break;
    }
    if (search_->text().toStdString() != model_.query())
        search_->setText(QString::fromStdString(model_.query()));
}

void ClipPanel::render() {
    rows_->clear();
    for (const ClipPanelRow& row : model_.rows()) {
        auto* item = new QListWidgetItem;
        if (row.isHeader()) {
            item->setText(QString::fromUtf8(rowGroupTitle(row.group).data()).toUpper());
            item->setFlags(Qt::NoItemFlags);
            QFont font = rows_->font();
            font.setPointSizeF(font.pointSizeF() * 0.85);
            font.setBold(true);
            item->setFont(font);
        } else {
            const ClipItem& clip = *row.item;
            const QString title =
                clip.isSensitive ? tr("Sensitive, hidden") : QString::fromStdString(clip.title());
            item->setText(title.left(200).replace('\n', ' '));
            item->setToolTip(QString::fromStdString(clip.subtitle()));
            item->setData(Qt::UserRole, QString::fromStdString(row.id));
        }
        rows_->addItem(item);
        if (model_.selectedID() && row.id == model_.selectedID()->string()) {
            rows_->setCurrentItem(item);
            rows_->scrollToItem(item);
        }
    }
    const auto emptyState = model_.emptyState();
    empty_->setVisible(emptyState.has_value());
    rows_->setVisible(!emptyState.has_value());
    if (emptyState) {
        empty_->setText("<b>" + QString::fromStdString(emptyState->title).toHtmlEscaped() +
                        "</b><br>" + QString::fromStdString(emptyState->body).toHtmlEscaped());
    }
    const auto banner = model_.pauseBanner();
    banner_->setVisible(banner.has_value());
    if (banner) banner_->setText(QString::fromStdString(*banner));
    notice_->setVisible(model_.notice().has_value());
    if (model_.notice()) notice_->setText(QString::fromStdString(*model_.notice()));
}

}  // namespace harbex
