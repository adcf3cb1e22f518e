#include "app/workflow/Workflow.h"

StudioState Workflow::GetStudioState() const {
    return {.deviceKind = m_work.deviceKind,
            .hasCoefficientFile = !m_work.coefficientFile.isEmpty(),
            .calibrationMode = m_work.engine.GetCalibrationMode(),
            .illuminant = m_work.engine.GetIlluminant(),
            .saturationMode = m_work.engine.GetSaturationMode(),
            .manualColors = m_work.manualColors,
            .rawHasImage = m_work.raw.Image().IsAllocated(),
            .refHasImage = m_work.reference.Image().IsAllocated(),
            .calibHasImage = m_work.calibrated.Image().IsAllocated(),
            .rawSelected = m_work.raw.IsSelected() != 0,
            .refSelected = m_work.reference.IsSelected() != 0,
            .calibSelected = m_work.calibrated.IsSelected() != 0,
            .hasReport = m_report.HasReport(),
            .canVerify = m_verify.CanVerify(),
            .canUndo = m_undo.CanUndo(),
            .canRedo = m_undo.CanRedo()};
}
