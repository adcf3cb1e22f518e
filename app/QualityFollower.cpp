#include "app/QualityFollower.h"

#include "app/panes/CQualityWnd.h"
#include "app/toolkit/Profile.h"
#include "app/view/CAutoROIImageViewer.h"
#include "app/workflow/Workflow.h"

using namespace tonewright;

namespace {

constexpr const char* kSection = "Window";
constexpr const char* kSeen = "QualitySeen";

}  // namespace

QualityFollower::QualityFollower(Workflow& workflow, CQualityWnd& pane, CAutoROIImageViewer& raw,
                                 CImageViewerCtrl& calibrated)
    : m_workflow(workflow), m_pane(pane), m_raw(raw), m_calibrated(calibrated) {
    FollowCalibration();
    FollowVerification();
    connect(&m_pane, &CQualityWnd::patchPointed, this, &QualityFollower::HighlightPatch);
    connect(&m_pane, &QDockWidget::visibilityChanged, this, [](bool isVisible) {
        if (isVisible) GetProfile().WriteInt(kSection, kSeen, 1);
    });
}

void QualityFollower::FollowCalibration() {
    const QualitySteps* const quality = &m_workflow.Get<QualitySteps>();
    const auto isShown = [this] { return !m_workflow.Get<VerifySteps>().GetReport(); };
    connect(quality, &QualitySteps::judged, this, [this, isShown](const Report& report) {
        if (isShown()) m_pane.ShowReport(report);
        m_calibrated.ShowBadge({});
        AnnouncePane();
    });
    connect(quality, &QualitySteps::pictureTold, this,
            [this, isShown](const QString& summary, const std::vector<Finding>& findings) {
                if (isShown()) m_pane.ShowPicture(summary, findings);
            });
    connect(quality, &QualitySteps::outOfDate, this, [this, isShown](const QString& reason) {
        if (isShown()) m_pane.SetOutOfDate(reason);
        m_calibrated.ShowBadge(reason.isEmpty() ? QString() : QString("out of date"));
        if (!reason.isEmpty()) m_raw.Highlight({});  // the patches may lie elsewhere by now
    });
}

void QualityFollower::FollowVerification() {
    VerifySteps* const verify = &m_workflow.Get<VerifySteps>();
    connect(verify, &VerifySteps::verified, this, [this](const Report& report, const QString& fileName) {
        m_raw.Highlight({});
        m_pane.ShowVerification(report, fileName);
    });
    connect(verify, &VerifySteps::outOfDate, &m_pane, &CQualityWnd::SetOutOfDate);
    connect(&m_pane, &CQualityWnd::backWanted, verify, &VerifySteps::OnBack);
    connect(verify, &VerifySteps::left, this, [this] {
        m_pane.Clear();
        m_workflow.Get<QualitySteps>().TellAgain();
    });
}

// The outlines of a verification belong to a picture that no viewer shows.
void QualityFollower::HighlightPatch(int index) {
    const QualitySteps& quality = m_workflow.Get<QualitySteps>();
    const auto& report = quality.GetReport();
    const bool isPatch = !m_workflow.Get<VerifySteps>().GetReport() && report && quality.WhyOutOfDate().isEmpty() &&
                         index >= 0 && index < static_cast<int>(report->patches.size());
    m_raw.Highlight(isPatch ? report->patches[static_cast<std::size_t>(index)].outline : PatchOutline());
}

// Once: whoever has seen the pane, and closed it or not, knows where it is.
void QualityFollower::AnnouncePane() {
    if (GetProfile().ReadInt(kSection, kSeen, 0) != 0) return;
    GetProfile().WriteInt(kSection, kSeen, 1);
    emit paneWanted();
}
