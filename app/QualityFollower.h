#pragma once

#include <QObject>

class CAutoROIImageViewer;
class CImageViewerCtrl;
class CQualityWnd;
class Workflow;

/// Brings what the workflow tells of a calibration's worth to the quality pane and to the viewers. The pane shows the
/// last preview, or a verification until the user goes back.
class QualityFollower : public QObject {
    Q_OBJECT
public:
    QualityFollower(Workflow& workflow, CQualityWnd& pane, CAutoROIImageViewer& raw, CImageViewerCtrl& calibrated);

signals:
    /// A figure is worth a look for the first time in the profile's life, and the pane was never seen.
    void paneWanted();

private:
    void FollowCalibration();
    void FollowVerification();
    void HighlightPatch(int index);
    void AnnouncePane();

    Workflow& m_workflow;
    CQualityWnd& m_pane;
    CAutoROIImageViewer& m_raw;
    CImageViewerCtrl& m_calibrated;
};
