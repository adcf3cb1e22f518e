#pragma once

#include "app/toolkit/RibbonBar.h"
#include "app/workflow/ParameterControls.h"

/// The parameters' controls as the ribbon holds them.
class RibbonControls : public ParameterControls {
public:
    explicit RibbonControls(RibbonBar& ribbon) : m_ribbon(ribbon) {}
    QString EditText(int id) const override { return m_ribbon.EditText(id); }
    void SetEditText(int id, const QString& text) override { m_ribbon.SetEditText(id, text); }
    int SliderValue(int id) const override { return m_ribbon.SliderValue(id); }
    void SetSliderValue(int id, int value) override { m_ribbon.SetSliderValue(id, value); }
    void OpenMenuOf(int id) override { m_ribbon.OpenMenuOf(id); }
    void Redraw() override { m_ribbon.update(); }

private:
    RibbonBar& m_ribbon;
};
