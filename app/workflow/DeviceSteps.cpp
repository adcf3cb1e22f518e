#include "app/workflow/DeviceSteps.h"

#include "app/CommandIds.h"
#include "app/toolkit/Profile.h"
#include "app/toolkit/Prompts.h"
#include "app/toolkit/WaitCursor.h"
#include "app/workflow/StudioFiles.h"
#include "calibration/usable_transform.h"

using namespace studio_files;

namespace {

// In the working directory; stays there afterwards.
constexpr const char* kUploadFile = "__upload__.ccor";

QString refusal(const QString& reason) { return "Nothing was sent: " + reason + "."; }
QString refusal(const std::string& reason) { return refusal(QString::fromStdString(reason)); }
QString lastError() { return QString::fromStdString(CTivManager::GetLastErrorString()); }

}  // namespace

// A cancelled dialog tells the last error once more, deliberately (C24): nothing new was reported, and nothing is
// forgotten.
void DeviceSteps::OnConfigure() {
    const WaitCursor wait;
    if (m_work.deviceKind != DeviceKindNone) m_work.session->Reconnect();
    if (!m_work.session->Configure()) {
        if (!CTivManager::GetLastErrorString().empty()) m_work.news.LogLastError(LogError);
        return;
    }
    m_work.deviceKind = m_work.session->GetDeviceKind();
    if (m_work.deviceKind != DeviceKindNone && m_work.deviceKind != DeviceKindOther &&
        m_work.coefficientFile.isEmpty()) {
        m_work.news.Log("Load/Save a camera file prior to calibrating", LogWarning);
    }
}

// The picture comes by OnFrameReady. A failure is told as information and not as an error, deliberately (C25).
void DeviceSteps::OnSnap() {
    m_pictures.ResetForNewImage();
    if (!m_work.session->Snap()) m_work.news.LogLastError(LogInformation);
}

// Runs on the main thread to its end: the warning is the only sign while the window stands still, so it has to be on
// the screen before.
void DeviceSteps::OnUploadCoefficients() {
    if (m_work.deviceKind != DeviceKindNone) m_work.session->Reconnect();
    m_work.news.Log(
        "Depending on the file size and communication speed, the transfer could take a while, but must not be "
        "aborted. Please wait.",
        LogWarning);
    emit m_work.news.standsStill();
    std::string path = m_work.coefficientFile.toStdString();
    if (const QString reason = PrepareUpload(path); !reason.isEmpty()) {
        m_work.news.Log(reason, LogError);
    } else if (m_work.session->TransferFile(path.c_str(), true)) {
        m_work.news.Log("Finished successfully !", LogInformation);
    } else {
        m_work.news.LogLastError(LogError);
    }
}

// Nothing that can't be a calibration reaches a device: it would keep it. @return why nothing may be sent
QString DeviceSteps::PrepareUpload(std::string& path) {
    if (m_work.deviceKind != DeviceKindFrameGrabber || !path.empty()) {
        const std::string reason = WhyUnusableCoefficients(path);
        return reason.empty() ? QString() : refusal(reason);
    }
    m_calibration.PushColorsToEngine();
    if (const QString reason = m_calibration.WhyChartIsIncomplete(); !reason.isEmpty()) return refusal(reason);
    CTivTonewrightDC& engine = m_work.engine;
    if (!engine.Calibrate()) return lastError();
    const std::string reason = WhyUnusableTransform(*engine.GetTransform(), engine.GetXformSize());
    if (!reason.empty()) return refusal(reason);
    if (!engine.SaveXForm(kUploadFile, false)) return lastError();
    path = kUploadFile;
    return {};
}

// The profile is read and not written, and the coefficients in force stay.
void DeviceSteps::OnBackupCoefficients() {
    const auto choice = GetPrompts().SaveFile(
        {GetProfile().ReadString(kCoefficientSection, kName,
                                 DefaultPath(m_work.baseDir, kColorCorrection, "Backup_Default.ccor")),
         kCoefficientFilters, 1, "ccor"});
    if (!choice) return;
    if (m_work.session->TransferFile(choice->path.toStdString().c_str(), false)) {
        m_work.news.Log("Backup succeeded.", LogInformation);
    } else {
        m_work.news.LogLastError(LogError);
    }
}
