#pragma once

#include <QStringList>
#include <QToolButton>
#include <functional>

#include "app/toolkit/RibbonLayout.h"

class QMenu;

/// Breaks a caption into at most two lines, so that the wider one is as narrow as can be.
/// @param widthOf pixels of a text
QStringList BalanceCaption(const QString& caption, const std::function<int(const QString&)>& widthOf);

/// A button of the ribbon: picture above two lines of text, or a row of small picture and text. It shows an action:
/// its text, picture, tip and state.
class RibbonButton : public QToolButton {
    Q_OBJECT
public:
    RibbonButton(QAction* action, QWidget* parent);

    void SetLarge(bool large);
    bool IsLarge() const { return m_large; }
    /// @param menu the button takes it over
    void SetMenu(QMenu* menu, ribbon::Menu use);
    void SetArrow(bool arrow);  ///< shows the sign of a drop-down also without a menu
    QSize SizeFor(bool large) const;
    QSize sizeHint() const override { return SizeFor(m_large); }
    QSize minimumSizeHint() const override { return sizeHint(); }

    /// Height of a row of small buttons, and of a large one, in pixels.
    static int RowHeight(const QFontMetrics& metrics);
    static int BodyHeight(const QFontMetrics& metrics);

    /// Where the text of a row begins, and where the picture of a large button ends, in pixels from the corner.
    static int RowTextLeft();
    static int LargePictureBottom();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool IsUnderPointer() const;
    QRect ArrowZone() const;
    QString Caption() const;
    void PaintLarge(QPainter& painter) const;
    void PaintSmall(QPainter& painter) const;
    void PaintPicture(QPainter& painter, const QRect& place) const;

    bool m_large = true;
    bool m_arrow = false;
    ribbon::Menu m_menuUse = ribbon::Menu::None;
    QPoint m_pointer;  // last place of the mouse, to light the half under it
};
