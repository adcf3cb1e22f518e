#include "app/workflow/DeviceSteps.h"

#include "acquisition/CoefficientTransfer.h"
#include "app/CommandIds.h"
#include "app/toolkit/Profile.h"
#include "app/toolkit/Prompts.h"
#include "app/toolkit/WaitCursor.h"
#include "app/workflow/StudioFiles.h"
#include "calibration/usable_transform.h"

using namespace tonewright;

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

void DeviceSteps::OnUploadCoefficients() {
    const auto path = BeginTransfer();
    if (!path) return;
    if (m_work.session->TransferFile(path->c_str(), true)) {
        m_work.news.Log("Finished successfully !", LogInformation);
    } else {
        m_work.news.LogLastError(LogError);
    }
}

// What keeps a camera's features from taking the coefficients, the camera itself has told before.
void DeviceSteps::OnSendCoefficients() {
    const auto path = BeginTransfer();
    if (!path) return;
    if (!m_work.session->GetCamera()) {
        m_work.news.Log(refusal(QString("the camera could not be opened")), LogError);
        return;
    }
    if (FindCoefficientWay(*m_work.session) == CoefficientWay::None) {
        m_work.news.Log(
            refusal(QString("the camera has no color transformation features and no file for coefficients")), LogError);
        return;
    }
    const auto sent = SendCoefficients(*m_work.session, *path, CoefficientWay::None, "");
    if (!sent) {
        m_work.news.LogLastError(LogError);
        return;
    }
    if (!sent->verified) {
        m_work.news.Log("What the camera gives back differs from what was sent, or cannot be read.", LogWarning);
        return;
    }
    m_work.news.Log(sent->way == CoefficientWay::Features
                        ? "The camera's color transformation features hold the coefficients and are in force."
                        : "The camera's file holds the coefficients.",
                    LogInformation);
    m_work.news.Log("Finished successfully !", LogInformation);
}

// Runs on the main thread to its end: the warning is the only sign while the window stands still, so it has to be on
// the screen before.
// @return the file to send; nothing, and logged, where nothing may be sent
std::optional<std::string> DeviceSteps::BeginTransfer() {
    if (m_work.deviceKind != DeviceKindNone) m_work.session->Reconnect();
    m_work.news.Log(
        "Depending on the file size and communication speed, the transfer could take a while, but must not be "
        "aborted. Please wait.",
        LogWarning);
    emit m_work.news.standsStill();
    std::string path = m_work.coefficientFile.toStdString();
    const QString reason = PrepareUpload(path);
    if (reason.isEmpty()) return path;
    m_work.news.Log(reason, LogError);
    return std::nullopt;
}

// Nothing that can't be a calibration reaches a device: it would keep it. @return why nothing may be sent
QString DeviceSteps::PrepareUpload(std::string& path) {
    const bool mayCalibrate = m_work.deviceKind == DeviceKindFrameGrabber || m_work.deviceKind == DeviceKindOther;
    if (!mayCalibrate || !path.empty()) {
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

void DeviceSteps::OnBackupCoefficients() { SaveDeviceCoefficients("Backup_Default.ccor", "Backup succeeded."); }

void DeviceSteps::OnReadCoefficients() {
    SaveDeviceCoefficients("*.ccor", "The coefficients of the camera were saved.");
}

// The profile is read and not written, and the coefficients in force stay.
void DeviceSteps::SaveDeviceCoefficients(const char* defaultName, const QString& success) {
    const auto choice =
        GetPrompts().SaveFile({GetProfile().ReadString(kCoefficientSection, kName,
                                                       DefaultPath(m_work.baseDir, kColorCorrection, defaultName)),
                               kCoefficientFilters, 1, "ccor"});
    if (!choice) return;
    if (m_work.session->TransferFile(choice->path.toStdString().c_str(), false)) {
        m_work.news.Log(success, LogInformation);
    } else {
        m_work.news.LogLastError(LogError);
    }
}
