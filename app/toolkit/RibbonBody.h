#pragma once

#include <QWidget>
#include <functional>
#include <utility>
#include <vector>

#include "app/toolkit/RibbonForms.h"
#include "app/toolkit/RibbonLayout.h"

class QAction;
class RibbonButton;
class RibbonEdit;
class RibbonField;
class RibbonSlider;

/// Finds the action of a command; never null for a number that the layout names.
using RibbonActions = std::function<QAction*(int id)>;

/// The controls of one panel, in columns.
class RibbonBody : public QWidget {
    Q_OBJECT
public:
    RibbonBody(const ribbon::Panel& panel, const RibbonActions& actions, QWidget* parent);

    QSize SizeFor(RibbonForm form) { return Flow(form, false); }
    void Arrange(RibbonForm form) { resize(Flow(form, true)); }

    /// Something that a key tip reaches.
    struct Target {
        QString keyTip;
        QWidget* widget;
        std::function<void()> activate;
    };
    std::vector<Target> Targets() const;

    std::vector<std::pair<int, RibbonEdit*>> Edits() const;      ///< with their commands
    std::vector<std::pair<int, RibbonSlider*>> Sliders() const;  ///< with their commands

signals:
    void edited(int id);       ///< a field's text was committed
    void slid(int id);         ///< a slider was moved
    void commandDone(int id);  ///< a button or a menu entry was pressed

private:
    struct Control {
        const ribbon::Item* item;
        QWidget* widget;  // null for NewColumn
        RibbonButton* button = nullptr;
        RibbonField* field = nullptr;
    };
    struct Flowing;

    void Add(const ribbon::Item& item, const RibbonActions& actions);
    void AddButton(const ribbon::Item& item, const RibbonActions& actions);
    void AddField(const ribbon::Item& item, const RibbonActions& actions);
    void AddSlider(const ribbon::Item& item, const RibbonActions& actions);
    QSize Flow(RibbonForm form, bool apply);
    void FlowLarge(Flowing& flow, std::size_t first, std::size_t count) const;
    void FlowRow(Flowing& flow, const Control& control) const;
    void EndColumn(Flowing& flow) const;
    int SliderWidth(const ribbon::Item& item, RibbonForm form) const;

    std::vector<Control> m_controls;
};
