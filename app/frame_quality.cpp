// The pane of the calibration's figures, and what the viewers show of them.

#include "app/CMainFrame.h"
#include "app/panes/CQualityWnd.h"
#include "app/view/CAutoROIImageViewer.h"
#include "app/view/CCompareViewer.h"
#include "app/workflow/Workflow.h"

void CMainFrame::FollowQuality() {
    const QualitySteps* const quality = &m_workflow->Get<QualitySteps>();
    connect(quality, &QualitySteps::judged, this, [this](const Report& report) {
        m_qualityWnd->ShowReport(report);
        m_calibViewer->ShowBadge({});
    });
    connect(quality, &QualitySteps::pictureTold, m_qualityWnd.get(), &CQualityWnd::ShowPicture);
    connect(quality, &QualitySteps::outOfDate, this, [this](const QString& reason) {
        m_qualityWnd->SetOutOfDate(reason);
        m_calibViewer->ShowBadge(reason.isEmpty() ? QString() : QString("out of date"));
        if (!reason.isEmpty()) m_rawViewer->Highlight({});  // the patches may lie elsewhere by now
    });
    connect(m_qualityWnd.get(), &CQualityWnd::patchPointed, this, [this, quality](int index) {
        const auto& report = quality->GetReport();
        const bool isPatch = report && quality->WhyOutOfDate().isEmpty() && index >= 0 &&
                             index < static_cast<int>(report->patches.size());
        m_rawViewer->Highlight(isPatch ? report->patches[static_cast<std::size_t>(index)].outline : PatchOutline());
    });
}
