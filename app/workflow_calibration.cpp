// Colors, parameters of the calibration, and the preview.

#include <algorithm>
#include <cstdlib>

#include "app/CMainFrame.h"
#include "app/CommandIds.h"
#include "app/GetEngine.h"
#include "app/StringTable.h"
#include "app/illuminant_commands.h"
#include "app/panes/CLoggerWnd.h"
#include "app/panes/CRawColorWnd.h"
#include "app/panes/CSpectrumValuesWnd.h"
#include "app/toolkit/Prompts.h"
#include "app/toolkit/RibbonBar.h"
#include "app/view/CAutoROIImageViewer.h"
#include "app/view/CDockableImgPane.h"
#include "calibration/CTivTonewrightDC.h"
#include "calibration/parameter_limits.h"

#include <QLabel>

namespace {

constexpr int kAbsolute = 0;
constexpr int kRelative = 1;

struct SaturationChannel {
    int editId;
    int sliderId;
    unsigned shift;  // of its byte in the packed value
};
constexpr SaturationChannel kSaturationChannels[] = {
    {ID_EDIT_SATURATION_R, ID_SLD_SATURATION_R, 16},
    {ID_EDIT_SATURATION_G, ID_SLD_SATURATION_G, 8},
    {ID_EDIT_SATURATION_B, ID_SLD_SATURATION_B, 0},
};

// Text that is no number reads as 0, what stands behind a number is not read.
int numberIn(const QString& text) {
    const long number = std::strtol(text.toUtf8().constData(), nullptr, 10);
    return static_cast<int>(std::clamp(number, -1000000L, 1000000L));
}

bool isLike(const CTivImage& one, const CTivImage& other) {
    return one.GetWidth() == other.GetWidth() && one.GetHeight() == other.GetHeight() &&
           one.GetFormat() == other.GetFormat();
}

}  // namespace

// Whatever the setters refuse, Calibrate tells what is missing. Without a picture the colors that a file brought stay.
void CMainFrame::PushColorsToEngine() {
    CTivTonewrightDC& engine = GetEngine();
    if (m_manualColors) {
        engine.SetRawColors(m_rawColorWnd->GetRawColors());
    } else if (m_rawViewer->Image().IsAllocated()) {
        m_rawViewer->DetectPatches();
        engine.SetRawColors(m_rawViewer->GetRawColors());
    }
    if (engine.GetCalibrationMode() == kAbsolute && engine.GetIlluminant() == kUserIlluminant) {
        engine.SetSpectrumValues(m_spectrumWnd->GetSpectrumValues());
        engine.SetIlluminantValue(m_spectrumWnd->GetIlluminantValue());
    } else if (engine.GetCalibrationMode() == kRelative) {
        if (m_manualColors) {
            engine.SetReferenceColors(m_rawColorWnd->GetReferenceColors());
        } else if (m_refViewer->Image().IsAllocated()) {
            m_refViewer->DetectPatches();
            engine.SetReferenceColors(m_refViewer->GetRawColors());
        }
    }
}

void CMainFrame::OnCalibratePreview() {
    if (!m_coefficientFile.isEmpty()) {
        if (!GetPrompts().AskYesNo("Calibrate Preview",
                                   "This will overwrite any previously loaded calibration coefficients.\nDo you want "
                                   "to continue?")) {
            return;
        }
        m_coefficientFile.clear();
    }
    m_calibViewer->ResetView();
    m_calibViewer->ClearOverlays();
    m_calibViewer->Image().Clear();
    ShowPane(*m_calibPane);
    if (!CalibrateAndExecute()) {
        LogLastError(LogError);
        // Nothing stays that looks like a result or could be saved as one.
        m_calibViewer->Image().Free();
        m_calibViewer->update();
        return;
    }
    FitIfLarger(*m_calibViewer);
    m_calibViewer->repaint();
    m_previewActive = true;
}

bool CMainFrame::CalibrateAndExecute() {
    PushColorsToEngine();
    if (!GetEngine().Calibrate()) return false;
    m_rawViewer->Image().SetRoi({});
    // A picture left from an image of another kind would keep its own size: the transform makes a new one.
    if (!isLike(m_calibViewer->Image(), m_rawViewer->Image())) m_calibViewer->Image().Free();
    return GetEngine().Execute(m_rawViewer->Image(), m_calibViewer->Image());
}

void CMainFrame::RerunPreview() {
    if (m_previewActive) OnCalibratePreview();
}

void CMainFrame::OnColorsAutomatic() {
    m_manualColors = false;
    m_rawColorWnd->SetEnabled(false);
    for (CAutoROIImageViewer* viewer : {m_rawViewer.get(), m_refViewer.get()}) {
        if (viewer->Image().IsAllocated()) viewer->SetAutoDetect(true);
    }
    m_previewActive = false;
}

