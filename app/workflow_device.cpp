// Coefficients to the device and back.

#include "acquisition/CTonewrightAcq.h"
#include "app/CMainFrame.h"
#include "app/GetEngine.h"
#include "app/StudioFiles.h"
#include "app/panes/CLoggerWnd.h"
#include "app/panes/CSpectrumValuesWnd.h"
#include "app/toolkit/Profile.h"
#include "app/toolkit/Prompts.h"
#include "app/view/CAutoROIImageViewer.h"
#include "calibration/CTivTonewrightDC.h"
#include "calibration/usable_transform.h"

using namespace studio_files;

namespace {

// In the working directory; stays there afterwards.
constexpr const char* kUploadFile = "__upload__.ccor";

}  // namespace

// Runs on the main thread to its end: the warning is the only sign while the window stands still, so it has to be on
// the screen before.
void CMainFrame::OnUploadCoefficients() {
    if (m_deviceKind != DeviceKindNone) m_acq->Reconnect();
    LogMessage(
        "Depending on the file size and communication speed, the transfer could take a while, but must not be "
        "aborted. Please wait.",
        LogWarning);
    ShowPane(*m_logger);
    m_logger->repaint();
    std::string path = m_coefficientFile.toStdString();
    if (const QString reason = PrepareUpload(path); !reason.isEmpty()) {
        LogMessage(reason, LogError);
        return;
    }
    if (m_acq->TransferFile(path.c_str(), true)) {
        LogMessage("Finished successfully !", LogInformation);
    } else {
        LogLastError(LogError);
    }
}

// Nothing that can't be a calibration reaches a device: it would keep it.
QString CMainFrame::PrepareUpload(std::string& path) {
    const QString refusal = "Nothing was sent: %1.";
    if (m_deviceKind == DeviceKindFrameGrabber && path.empty()) {
        PushColorsToEngine();
        if (const QString reason = WhyChartIsIncomplete(); !reason.isEmpty()) return refusal.arg(reason);
        CTivTonewrightDC& engine = GetEngine();
        if (!engine.Calibrate()) return QString::fromStdString(CTivManager::GetLastErrorString());
        const std::string reason = WhyUnusableTransform(*engine.GetTransform(), engine.GetXformSize());
        if (!reason.empty()) return refusal.arg(QString::fromStdString(reason));
        if (!engine.SaveXForm(kUploadFile, false)) return QString::fromStdString(CTivManager::GetLastErrorString());
        path = kUploadFile;
        return {};
    }
    const std::string reason = WhyUnusableCoefficients(path);
    return reason.empty() ? QString() : refusal.arg(QString::fromStdString(reason));
}

// A chart that was found in part gives colors from wrong places. Colors picked by hand or from a file need no chart.
QString CMainFrame::WhyChartIsIncomplete() const {
    if (m_manualColors) return {};
    const bool isRelative = GetEngine().GetCalibrationMode() == 1;
    const ChartSize chart = *m_spectrumWnd->GetChartSize();
    for (const CAutoROIImageViewer* viewer : {m_rawViewer.get(), isRelative ? m_refViewer.get() : nullptr}) {
        if (!viewer || !viewer->Image().IsAllocated()) continue;
        const PatchDetector& found = viewer->Detector();
        if (found.GetFoundRows() >= chart.Height && found.GetFoundColumns() >= chart.Width) continue;
        return QString("in the %1 image %2 of %3 rows and %4 of %5 columns of the chart were found")
            .arg(viewer == m_rawViewer.get() ? "raw" : "reference")
            .arg(found.GetFoundRows())
            .arg(chart.Height)
            .arg(found.GetFoundColumns())
            .arg(chart.Width);
    }
    return {};
}

// The profile is read and not written, and the coefficients in force stay.
void CMainFrame::OnBackupCoefficients() {
    const auto choice =
        GetPrompts().SaveFile({GetProfile().ReadString(kCoefficientSection, kName,
                                                       DefaultPath(m_baseDir, kColorCorrection, "Backup_Default.ccor")),
                               kCoefficientFilters, 1, "ccor"});
    if (!choice) return;
    if (m_acq->TransferFile(choice->path.toStdString().c_str(), false)) {
        LogMessage("Backup succeeded.", LogInformation);
    } else {
        LogLastError(LogError);
    }
}
