// Coefficients to the device and back.

#include "acquisition/CTonewrightAcq.h"
#include "app/CMainFrame.h"
#include "app/GetEngine.h"
#include "app/StudioFiles.h"
#include "app/panes/CLoggerWnd.h"
#include "app/toolkit/Profile.h"
#include "app/toolkit/Prompts.h"
#include "calibration/CTivTonewrightDC.h"

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
    if (m_deviceKind == DeviceKindFrameGrabber && path.empty()) {
        PushColorsToEngine();
        if (!GetEngine().Calibrate() || !GetEngine().SaveXForm(kUploadFile, false)) {
            LogLastError(LogError);
            return;
        }
        path = kUploadFile;
    }
    if (m_acq->TransferFile(path.c_str(), true)) {
        LogMessage("Finished successfully !", LogInformation);
    } else {
        LogLastError(LogError);
    }
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
