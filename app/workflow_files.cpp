// Parameter files and coefficient files.

#include <cmath>
#include <limits>

#include "app/CMainFrame.h"
#include "app/CommandIds.h"
#include "app/GetEngine.h"
#include "app/StudioFiles.h"
#include "app/panes/CLoggerWnd.h"
#include "app/panes/CRawColorWnd.h"
#include "app/panes/CSpectrumValuesWnd.h"
#include "app/toolkit/Profile.h"
#include "app/toolkit/Prompts.h"
#include "app/toolkit/RibbonBar.h"
#include "app/view/CImageViewerCtrl.h"
#include "calibration/CTivTonewrightDC.h"

using namespace studio_files;

namespace {

// A file may carry any gamma.
int truncated(float value) {
    constexpr auto kMost = static_cast<float>(std::numeric_limits<int>::max() / 2);
    return std::abs(value) < kMost ? static_cast<int>(value) : 0;
}

}  // namespace

bool CMainFrame::LoadParameterFile(const QString& path) {
    if (!GetEngine().Load(path.toStdString())) {
        LogLastError(LogError);
        return false;
    }
    SyncControlsFromEngine();
    return true;
}

// The saturation controls keep what they show, deliberately.
void CMainFrame::SyncControlsFromEngine() {
    const CTivTonewrightDC& engine = GetEngine();
    m_ribbon->update();
    m_rawColorWnd->Clear();
    m_calibViewer->ResetView();
    m_previewActive = false;

    const int gamma = truncated(static_cast<float>(static_cast<double>(engine.GetGamma()) * 100.0));
    m_ribbon->SetEditText(ID_EDIT_GAMMA, QString::number(gamma));
    m_ribbon->SetSliderValue(ID_SLD_GAMMA, gamma);

    if (engine.GetCalibrationMode() == 0) {
        if (engine.GetIlluminant() == kUserIlluminant) {
            m_spectrumWnd->ShowSpectrumValues(*engine.GetSpectrumValues());
            m_spectrumWnd->ShowIlluminantValue(engine.GetIlluminantValue());
            m_spectrumWnd->SetEnabled(true);
        } else {
            m_spectrumWnd->ResetValues();
        }
    } else if (engine.GetCalibrationMode() == 1) {
        m_rawColorWnd->FillReferenceColors(*engine.GetReferenceColors());
    }
    m_rawColorWnd->FillRawColors(*engine.GetRawColors());
    m_manualColors = false;
}

void CMainFrame::OnLoadParameters() {
    const auto choice = GetPrompts().OpenFile(
        {GetProfile().ReadString(kParameterSection, kName, DefaultPath(m_baseDir, kParameters, "*.twkp")),
         kParameterFilters,
         1,
         {}});
    if (!choice || !LoadParameterFile(choice->path)) return;
    GetProfile().WriteString(kParameterSection, kName, choice->path);
    m_previewActive = false;
}

// Parameters and coefficients are saved only after a fit that succeeded.
bool CMainFrame::CalibrateForSaving() {
    PushColorsToEngine();
    if (GetEngine().Calibrate()) return true;
    LogLastError(LogError);
    return false;
}

// A save that fails is silent, deliberately.
void CMainFrame::OnSaveParameters() {
    if (!CalibrateForSaving()) return;
    const auto choice = GetPrompts().SaveFile(
        {GetProfile().ReadString(kParameterSection, kName, DefaultPath(m_baseDir, kParameters, "*.twkp")),
         kParameterFilters, 1, "twkp"});
    if (!choice || !GetEngine().Save(choice->path.toStdString())) return;
    GetProfile().WriteString(kParameterSection, kName, choice->path);
}

void CMainFrame::OnResetParameters() {
    // The sibling tool's name is deliberate.
    if (!GetPrompts().AskYesNo("Glyphix Parameter Reset",
                               "Do you really want to reset all the parameters to their default values?")) {
        return;
    }
    if (GetEngine().Reset()) SyncControlsFromEngine();
}

void CMainFrame::OnLoadCoefficients() {
    const auto choice = GetPrompts().OpenFile(
        {GetProfile().ReadString(kCoefficientSection, kName, DefaultPath(m_baseDir, kColorCorrection, "*.ccor")),
         kCoefficientFilters,
         1,
         {}});
    if (!choice) return;
    if (!GetEngine().LoadXForm(choice->path.toStdString())) {
        LogMessage(QString("%1 (%2)").arg(QString::fromStdString(CTivManager::GetLastErrorString()), choice->path),
                   LogError);
        return;
    }
    LogMessage(QString("%1 was loaded successfully").arg(choice->path), LogInformation);
    m_coefficientFile = choice->path;
    GetProfile().WriteString(kCoefficientSection, kName, choice->path);
}

void CMainFrame::OnSaveCoefficients() {
    if (!CalibrateForSaving()) return;
    const auto choice = GetPrompts().SaveFile(
        {GetProfile().ReadString(kCoefficientSection, kName, DefaultPath(m_baseDir, kColorCorrection, "*.ccor")),
         kCoefficientFilters, 1, "ccor"});
    if (!choice) return;
    if (!GetEngine().SaveXForm(choice->path.toStdString(), false)) {
        LogLastError(LogError);
        return;
    }
    m_coefficientFile = choice->path;
    GetProfile().WriteString(kCoefficientSection, kName, choice->path);
}
