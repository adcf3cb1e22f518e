#pragma once

#include <QLineEdit>
#include <QSlider>

#include "app/toolkit/RibbonLayout.h"

class QAction;
class QLabel;

/// An edit whose text counts once it is committed: by Enter, or by leaving it with another text than was shown.
/// Esc brings the shown text back.
class RibbonEdit : public QLineEdit {
    Q_OBJECT
public:
    explicit RibbonEdit(QWidget* parent);
    void ShowText(const QString& text);
    /// Commits a text that was typed and not committed yet.
    void CommitPending();
    void DropPending();  ///< the shown text comes back

signals:
    void committed();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void Commit();
    QString m_shown;
};

/// A slider that tells of the user's moves alone.
class RibbonSlider : public QSlider {
    Q_OBJECT
public:
    RibbonSlider(ribbon::Range range, QWidget* parent);
    void ShowValue(int value);

signals:
    void moved();
    void settled();  ///< it was taken, let go or left

protected:
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    bool m_quiet = false;
};

/// A row of the ribbon: label, edit, and a slider if the layout names one.
class RibbonField : public QWidget {
    Q_OBJECT
public:
    /// @param sliderAction null where there is no slider
    RibbonField(const ribbon::Item& item, QAction* editAction, QAction* sliderAction, QWidget* parent);

    int LabelWidth() const;
    /// Places the parts; columns of fields share one label width. @return the width taken, in pixels
    int Arrange(int labelWidth, int sliderWidth, int height);
    /// The width that Arrange would take.
    int WidthFor(int labelWidth, int sliderWidth) const;
    RibbonEdit& Edit() { return *m_edit; }
    RibbonSlider* Slider() { return m_slider; }

private:
    QLabel* m_label;
    RibbonEdit* m_edit;
    RibbonSlider* m_slider = nullptr;
    int m_editWidth;
};

/// Lets a widget follow an action's enabled state and tip.
void FollowAction(QWidget* widget, QAction* action);
