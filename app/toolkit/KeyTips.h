#pragma once

#include <QObject>
#include <QPointer>
#include <vector>

#include "app/toolkit/RibbonBody.h"

class QLabel;
class RibbonBar;
class RibbonPanel;

/// The letters that Alt lays over the ribbon. Alt shows those of the top row; a tab's letter selects the tab and shows
/// its panels'; a control's letters press it. Esc steps back, any other key or a click ends it.
class KeyTips : public QObject {
    Q_OBJECT
public:
    explicit KeyTips(RibbonBar& bar);  ///< becomes the bar's child
    bool IsShowing() const { return !m_shown.empty(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Shown {
        RibbonBody::Target target;
        QPointer<QLabel> label;
    };

    bool WatchAlt(QEvent* event);
    bool HandleKey(int key, const QString& text);
    void ShowTop();
    void ShowPage();
    void StepBack();
    RibbonPanel* DroppedDown() const;  // null: no panel is
    struct Spot;
    static Spot SpotOf(QWidget& widget);
    void Show(const RibbonBody::Target& target, QWidget* window, const Spot& spot);
    void End();
    void Choose(const RibbonBody::Target& target);
    bool IsOwnWindow() const;

    RibbonBar& m_bar;
    std::vector<Shown> m_shown;
    QString m_typed;
    bool m_armed = false;  // Alt is down and nothing came between
    bool m_onTop = false;
};