void CMainFrame::OnColorsManual() {
    m_rawColorWnd->SetEnabled(true);
    ShowPane(*m_rawColorWnd);
    m_manualColors = true;
    for (CAutoROIImageViewer* viewer : {m_rawViewer.get(), m_refViewer.get()}) {
        if (viewer->Image().IsAllocated()) viewer->SetAutoDetect(false);
    }
    StatusPane(string_id::kRoi)->show();  // and never hidden again
    m_previewActive = false;
}

bool CMainFrame::MayPickByHand() { return m_manualColors && GetSelectedViewer() != m_calibViewer.get(); }

void CMainFrame::OnAddColor() {
    if (MayPickByHand()) m_rawColorWnd->AddColor();
}

void CMainFrame::OnRemoveLastColor() {
    if (MayPickByHand()) m_rawColorWnd->RemoveLast();
}

void CMainFrame::RefreshManualPick() { OnAddColor(); }

void CMainFrame::OnRemoveColor() { m_rawColorWnd->Remove(); }

void CMainFrame::OnClearColors() { m_rawColorWnd->Clear(); }

void CMainFrame::OnAbsolute() {
    if (GetEngine().GetCalibrationMode() == kAbsolute) return;
    GetEngine().SetCalibrationMode(kAbsolute);
    SelectViewer(*m_rawViewer);
    m_rawColorWnd->SetMode(false);
    m_previewActive = false;
}

void CMainFrame::OnRelative() {
    if (GetEngine().GetCalibrationMode() == kRelative) return;
    GetEngine().SetCalibrationMode(kRelative);
    SelectViewer(*m_refViewer);
    m_rawColorWnd->SetMode(true);
    OnLoadImage();
    LogMessage(
        "A reference image is needed in relative calibration mode. Please load an image in the reference image "
        "window",
        LogWarning);
    ShowPane(*m_refPane);
    if (m_manualColors) OnColorsManual();
    m_previewActive = false;
}

void CMainFrame::OnIlluminant(int id) {
    GetEngine().SetIlluminant(FindIlluminantOfCommand(id)->index);
    if (id == ID_BTN_ILLUMINANT_USER) {
        m_spectrumWnd->SetEnabled(true);
        ShowPane(*m_spectrumWnd);
        m_previewActive = false;
        return;
    }
    UsePredefinedIlluminant();
}

// A press on the button itself acts like a choice of the illuminant in force, and offers the choices.
void CMainFrame::OnIlluminantType() {
    UsePredefinedIlluminant();
    m_ribbon->OpenMenuOf(ID_BTN_ILLUMINANT_TYPE);
}

void CMainFrame::UsePredefinedIlluminant() {
    RerunPreview();
    m_spectrumWnd->SetEnabled(false);
    m_spectrumWnd->SetMatrixSize(6, 4);
}

void CMainFrame::OnGammaEdit() {
    ApplyGamma(std::clamp(numberIn(m_ribbon->EditText(ID_EDIT_GAMMA)), kLeastGammaHundredths, kMostGammaHundredths));
}

void CMainFrame::OnGammaSlider() { ApplyGamma(m_ribbon->SliderValue(ID_SLD_GAMMA)); }

void CMainFrame::ApplyGamma(int hundredths) {
    m_ribbon->SetSliderValue(ID_SLD_GAMMA, hundredths);
    m_ribbon->SetEditText(ID_EDIT_GAMMA, QString::number(hundredths));
    GetEngine().SetGamma(static_cast<float>(hundredths) / 100.0f);
    RerunPreview();
}

void CMainFrame::OnSaturationMode(int id) { GetEngine().SetSaturationMode(id - ID_BTN_SATURATION_AUTO); }

void CMainFrame::OnSaturationEdit(int id) {
    ApplySaturation(id, std::clamp(numberIn(m_ribbon->EditText(id)), 0, kMostSaturation));
}

void CMainFrame::OnSaturationSlider(int id) { ApplySaturation(id, m_ribbon->SliderValue(id)); }

void CMainFrame::ApplySaturation(int id, int value) {
    std::uint32_t packed = 0;
    for (const SaturationChannel& channel : kSaturationChannels) {
        if (id == channel.editId || id == channel.sliderId) {
            m_ribbon->SetSliderValue(channel.sliderId, value);
            m_ribbon->SetEditText(channel.editId, QString::number(value));
        }
        packed |= static_cast<std::uint32_t>(m_ribbon->SliderValue(channel.sliderId)) << channel.shift;
    }
    GetEngine().SetSaturationValue(packed);
    RerunPreview();
}
