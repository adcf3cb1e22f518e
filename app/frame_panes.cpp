// The panes of the main window: their titles, numbers, first sizes and places.

#include <QLayout>
#include <QMainWindow>
#include <algorithm>

#include "app/CMainFrame.h"
#include "app/CommandIds.h"
#include "app/StringTable.h"
#include "app/panes/CLoggerWnd.h"
#include "app/panes/CQualityWnd.h"
#include "app/panes/CRawColorWnd.h"
#include "app/panes/CSpectrumValuesWnd.h"
#include "app/toolkit/RibbonBar.h"
#include "app/view/CAutoROIImageViewer.h"
#include "app/view/CDockableImgPane.h"
#include "app/workflow/Workflow.h"

namespace {

constexpr int kListPaneWidth = 240;
constexpr int kImagePaneWidth = 800;
constexpr int kQualityPaneWidth = 260;
constexpr int kLoggerHeight = 180;
constexpr int kRawViewerWidth = 320;
constexpr int kRoomForAll =
    800;  // a window as wide as this has room for the raw viewer beside the panes at their least

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
    m_calibViewer = std::make_unique<CImageViewerCtrl>(m_calibPane.get());
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
    m_rawViewer->SetChartSize(m_spectrumWnd->GetChartSize());
    m_refViewer->SetChartSize(m_spectrumWnd->GetChartSize());
    return true;
}

void CMainFrame::DockPanes() {
    addDockWidget(Qt::LeftDockWidgetArea, m_rawColorWnd.get());
    splitDockWidget(m_rawColorWnd.get(), m_qualityWnd.get(), Qt::Horizontal);  // before it has tabs, or it becomes one
    tabifyDockWidget(m_rawColorWnd.get(), m_spectrumWnd.get());
    addDockWidget(Qt::BottomDockWidgetArea, m_logger.get());
    addDockWidget(Qt::RightDockWidgetArea, m_calibPane.get());
    tabifyDockWidget(m_calibPane.get(), m_refPane.get());
    m_qualityWnd->hide();  // at once, so that the lists beside it get their width alone
    resizeDocks({m_rawColorWnd.get(), m_calibPane.get()}, {kListPaneWidth, kImagePaneWidth}, Qt::Horizontal);
    resizeDocks({m_logger.get()}, {kLoggerHeight}, Qt::Vertical);
    for (QDockWidget* pane :
         {static_cast<QDockWidget*>(m_rawColorWnd.get()), static_cast<QDockWidget*>(m_spectrumWnd.get()),
          static_cast<QDockWidget*>(m_qualityWnd.get()), static_cast<QDockWidget*>(m_calibPane.get()),
          static_cast<QDockWidget*>(m_refPane.get())}) {
        pane->hide();
    }
    m_logger->show();
    // An image can come to a viewer before its pane is first shown, and is then fitted to the size to come.
    const QSize viewerSize(kImagePaneWidth, height() - kLoggerHeight - m_ribbon->sizeHint().height());
    m_refViewer->resize(viewerSize);
    m_calibViewer->resize(viewerSize);
}

QDockWidget* CMainFrame::PaneOf(int id) const {
    switch (id) {
        case ID_CBTN_LOG:
            return m_logger.get();
        case ID_CBTN_RAW_COLOR_LIST:
            return m_rawColorWnd.get();
        case ID_CBTN_SPECTRUM_VALUES:
            return m_spectrumWnd.get();
        case ID_BTN_QUALITY_PANE:
            return m_qualityWnd.get();
        case ID_CBTN_REF_IMG_VIEW:
            return m_refPane.get();
        case ID_CBTN_CALIB_IMG_VIEW:
            return m_calibPane.get();
        default:
            return nullptr;
    }
}

// The picture to work on and the lists keep their least widths while there is room, and the image panes give way. In a
// narrow window they must not, or it could not become narrower.
void CMainFrame::KeepLeastWidths() {
    if (!m_spectrumWnd) return;  // still being built
    const bool hasRoom = width() >= kRoomForAll;
    m_rawViewer->setMinimumWidth(hasRoom ? kRawViewerWidth : 0);
    for (QDockWidget* pane :
         {static_cast<QDockWidget*>(m_rawColorWnd.get()), static_cast<QDockWidget*>(m_spectrumWnd.get()),
          static_cast<QDockWidget*>(m_qualityWnd.get())}) {
        pane->setMinimumWidth(hasRoom ? kListPaneWidth : 0);
    }
}

// An image pane that gave way gets its width back before the raw viewer gets more than its least.
void CMainFrame::GiveRoomBack(int grown) {
    if (grown <= 0 || !m_rawViewer || m_rawViewer->width() - grown > kRawViewerWidth) return;
    for (CDockableImgPane* pane : {m_calibPane.get(), m_refPane.get()}) {
        const bool isBeside =
            !pane->isFloating() && dockWidgetArea(pane) & (Qt::LeftDockWidgetArea | Qt::RightDockWidgetArea);
        if (!isBeside || pane->visibleRegion().isEmpty() || pane->width() >= kImagePaneWidth) continue;
        resizeDocks({pane}, {std::min(kImagePaneWidth, pane->width() + grown)}, Qt::Horizontal);
        return;
    }
}

// In front of its tabs, and with its size: what is drawn into the pane next is fitted to it.
void CMainFrame::ShowPane(QDockWidget& pane) {
    const bool isNew = &pane == m_qualityWnd.get() && pane.isHidden();
    pane.show();
    pane.raise();
    if (isNew && pane.width() < kQualityPaneWidth) resizeDocks({&pane}, {kQualityPaneWidth}, Qt::Horizontal);
    if (isVisible()) {
        layout()->activate();
        pane.layout()->activate();
    }
}

void CMainFrame::OnTogglePane(int id) {
    QDockWidget* const pane = PaneOf(id);
    if (pane->isHidden()) {
        ShowPane(*pane);
    } else {
        pane->hide();
    }
}

// Ready for the keyboard, its pane in view.
void CMainFrame::OnSelectViewer(int id) {
    if (id == ID_SELECT_REF_VIEWER) ShowPane(*m_refPane);
    if (id == ID_SELECT_CALIB_VIEWER) ShowPane(*m_calibPane);
    CImageViewerCtrl* const viewer = id == ID_SELECT_RAW_VIEWER   ? m_rawViewer.get()
                                     : id == ID_SELECT_REF_VIEWER ? m_refViewer.get()
                                                                  : m_calibViewer.get();
    m_workflow->Get<PictureSteps>().SelectViewer(*viewer);
    viewer->setFocus(Qt::ShortcutFocusReason);
}
