#include "app/toolkit/RibbonField.h"

#include <QAction>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>

namespace {

constexpr int kGap = 5;
constexpr int kEditHeight = 20;

bool isEnter(const QEvent* event) {
    const int key = static_cast<const QKeyEvent*>(event)->key();
    return key == Qt::Key_Return || key == Qt::Key_Enter;
}

}  // namespace

RibbonEdit::RibbonEdit(QWidget* parent) : QLineEdit(parent) {
    setAcceptDrops(false);  // a file that is dropped here is the window's, and no text to type
}

void RibbonEdit::ShowText(const QString& text) {
    m_shown = text;
    setText(text);
}

// Enter belongs to the edit while it has the focus, whatever the window binds it to. Ctrl+E, which would move to the
// end of the line, belongs to the window, and so do undo and redo where the edit itself has nothing for them.
bool RibbonEdit::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride) {
        const auto* key = static_cast<QKeyEvent*>(event);
        const bool isWindows = key->key() == Qt::Key_E && key->modifiers() == Qt::ControlModifier;
        const bool isSpent = (key->matches(QKeySequence::Undo) && !isUndoAvailable()) ||
                             (key->matches(QKeySequence::Redo) && !isRedoAvailable());
        if (isEnter(event) || isWindows || isSpent) {
            event->setAccepted(isEnter(event));
            return true;
        }
    }
    return QLineEdit::event(event);
}

void RibbonEdit::keyPressEvent(QKeyEvent* event) {
    if (isEnter(event)) {
        Commit();
        selectAll();
    } else if (event->key() == Qt::Key_Escape) {
        event->setAccepted(text() != m_shown);  // with nothing to drop it closes the panel that dropped down
        DropPending();
        selectAll();
    } else {
        QLineEdit::keyPressEvent(event);
    }
}

void RibbonEdit::focusOutEvent(QFocusEvent* event) {
    QLineEdit::focusOutEvent(event);
    if (event->reason() != Qt::PopupFocusReason) CommitPending();
}

void RibbonEdit::CommitPending() {
    if (text() != m_shown) Commit();
}

void RibbonEdit::DropPending() { setText(m_shown); }

void RibbonEdit::Commit() {
    m_shown = text();  // a dialog that the commit opens takes the focus: that must not commit again
    emit committed();
}

RibbonSlider::RibbonSlider(ribbon::Range range, QWidget* parent) : QSlider(Qt::Horizontal, parent) {
    setRange(range.minimum, range.maximum);
    setPageStep(5);
    connect(this, &QSlider::valueChanged, this, [this] {
        if (!m_quiet) emit moved();
    });
    connect(this, &QSlider::sliderPressed, this, &RibbonSlider::settled);
    connect(this, &QSlider::sliderReleased, this, &RibbonSlider::settled);
}

void RibbonSlider::ShowValue(int value) {
    m_quiet = true;
    setValue(value);
    m_quiet = false;
}

// A dialog that a move opens takes the release of the button away: end the drag at the next move without a button.
void RibbonSlider::mouseMoveEvent(QMouseEvent* event) {
    if (event->buttons() == Qt::NoButton) {
        QMouseEvent release(QEvent::MouseButtonRelease, event->position(), event->globalPosition(), Qt::LeftButton,
                            Qt::NoButton, event->modifiers());
        mouseReleaseEvent(&release);
        return;
    }
    QSlider::mouseMoveEvent(event);
}

// A wheel turned over the ribbon must not change a parameter by accident.
void RibbonSlider::wheelEvent(QWheelEvent* event) {
    if (hasFocus()) QSlider::wheelEvent(event);
}

void RibbonSlider::focusOutEvent(QFocusEvent* event) {
    QSlider::focusOutEvent(event);
    emit settled();
}

RibbonField::RibbonField(const ribbon::Item& item, QAction* editAction, QAction* sliderAction, QWidget* parent)
    : QWidget(parent),
      m_label(new QLabel(editAction->text(), this)),
      m_edit(new RibbonEdit(this)),
      m_editWidth(item.editWidth) {
    m_label->setBuddy(m_edit);
    m_edit->setAlignment(Qt::AlignRight);
    m_edit->setAccessibleName(editAction->text());
    FollowAction(m_label, editAction);
    FollowAction(m_edit, editAction);
    if (sliderAction) {
        m_slider = new RibbonSlider(item.range, this);
        m_slider->setAccessibleName(editAction->text());
        FollowAction(m_slider, sliderAction);
    }
}

int RibbonField::LabelWidth() const { return m_label->sizeHint().width(); }

int RibbonField::WidthFor(int labelWidth, int sliderWidth) const {
    return kGap + labelWidth + kGap + m_editWidth + (m_slider ? kGap + sliderWidth : 0);
}

int RibbonField::Arrange(int labelWidth, int sliderWidth, int height) {
    const int editHeight = qMin(kEditHeight, height);
    m_label->setGeometry(kGap, 0, labelWidth, height);
    m_edit->setGeometry(kGap + labelWidth + kGap, (height - editHeight) / 2, m_editWidth, editHeight);
    if (m_slider) m_slider->setGeometry(m_edit->geometry().right() + 1 + kGap, 0, sliderWidth, height);
    return WidthFor(labelWidth, sliderWidth);
}

void FollowAction(QWidget* widget, QAction* action) {
    const auto follow = [widget, action] {
        widget->setEnabled(action->isEnabled());
        // An action without a tip of its own would show its text once more.
        widget->setToolTip(action->whatsThis().isEmpty() ? QString() : action->toolTip());
        widget->setWhatsThis(action->whatsThis());
    };
    follow();
    QObject::connect(action, &QAction::changed, widget, follow);
}
