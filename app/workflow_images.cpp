// Images: loading, saving, grabbing, and what a new image resets.

#include "acquisition/CTonewrightAcq.h"
#include "app/CMainFrame.h"
#include "app/StatusTexts.h"
#include "app/StringTable.h"
#include "app/StudioFiles.h"
#include "app/WaitCursor.h"
#include "app/panes/CLoggerWnd.h"
#include "app/panes/CRawColorWnd.h"
#include "app/toolkit/Profile.h"
#include "app/toolkit/Prompts.h"
#include "app/view/CAutoROIImageViewer.h"

using namespace studio_files;

namespace {

bool isLargerThan(const CTivImage& image, const CImageViewerCtrl& viewer) {
    const QSize window = viewer.contentsRect().size();
    return image.GetWidth() > window.width() || image.GetHeight() > window.height();
}

}  // namespace

void CMainFrame::FitIfLarger(CImageViewerCtrl& viewer) {
    if (isLargerThan(viewer.Image(), viewer)) viewer.FitToWindow();
}

void CMainFrame::ResetForNewImage() {
    CImageViewerCtrl* const selected = GetSelectedViewer();
    for (CImageViewerCtrl* viewer : {selected, m_calibViewer.get()}) {
        if (!viewer) continue;
        viewer->ResetView();
        viewer->ClearOverlays();
        viewer->Image().SetRoi({});  // a measurement leaves it on a patch
        viewer->Image().Clear();
    }
    m_previewActive = false;
    SetStatus(string_id::kBufferInformation, status_texts::BufferAfterReset());
    SetStatus(string_id::kPixelData, status_texts::PixelNotAvailable());
}

// Every loaded image passes through the session's buffer slot, with or without a device. A load that fails is silent,
// deliberately.
bool CMainFrame::LoadImageFile(const QString& path) {
    const WaitCursor wait;
    CTivImage& buffer = *m_acq->GetImage(-1);
    buffer.SetRoi({});
    if (!buffer.Load(path.toStdString(), true)) return false;
    CImageViewerCtrl* const viewer = GetSelectedViewer();
    if (!viewer) return false;
    ResetForNewImage();
    viewer->SetImage(&buffer, true);
    SetStatus(string_id::kBufferInformation,
              status_texts::Buffer(buffer.GetWidth(), buffer.GetHeight(), CTivData::GetFormatBits(buffer.GetFormat()),
                                   CTivData::GetFormatName(buffer.GetFormat()), m_acq->GetBufferCount()));
    FitIfLarger(*viewer);
    if (auto* detecting = qobject_cast<CAutoROIImageViewer*>(viewer)) detecting->SetAutoDetect(!m_manualColors);
    m_rawColorWnd->ClearSide(viewer == m_rawViewer.get());
    return true;
}

void CMainFrame::OnLoadImage() {
    if (GetSelectedViewer() == m_calibViewer.get()) {
        LogMessage("Acces denied. Impossible to load image in calibrated image window.", LogWarning);
        return;
    }
    const auto choice = GetPrompts().OpenFile(
        {GetProfile().ReadString(kImageSection, kLoadName, DefaultPath(m_baseDir, kImages, "*.bmp")),
         kOpenImageFilters,
         GetProfile().ReadInt(kImageSection, kLoadType, 1),
         {}});
    if (!choice || !LoadImageFile(choice->path)) return;
    GetProfile().WriteString(kImageSection, kLoadName, choice->path);
    GetProfile().WriteInt(kImageSection, kLoadType, choice->filterIndex);
}

void CMainFrame::OnLoadRawImage() {
    SelectViewer(*m_rawViewer);
    OnLoadImage();
}

void CMainFrame::OnLoadReferenceImage() {
    SelectViewer(*m_refViewer);
    OnLoadImage();
}

// A save that fails is silent, deliberately.
void CMainFrame::OnSaveImage() {
    const auto choice = GetPrompts().SaveFile(
        {GetProfile().ReadString(kImageSection, kSaveName, DefaultPath(m_baseDir, kImages, "*.bmp")),
         kSaveImageFilters,
         GetProfile().ReadInt(kImageSection, kSaveType, 1),
         {}});
    if (!choice) return;
    CTivImage copy(m_calibViewer->Image());
    copy.SetRoi({});
    if (!copy.Save(choice->path.toStdString(), SaveFormatOfFilter(choice->filterIndex))) return;
    GetProfile().WriteString(kImageSection, kSaveName, choice->path);
    GetProfile().WriteInt(kImageSection, kSaveType, choice->filterIndex);
}

// A cancelled dialog tells the last error once more, deliberately: nothing new was reported, and nothing is forgotten.
void CMainFrame::OnConfigure() {
    const WaitCursor wait;
    if (m_deviceKind != DeviceKindNone) m_acq->Reconnect();
    if (!m_acq->Configure()) {
        if (!CTivManager::GetLastErrorString().empty()) LogLastError(LogError);
        return;
    }
    m_deviceKind = m_acq->GetDeviceKind();
    if (m_deviceKind != DeviceKindNone && m_deviceKind != DeviceKindOther && m_coefficientFile.isEmpty()) {
        LogMessage("Load/Save a camera file prior to calibrating", LogWarning);
    }
}

// The picture comes by OnFrameReady. A failure is told as information and not as an error, deliberately.
void CMainFrame::OnSnap() {
    ResetForNewImage();
    if (!m_acq->Snap()) LogLastError(LogInformation);
}

void CMainFrame::OnFrameReady(int) { m_rawViewer->SetImage(m_acq->GetImage(-1), false); }
