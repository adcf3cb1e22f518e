#include "app/CMainFrame.h"

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QIcon>
#include <QScreen>
#include <QStatusBar>
#include <exception>

#include "acquisition/CTonewrightAcq.h"
#include "acquisition/zvn/ZvnManager.h"
#include "app/CommandIds.h"
#include "app/FrameMessage.h"
#include "app/GetEngine.h"
#include "app/QualityFollower.h"
#include "app/RibbonControls.h"
#include "app/StringTable.h"
#include "app/panes/CLoggerWnd.h"
#include "app/panes/CQualityWnd.h"
#include "app/panes/CRawColorWnd.h"
#include "app/panes/CSpectrumValuesWnd.h"
#include "app/pdf_report.h"
#include "app/toolkit/Prompts.h"
#include "app/view/CAutoROIImageViewer.h"
#include "app/view/CCompareViewer.h"
#include "app/view/CDockableImgPane.h"
#include "app/workflow/StatusTexts.h"
#include "app/workflow/Workflow.h"
#include "calibration/CTivTonewrightDC.h"

// The pictures stand in a library, which does not register them by itself. The macro wants the global namespace.
static void registerPictures() { Q_INIT_RESOURCE(studio); }

namespace {

// Numbers by which other programs find the windows.
constexpr int kRibbonControl = 59398;
constexpr int kStatusBarControl = 59393;
constexpr int kRawViewerControl = 59648;
constexpr QSize kFirstSize{1600, 950};
constexpr QSize kScreenMargin{40, 80};  // left free on a small screen, for the title bar, too

QString baseDirectory() {
    const QString root = qEnvironmentVariable("ZELVANDIR");
    if (root.isEmpty()) return {};
    return root + QDir::separator() + "Tonewright" + QDir::separator();
}

std::unique_ptr<CTonewrightAcq> makeSession(QWidget* parentWindow) {
    try {
        return std::make_unique<CTonewrightAcq>(AcquisitionCallback, nullptr, parentWindow);
    } catch (const std::exception&) {
        return nullptr;
    }
}

/// What the devices' backend tells, on whatever thread, goes into the log.
void listenToDevices(CMainFrame& frame) {
    ZvnManager::SetStatusListener([&frame](ZvnStatus kind, const std::string& text) {
        const int type = kind == ZvnStatus::Note ? LogWarning : LogError;
        const QString words = QString::fromStdString(text);
        QMetaObject::invokeMethod(&frame, [&frame, type, words] { frame.LogMessage(words, type); });
    });
}

}  // namespace

CMainFrame::CMainFrame() : m_baseDir(baseDirectory()) {
    registerPictures();
    setWindowTitle(kStudioTitle);
    m_acq = makeSession(this);
    if (!m_acq) {
        // The sibling tool's name is deliberate (C8).
        GetPrompts().ShowError("No Acquisition found",
                               "A fatal error happened.\r\nWe couldn't find any acquisition device.\r\nGlyphix Studio "
                               "will close.");
        QMetaObject::invokeMethod(this, &QWidget::close, Qt::QueuedConnection);
    }
    CTivTonewrightDC& engine = GetEngine();
    engine.SetCalibrationMode(0);
    engine.SetIlluminant(0);
    engine.SetXformSize(4);
}

// The road of the frames closes first, so that the session's thread, which ends with the members, waits for nothing.
CMainFrame::~CMainFrame() {
    ZvnManager::SetStatusListener(nullptr);
    frame_message::Close();
}

bool CMainFrame::OnCreate() {
    setAcceptDrops(true);
    setWindowIcon(QIcon(":/icons/tonewright.svg"));
    resize(kFirstSize.boundedTo(screen()->availableSize() - kScreenMargin));
    CreateActions();
    CreateRibbon();
    m_rawViewer = std::make_unique<CAutoROIImageViewer>(this);
    m_rawViewer->setObjectName("Raw Image");
    m_rawViewer->setAccessibleName("Raw Image");
    m_rawViewer->setProperty("controlId", kRawViewerControl);
    m_rawViewer->SetComm(this);
    m_rawViewer->SetHost(this);
    setCentralWidget(m_rawViewer.get());
    m_status = std::make_unique<StudioStatus>(*statusBar());
    m_ribbon->setProperty("controlId", kRibbonControl);
    statusBar()->setProperty("controlId", kStatusBarControl);
    if (!CreatePanes()) return false;
    CreateWorkflow();
    m_panes->Dock();
    m_rawViewer->SetSelected(1);
    m_rawViewer->setFocus();
    m_workflow->Get<ParameterSteps>().SyncControlsFromEngine();
    UpdateCommands();
    frame_message::Open(*this);
    listenToDevices(*this);
    return true;
}

