#pragma once

#include <array>

#include "app/workflow/CalibrationSteps.h"
#include "app/workflow/PictureSteps.h"
#include "app/workflow/WorkflowContext.h"

/// The parameters of the calibration: mode, illuminant, gamma, saturation.
class ParameterSteps {
public:
    ParameterSteps(WorkflowContext& work, PictureSteps& pictures, CalibrationSteps& calibration)
        : m_work(work), m_pictures(pictures), m_calibration(calibration) {}

    /// Shows what the engine has, as after the start, a reset and a file. The saturation controls keep what they show,
    /// deliberately (C22).
    void SyncControlsFromEngine();

    void OnAbsolute();
    void OnRelative();
    void OnIlluminantType();
    void OnIlluminant(int id);
    void OnGammaEdit();
    void OnGammaSlider();
    void OnSaturationMode(int id);
    void OnSaturationEdit(int id);
    void OnSaturationSlider(int id);
    void OnResetParameters();

    static bool IsSlider(int id);
    void ShowGamma();                                  ///< the engine's, in its controls
    std::array<int, 3> GetSaturationControls() const;  ///< what red, green and blue show
    void ShowSaturation(const std::array<int, 3>& values);

private:
    void UsePredefinedIlluminant();
    void ApplyGamma(int hundredths);
    void ApplySaturation(int id, int value);

    WorkflowContext& m_work;
    PictureSteps& m_pictures;
    CalibrationSteps& m_calibration;
};
