#pragma once

#include <QString>

#include "app/toolkit/ViewRect.h"
#include "app/workflow/PictureSteps.h"
#include "app/workflow/WorkflowContext.h"

/// Colors, the fit, and the preview.
class CalibrationSteps {
public:
    CalibrationSteps(WorkflowContext& work, PictureSteps& pictures) : m_work(work), m_pictures(pictures) {}

    void OnRoiChanged(const ViewRect& roi);  ///< of any picture: both charts are looked for anew
    void OnMatrixSizeChosen();

    /// Gives the engine the colors in force: the lists, or what the charts measure.
    void PushColorsToEngine();
    /// Fits the colors in force. @return false, told in the log
    bool CalibrateForSaving();
    void NoteFit();  ///< the engine has calibrated
    void OnCalibratePreview();
    void RerunPreview();  ///< where one is active
    /// @return a clause that says where a chart was found in part only; empty where the colors don't come from one
    QString WhyChartIsIncomplete() const;

    void OnColorsAutomatic();
    void OnColorsManual();
    void OnAddColor();
    void OnRemoveLastColor();
    void OnRemoveColor();
    void OnClearColors();

private:
    bool CalibrateAndExecute();
    bool MayPickByHand();

    WorkflowContext& m_work;
    PictureSteps& m_pictures;
};
