// The panes of the main window: their titles and numbers.

#include "app/CMainFrame.h"
#include "app/CommandIds.h"
#include "app/StringTable.h"
#include "app/panes/CLoggerWnd.h"
#include "app/panes/CQualityWnd.h"
#include "app/panes/CRawColorWnd.h"
#include "app/panes/CSpectrumValuesWnd.h"
#include "app/view/CAutoROIImageViewer.h"
#include "app/view/CCompareViewer.h"
#include "app/view/CDockableImgPane.h"
#include "app/workflow/Workflow.h"

namespace {

void setUp(QDockWidget& pane, int id, const QString& title, Qt::DockWidgetAreas areas, const char* icon) {
    pane.setObjectName(QString::number(id));
    pane.setWindowTitle(title);
    pane.setAllowedAreas(areas);
    pane.setWindowIcon(QIcon(icon));
    // Where it is docked beside another pane it comes in front, once the docking is done.
    QObject::connect(&pane, &QDockWidget::topLevelChanged, &pane, [&pane](bool floats) {
        if (!floats && !pane.isHidden())
            QMetaObject::invokeMethod(
                &pane, [&pane] { pane.raise(); }, Qt::QueuedConnection);
    });
}

void setUp(CImageViewerCtrl& viewer, int id, const QString& title, CMainFrame& frame) {
    viewer.setObjectName(title);
    viewer.setAccessibleName(title);
    viewer.setProperty("controlId", id);
    viewer.SetComm(&frame);
    viewer.SetHost(&frame);
}

}  // namespace

bool CMainFrame::CreatePanes() {
    setDockOptions(AllowNestedDocks | AllowTabbedDocks);  // without animation: a pane has its size once it is shown
    m_logger = std::make_unique<CLoggerWnd>(m_clock, this);
    setUp(*m_logger, string_id::kLoggerPane, "Logs", Qt::TopDockWidgetArea | Qt::BottomDockWidgetArea,
          ":/icons/tonewright.svg");

    m_refPane = std::make_unique<CDockableImgPane>("Reference Image", this);
    setUp(*m_refPane, string_id::kReferencePane, "Reference Image", Qt::AllDockWidgetAreas, ":/icons/image-pane.svg");
    m_calibPane = std::make_unique<CDockableImgPane>("Calibrated Image", this);
    setUp(*m_calibPane, string_id::kCalibratedPane, "Calibrated Image", Qt::AllDockWidgetAreas,
          ":/icons/image-pane.svg");
    m_refViewer = std::make_unique<CAutoROIImageViewer>(m_refPane.get());
    setUp(*m_refViewer, string_id::kReferenceImage, "Reference Image", *this);
    m_refPane->SetChild(m_refViewer.get());
    m_calibViewer = std::make_unique<CCompareViewer>(m_calibPane.get());
    setUp(*m_calibViewer, string_id::kCalibrationImage, "Calibrated Image", *this);
    m_calibPane->SetChild(m_calibViewer.get());

    m_rawColorWnd = std::make_unique<CRawColorWnd>(this);
    setUp(*m_rawColorWnd, string_id::kRawColorPane, "Raw Color List", Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea,
          ":/icons/list-pane.svg");
    m_rawColorWnd->SetViewer(m_rawViewer.get(), string_id::kRawImage);
    m_rawColorWnd->SetViewer(m_refViewer.get(), string_id::kReferenceImage);

    m_spectrumWnd = std::make_unique<CSpectrumValuesWnd>(this);
    setUp(*m_spectrumWnd, string_id::kSpectrumPane, "User Values", Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea,
          ":/icons/list-pane.svg");
    m_spectrumWnd->SetBaseDir(m_baseDir);
    connect(m_spectrumWnd.get(), &CSpectrumValuesWnd::message, this, &CMainFrame::LogMessage);
    connect(m_spectrumWnd.get(), &CSpectrumValuesWnd::matrixSizeChosen, this,
            [this] { m_workflow->Get<CalibrationSteps>().OnMatrixSizeChosen(); });
    m_qualityWnd = std::make_unique<CQualityWnd>(this);
    setUp(*m_qualityWnd, ID_BTN_QUALITY_PANE, "Calibration Quality", Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea,
          ":/icons/list-pane.svg");
    for (QDockWidget* pane : findChildren<QDockWidget*>()) {
        pane->setAcceptDrops(true);
        pane->installEventFilter(this);
    }
    m_rawViewer->SetChartSize(m_spectrumWnd->GetChartSize());
    m_refViewer->SetChartSize(m_spectrumWnd->GetChartSize());
    m_panes = std::make_unique<PaneLayout>(
        *this, StudioPanes{*m_logger, *m_rawColorWnd, *m_spectrumWnd, *m_qualityWnd, *m_refPane, *m_calibPane,
                           *m_rawViewer, *m_refViewer, *m_calibViewer});
    return true;
}

// Ready for the keyboard, its pane in view.
void CMainFrame::OnSelectViewer(int id) {
    if (id == ID_SELECT_REF_VIEWER) m_panes->Show(ID_CBTN_REF_IMG_VIEW);
    if (id == ID_SELECT_CALIB_VIEWER) m_panes->Show(ID_CBTN_CALIB_IMG_VIEW);
    CImageViewerCtrl* viewer = m_rawViewer.get();
    if (id == ID_SELECT_REF_VIEWER) viewer = m_refViewer.get();
    if (id == ID_SELECT_CALIB_VIEWER) viewer = m_calibViewer.get();
    m_workflow->Get<PictureSteps>().SelectViewer(*viewer);
    viewer->setFocus(Qt::ShortcutFocusReason);
}

void CMainFrame::OnCompare() {
    const bool begins = !m_calibViewer->IsComparing();
    if (begins) m_panes->Show(ID_CBTN_CALIB_IMG_VIEW);
    m_calibViewer->CompareWith(begins ? m_rawViewer.get() : nullptr);
}
