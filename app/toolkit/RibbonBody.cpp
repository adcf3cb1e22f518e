#include "app/toolkit/RibbonBody.h"

#include <QAction>
#include <QCheckBox>
#include <QMenu>
#include <algorithm>

#include "app/toolkit/RibbonButton.h"
#include "app/toolkit/RibbonField.h"

namespace {

constexpr int kColumnGap = 2;
constexpr int kSeparatorRoom = 9;
constexpr std::size_t kRowsInColumn = 3;
constexpr int kShortSlider = 64;
constexpr int kCheckBoxLeft = 18;  // room for a key tip beside the box

QMenu* makeMenu(std::span<const int> ids, const RibbonActions& actions) {
    auto* menu = new QMenu;
    for (const int id : ids) {
        if (id) {
            menu->addAction(actions(id));
            if (!actions(id)->icon().isNull()) menu->setObjectName("pictures");  // no room for check marks
            if (!actions(id)->whatsThis().isEmpty()) menu->setToolTipsVisible(true);
        } else {
            menu->addSeparator();
        }
    }
    return menu;
}

QWidget* makeSeparator(QWidget* parent) {
    auto* line = new QWidget(parent);
    line->setObjectName("ribbonSeparator");
    line->setAttribute(Qt::WA_StyledBackground);
    return line;
}

QCheckBox* makeCheckBox(QAction* action, QWidget* parent) {
    auto* box = new QCheckBox(action->text(), parent);
    const auto follow = [box, action] { box->setChecked(action->isChecked()); };
    follow();
    QObject::connect(action, &QAction::changed, box, follow);
    QObject::connect(action, &QAction::triggered, box, follow);
    QObject::connect(box, &QCheckBox::clicked, action, &QAction::trigger);
    FollowAction(box, action);
    return box;
}

}  // namespace

// One pass over the controls: where the next column begins, and the rows that wait in the open one.
struct RibbonBody::Flowing {
    RibbonForm form;
    bool apply;
    int height;
    int rowHeight;
    int x = 0;
    std::vector<const Control*> rows;
};

RibbonBody::RibbonBody(const ribbon::Panel& panel, const RibbonActions& actions, QWidget* parent) : QWidget(parent) {
    m_controls.reserve(panel.items.size());
    for (const ribbon::Item& item : panel.items) Add(item, actions);
}

void RibbonBody::Add(const ribbon::Item& item, const RibbonActions& actions) {
    switch (item.kind) {
        case ribbon::Kind::Large:
        case ribbon::Kind::Small:
            AddButton(item, actions);
            break;
        case ribbon::Kind::CheckBox:
            m_controls.push_back({&item, makeCheckBox(actions(item.id), this)});
            break;
        case ribbon::Kind::Field:
            AddField(item, actions);
            break;
        case ribbon::Kind::Slider:
            AddSlider(item, actions);
            break;
        case ribbon::Kind::Separator:
            m_controls.push_back({&item, makeSeparator(this)});
            break;
        case ribbon::Kind::NewColumn:
            m_controls.push_back({&item, nullptr});
            break;
    }
}

void RibbonBody::AddButton(const ribbon::Item& item, const RibbonActions& actions) {
    auto* button = new RibbonButton(actions(item.id), this);
    const auto tellDone = [this](QAction* action) {
        connect(action, &QAction::triggered, this, [this, id = action->data().toInt()] { emit commandDone(id); });
    };
    if (item.menu != ribbon::Menu::None) {
        button->SetMenu(makeMenu(item.menuIds, actions), item.menu);
        for (const int id : item.menuIds) {
            if (id) tellDone(actions(id));
        }
    }
    if (item.menu != ribbon::Menu::Whole) tellDone(actions(item.id));
    m_controls.push_back({&item, button, button});
}

void RibbonBody::AddField(const ribbon::Item& item, const RibbonActions& actions) {
    auto* field = new RibbonField(item, actions(item.id), item.sliderId ? actions(item.sliderId) : nullptr, this);
    connect(&field->Edit(), &RibbonEdit::committed, this, [this, id = item.id] { emit edited(id); });
    if (field->Slider()) {
        connect(field->Slider(), &RibbonSlider::moved, this, [this, id = item.sliderId] { emit slid(id); });
    }
    m_controls.push_back({&item, field, nullptr, field});
}

void RibbonBody::AddSlider(const ribbon::Item& item, const RibbonActions& actions) {
    auto* slider = new RibbonSlider(item.range, this);
    slider->setAccessibleName(actions(item.id)->text());
    FollowAction(slider, actions(item.id));
    connect(slider, &RibbonSlider::moved, this, [this, id = item.id] { emit slid(id); });
    m_controls.push_back({&item, slider});
}

QSize RibbonBody::Flow(RibbonForm form, bool apply) {
    Flowing flow{.form = form == RibbonForm::Button ? RibbonForm::Full : form,
                 .apply = apply,
                 .height = RibbonButton::BodyHeight(fontMetrics()),
                 .rowHeight = 0,
                 .rows = {}};
    flow.rowHeight = flow.height / static_cast<int>(kRowsInColumn);
    for (std::size_t i = 0; i < m_controls.size(); ++i) {
        const Control& control = m_controls[i];
        if (control.item->kind == ribbon::Kind::Large) {
            std::size_t count = 1;
            while (i + count < m_controls.size() && m_controls[i + count].item->kind == ribbon::Kind::Large) ++count;
            FlowLarge(flow, i, count);
            i += count - 1;
        } else if (control.item->kind == ribbon::Kind::NewColumn) {
            EndColumn(flow);
        } else if (control.item->kind == ribbon::Kind::Separator) {
            EndColumn(flow);
            if (apply) control.widget->setGeometry(flow.x + kSeparatorRoom / 2 - 1, 4, 1, flow.height - 8);
            flow.x += kSeparatorRoom;
        } else {
            FlowRow(flow, control);
        }
    }
    EndColumn(flow);
    return {std::max(flow.x - kColumnGap, 0), flow.height};
}

