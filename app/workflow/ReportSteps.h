#pragma once

#include "app/workflow/QualitySteps.h"
#include "app/workflow/VerifySteps.h"
#include "app/workflow/WorkflowContext.h"

/// Writes what the quality pane shows: the figures of the last preview, or of a verification.
class ReportSteps {
public:
    ReportSteps(WorkflowContext& work, QualitySteps& quality, VerifySteps& verify)
        : m_work(work), m_quality(quality), m_verify(verify) {}

    bool HasReport() const { return m_verify.GetReport() || m_quality.GetReport(); }
    void OnSaveReport();

private:
    std::optional<tonewright::Report> Take() const;

    WorkflowContext& m_work;
    QualitySteps& m_quality;
    VerifySteps& m_verify;
};