void CMainFrame::CreateWorkflow() {
    m_controls = std::make_unique<RibbonControls>(*m_ribbon);
    m_workflow = std::make_unique<Workflow>(WorkflowParts{.engine = GetEngine(),
                                                          .session = m_acq.get(),
                                                          .raw = *m_rawViewer,
                                                          .reference = *m_refViewer,
                                                          .calibrated = *m_calibViewer,
                                                          .lists = *m_rawColorWnd,
                                                          .values = *m_spectrumWnd,
                                                          .controls = *m_controls,
                                                          .makePdf = PdfReport,
                                                          .baseDir = m_baseDir});
    const WorkflowNews* news = &m_workflow->News();
    connect(news, &WorkflowNews::message, this, &CMainFrame::LogMessage);
    connect(news, &WorkflowNews::statusChanged, this, [this](int id, const QString& text) { m_status->Set(id, text); });
    connect(news, &WorkflowNews::statusWanted, this, [this](int id) { m_status->Show(id); });
    connect(news, &WorkflowNews::paneWanted, this, [this](int id) { m_panes->Show(id); });
    connect(news, &WorkflowNews::standsStill, this, [this] {
        m_panes->Show(ID_CBTN_LOG);
        m_logger->repaint();
    });
    m_qualityFollower = std::make_unique<QualityFollower>(*m_workflow, *m_qualityWnd, *m_rawViewer, *m_calibViewer);
    connect(m_qualityFollower.get(), &QualityFollower::paneWanted, this,
            [this] { m_panes->Show(ID_BTN_QUALITY_PANE); });
}

// The viewers are the only pictures that the workflow has.
CImageViewerCtrl* CMainFrame::GetSelectedViewer() {
    return static_cast<CImageViewerCtrl*>(m_workflow->Get<PictureSteps>().GetSelectedViewer());
}

void CMainFrame::DeselectAllViewers() { m_workflow->Get<PictureSteps>().DeselectAllViewers(); }

void CMainFrame::RefreshManualPick() { m_workflow->Get<CalibrationSteps>().OnAddColor(); }

bool CMainFrame::PicksByHand() const { return m_workflow && m_workflow->State().manualColors; }

void CMainFrame::OnPixel(long x, long y, CTivData value) {
    m_status->Set(string_id::kPixelData, status_texts::Pixel(x, y, value));
    m_status->Repaint(string_id::kPixelData);
}

void CMainFrame::OnRoiChanged(ViewRect roi) { m_workflow->Get<CalibrationSteps>().OnRoiChanged(roi); }

void CMainFrame::OnZoomChanged(float zoom) { m_status->Set(string_id::kZoomFactor, status_texts::Zoom(zoom)); }

void CMainFrame::OnFrameReady(int index) { m_workflow->Get<PictureSteps>().OnFrameReady(index); }

void CMainFrame::OpenDroppedFile(const QString& path) {
    TakeTurn([this, path] { m_workflow->Get<FileSteps>().OpenDroppedFile(path); });
}

void CMainFrame::LogMessage(const QString& text, int type) { m_logger->AddMessage(text, type); }

// Closing asks nothing: a number that was typed and not committed would count once its edit loses the focus. The layout
// is noted before the panes that float close, too.
void CMainFrame::closeEvent(QCloseEvent* event) {
    m_ribbon->DropPendingEdits();
    m_panes->Save();
    QMainWindow::closeEvent(event);
}

void CMainFrame::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (m_panes) m_panes->FollowSize(event->oldSize().isValid() ? event->size().width() - event->oldSize().width() : 0);
    if (m_rawViewer && m_rawViewer->isVisible()) m_rawViewer->repaint();
}