// A run of large buttons turns into rows in the compact form, where that is narrower.
void RibbonBody::FlowLarge(Flowing& flow, std::size_t first, std::size_t count) const {
    const auto run = std::span(m_controls).subspan(first, count);
    int large = 0;
    int small = 0;
    for (std::size_t i = 0; i < count; i += kRowsInColumn) {
        int widest = 0;
        for (const Control& control : run.subspan(i, std::min(kRowsInColumn, count - i))) {
            large += control.button->SizeFor(true).width() + kColumnGap;
            widest = std::max(widest, control.button->SizeFor(false).width());
        }
        small += widest + kColumnGap;
    }
    const bool asRows = flow.form == RibbonForm::Compact && small < large;
    EndColumn(flow);
    for (const Control& control : run) {
        if (flow.apply) control.button->SetLarge(!asRows);
        if (asRows) {
            FlowRow(flow, control);
            continue;
        }
        const int width = control.button->SizeFor(true).width();
        if (flow.apply) control.widget->setGeometry(flow.x, 0, width, flow.height);
        flow.x += width + kColumnGap;
    }
    EndColumn(flow);
}

void RibbonBody::FlowRow(Flowing& flow, const Control& control) const {
    if (control.item->kind == ribbon::Kind::Small && flow.apply) control.button->SetLarge(false);
    flow.rows.push_back(&control);
    if (flow.rows.size() == kRowsInColumn) EndColumn(flow);
}

int RibbonBody::SliderWidth(const ribbon::Item& item, RibbonForm form) const {
    return form == RibbonForm::Full ? item.sliderWidth : std::min(item.sliderWidth, kShortSlider);
}

void RibbonBody::EndColumn(Flowing& flow) const {
    if (flow.rows.empty()) return;
    int labelWidth = 0;
    for (const Control* row : flow.rows) {
        if (row->field) labelWidth = std::max(labelWidth, row->field->LabelWidth());
    }
    int width = 0;
    for (const Control* row : flow.rows) {
        const int slider = SliderWidth(*row->item, flow.form);
        if (row->field) {
            width = std::max(width, row->field->WidthFor(labelWidth, slider));
        } else if (row->button) {
            width = std::max(width, row->button->SizeFor(false).width());
        } else if (row->item->kind == ribbon::Kind::Slider) {
            width = std::max(width, slider);
        } else {
            width = std::max(width, kCheckBoxLeft + row->widget->sizeHint().width());
        }
    }
    int y = 0;
    for (const Control* row : flow.rows) {
        if (flow.apply) {
            if (row->field) row->field->Arrange(labelWidth, SliderWidth(*row->item, flow.form), flow.rowHeight);
            int rowWidth = width;
            if (row->item->kind == ribbon::Kind::Slider) rowWidth = std::min(width, row->item->sliderWidth);
            if (row->item->kind == ribbon::Kind::CheckBox) rowWidth = width - kCheckBoxLeft;
            row->widget->setGeometry(flow.x + (width - rowWidth), y, rowWidth, flow.rowHeight);
        }
        y += flow.rowHeight;
    }
    flow.x += width + kColumnGap;
    flow.rows.clear();
}

std::vector<std::pair<int, RibbonEdit*>> RibbonBody::Edits() const {
    std::vector<std::pair<int, RibbonEdit*>> edits;
    for (const Control& control : m_controls) {
        if (control.field) edits.emplace_back(control.item->id, &control.field->Edit());
    }
    return edits;
}

std::vector<std::pair<int, RibbonSlider*>> RibbonBody::Sliders() const {
    std::vector<std::pair<int, RibbonSlider*>> sliders;
    for (const Control& control : m_controls) {
        if (auto* alone = qobject_cast<RibbonSlider*>(control.widget)) sliders.emplace_back(control.item->id, alone);
        if (control.field && control.field->Slider()) {
            sliders.emplace_back(control.item->sliderId, control.field->Slider());
        }
    }
    return sliders;
}

std::vector<RibbonBody::Target> RibbonBody::Targets() const {
    std::vector<Target> targets;
    for (const Control& control : m_controls) {
        const QString keyTip = control.item->keyTip;
        if (keyTip.isEmpty() || !control.widget || !control.widget->isEnabled()) continue;
        if (RibbonButton* button = control.button) {
            const bool opens = control.item->menu == ribbon::Menu::Whole;
            targets.push_back({keyTip, button, [button, opens] { opens ? button->showMenu() : button->click(); }});
        } else if (RibbonField* field = control.field) {
            if (!field->Edit().isEnabled()) continue;
            targets.push_back({keyTip, &field->Edit(), [field] {
                                   field->Edit().setFocus(Qt::ShortcutFocusReason);
                                   field->Edit().selectAll();
                               }});
        } else if (auto* box = qobject_cast<QCheckBox*>(control.widget)) {
            targets.push_back({keyTip, box, [box] { box->click(); }});
        } else {
            targets.push_back(
                {keyTip, control.widget, [widget = control.widget] { widget->setFocus(Qt::ShortcutFocusReason); }});
        }
    }
    return targets;
}
