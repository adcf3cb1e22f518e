#pragma once

#include <QWidget>
#include <map>
#include <vector>

#include "app/toolkit/RibbonBody.h"

class QStackedWidget;
class QTabBar;
class QToolButton;
class RibbonButton;
class RibbonEdit;
class RibbonFileMenu;
class RibbonPage;
class RibbonSlider;

/// The ribbon: file button, tabs and help button in one line, the panels of the current tab below. It stands where a
/// window has its menu bar (QMainWindow::setMenuWidget). It shows what a layout describes, with the actions' texts,
/// pictures, tips and states, and knows no command.
class RibbonBar : public QWidget {
    Q_OBJECT
public:
    /// @param layout must outlive the ribbon
    /// @param actions must know every number of the layout. Connect what runs the commands after this constructor:
    ///        then a drop-down is closed before its command runs.
    RibbonBar(const ribbon::Layout& layout, const RibbonActions& actions, QWidget* parent);

    void SetEditText(int id, const QString& text);
    QString EditText(int id) const;  ///< empty for an unknown number
    /// Commits what was typed into an edit and not committed yet: a press on a button leaves the focus there.
    void CommitPendingEdits();
    void DropPendingEdits();  ///< what was typed and not committed does not count
    void SetSliderValue(int id, int value);
    int SliderValue(int id) const;  ///< 0 for an unknown number
    void SetRecentDocuments(const QStringList& paths);

    void SelectTab(int index);
    void OpenFileMenu();
    void OpenMenuOf(int id);  ///< opens the menu of a command's button: below it, or at the mouse where it is hidden

    RibbonPage& CurrentPage();
    /// The top row's targets for key tips: file, tabs, help.
    std::vector<RibbonBody::Target> TopTargets();
    /// Where the tip of a tab stands, in this widget's pixels.
    QRect TabRect(int index) const;

signals:
    void edited(int id);
    void slid(int id);
    void slidEnough();  ///< a slider is taken, let go or left: what follows is another move
    void recentChosen(const QString& path);

protected:
    void paintEvent(QPaintEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    QWidget* MakeTopRow(const RibbonActions& actions);
    void AddPage(const ribbon::Tab& tab, const RibbonActions& actions);

    const ribbon::Layout& m_layout;
    QToolButton* m_file = nullptr;
    RibbonFileMenu* m_fileMenu = nullptr;
    QTabBar* m_tabs = nullptr;
    QToolButton* m_help = nullptr;
    QStackedWidget* m_pages = nullptr;
    std::map<int, RibbonEdit*> m_edits;
    std::map<int, RibbonSlider*> m_sliders;
};
