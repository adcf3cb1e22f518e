#pragma once

#include <QDockWidget>

/// A dockable pane that one child window fills.
class CDockableImgPane : public QDockWidget {
    Q_OBJECT
public:
    explicit CDockableImgPane(const QString& title, QWidget* parent = nullptr);

    /// @param child not owned; it fills the pane's client area from now on and may go before the pane
    void SetChild(QWidget* child);
    QWidget* GetChild() const { return widget(); }

    QSize sizeHint() const override;  ///< 800 wide
};
