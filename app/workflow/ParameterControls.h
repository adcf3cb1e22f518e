#pragma once

#include <QString>

/// The edits and sliders of the parameters, by the numbers of their commands.
class ParameterControls {
public:
    virtual ~ParameterControls() = default;

    virtual QString EditText(int id) const = 0;
    virtual void SetEditText(int id, const QString& text) = 0;
    virtual int SliderValue(int id) const = 0;
    virtual void SetSliderValue(int id, int value) = 0;
    virtual void OpenMenuOf(int id) = 0;
    virtual void Redraw() = 0;
};
