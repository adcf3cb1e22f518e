#pragma once

#include <tuple>

#include "app/StudioState.h"
#include "app/workflow/CalibrationSteps.h"
#include "app/workflow/DeviceSteps.h"
#include "app/workflow/FileSteps.h"
#include "app/workflow/ParameterSteps.h"
#include "app/workflow/PictureSteps.h"
#include "app/workflow/QualitySteps.h"
#include "app/workflow/ReportSteps.h"
#include "app/workflow/UndoSteps.h"
#include "app/workflow/VerifySteps.h"
#include "app/workflow/WorkflowContext.h"

/// The work behind the commands, without a window: every step of loading, calibrating, setting parameters and talking
/// to the device. None of the steps asks whether it may run; the rules of the command table do. Main thread only.
///
/// Steps that are new get a class of their own beside these. A pane that shows what the calibration is worth follows
/// News(): it connects to previewed() and detected() and reads Parts() then.
class Workflow {
public:
    explicit Workflow(const WorkflowParts& parts)
        : m_work(parts),
          m_pictures(m_work),
          m_calibration(m_work, m_pictures),
          m_parameters(m_work, m_pictures, m_calibration),
          m_files(m_work, m_pictures, m_calibration, m_parameters),
          m_devices(m_work, m_pictures, m_calibration),
          m_quality(m_work, m_pictures, m_calibration),
          m_verify(m_work),
          m_report(m_work, m_quality, m_verify),
          m_undo(m_work, m_calibration, m_parameters) {}

    /// The steps of one kind: Get<PictureSteps>(), ...
    template <class Steps>
    Steps& Get() {
        return std::get<Steps&>(std::tie(m_pictures, m_calibration, m_parameters, m_files, m_devices, m_quality,
                                         m_verify, m_report, m_undo));
    }

    const WorkflowParts& Parts() const { return m_work; }
    const WorkflowState& State() const { return m_work; }
    WorkflowNews& News() { return m_work.news; }
    /// What the rules of the commands look at, but for the window's own part: lists enabled, panes visible.
    StudioState GetStudioState() const;

private:
    WorkflowContext m_work;
    PictureSteps m_pictures;
    CalibrationSteps m_calibration;
    ParameterSteps m_parameters;
    FileSteps m_files;
    DeviceSteps m_devices;
    QualitySteps m_quality;
    VerifySteps m_verify;
    ReportSteps m_report;
    UndoSteps m_undo;
};
