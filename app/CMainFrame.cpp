#include "app/CMainFrame.h"

#include <QAction>
#include <QCloseEvent>
#include <QDir>
#include <QIcon>
#include <QLabel>
#include <QScreen>
#include <QStatusBar>
#include <exception>

#include "acquisition/CTonewrightAcq.h"
#include "app/FrameMessage.h"
#include "app/GetEngine.h"
#include "app/panes/CLoggerWnd.h"
#include "app/panes/CRawColorWnd.h"
#include "app/panes/CSpectrumValuesWnd.h"
#include "app/toolkit/Prompts.h"
#include "app/toolkit/RibbonBar.h"
#include "app/view/CAutoROIImageViewer.h"
#include "app/view/CDockableImgPane.h"
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

}  // namespace

CMainFrame::CMainFrame() : m_baseDir(baseDirectory()) {
    registerPictures();
    setWindowTitle("Zelvan Tonewright");
    m_acq = makeSession(this);
    if (!m_acq) {
        // The sibling tool's name is deliberate.
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
CMainFrame::~CMainFrame() { frame_message::Close(); }

bool CMainFrame::OnCreate() {
    setAcceptDrops(true);
    setWindowIcon(QIcon(":/icons/tonewright.svg"));
    resize(kFirstSize.boundedTo(screen()->availableSize() - kScreenMargin));
    CreateActions();
    CreateRibbon();
    m_rawViewer = std::make_unique<CAutoROIImageViewer>(this);
    m_rawViewer->setObjectName("Raw Image");
    m_rawViewer->setProperty("controlId", kRawViewerControl);
    m_rawViewer->SetComm(this);
    m_rawViewer->SetHost(this);
    setCentralWidget(m_rawViewer.get());
    CreateStatusBar();
    m_ribbon->setProperty("controlId", kRibbonControl);
    statusBar()->setProperty("controlId", kStatusBarControl);
    if (!CreatePanes()) return false;
    DockPanes();
    m_rawViewer->SetSelected(1);
    m_rawViewer->setFocus();
    SyncControlsFromEngine();
    UpdateCommands();
    frame_message::Open(*this);
    return true;
}

CImageViewerCtrl* CMainFrame::GetSelectedViewer() {
    if (m_rawViewer->IsSelected()) return m_rawViewer.get();
    if (m_refViewer->IsSelected()) return m_refViewer.get();
    if (m_calibViewer->IsSelected()) return m_calibViewer.get();
    LogMessage("No image viewer is currently being selected.", LogWarning);
    return nullptr;
}

void CMainFrame::DeselectAllViewers() {
    m_rawViewer->SetSelected(0);
    m_refViewer->SetSelected(0);
    m_calibViewer->SetSelected(0);
}

void CMainFrame::SelectViewer(CImageViewerCtrl& viewer) {
    DeselectAllViewers();
    viewer.SetSelected(1);
}

void CMainFrame::LogMessage(const QString& text, int type) { m_logger->AddMessage(text, type); }

void CMainFrame::LogLastError(int type) { LogMessage(QString::fromStdString(CTivManager::GetLastErrorString()), type); }

void CMainFrame::resizeEvent(QResizeEvent* event) {
    QMainWindow::resizeEvent(event);
    if (m_rawViewer && m_rawViewer->isVisible()) m_rawViewer->repaint();
}
