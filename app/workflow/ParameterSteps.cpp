#include "app/workflow/ParameterSteps.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>

#include "app/CommandIds.h"
#include "app/illuminant_commands.h"
#include "app/toolkit/Prompts.h"
#include "calibration/parameter_limits.h"

using namespace tonewright;

namespace {

constexpr int kAbsolute = 0;
constexpr int kRelative = 1;
constexpr const char* kPickingEnded =
    "Colors are no longer picked by hand, but the rectangles are still those to pick with. Choose Color Selection, "
    "Automatic to find the charts again";

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

// A file may carry any gamma.
int truncated(float value) {
    constexpr auto kMost = static_cast<float>(std::numeric_limits<int>::max()) / 2;
    return std::abs(value) < kMost ? static_cast<int>(value) : 0;
}

}  // namespace

void ParameterSteps::SyncControlsFromEngine() {
    const CTivTonewrightDC& engine = m_work.engine;
    m_work.controls.Redraw();
    m_work.lists.Clear();
    m_work.lists.SetMode(engine.GetCalibrationMode() == kRelative);
    m_work.calibrated.ResetView();
    m_work.previewActive = false;

    ShowGamma();

    if (engine.GetCalibrationMode() == kAbsolute) {
        if (engine.GetIlluminant() == kUserIlluminant) {
            m_work.values.ShowSpectrumValues(*engine.GetSpectrumValues());
            m_work.values.ShowIlluminantValue(engine.GetIlluminantValue());
            m_work.values.SetEnabled(true);
        } else {
            m_work.values.ResetValues();
        }
    } else if (engine.GetCalibrationMode() == kRelative) {
        m_work.lists.FillReferenceColors(*engine.GetReferenceColors());
    }
    m_work.lists.FillRawColors(*engine.GetRawColors());
    // The rectangles deliberately (C46) stay those to pick with, in which a fit will look for a whole chart.
    if (std::exchange(m_work.manualColors, false)) m_work.news.Log(kPickingEnded, LogWarning);
    emit m_work.news.parametersReplaced();
}

void ParameterSteps::ShowGamma() {
    const int gamma = truncated(static_cast<float>(static_cast<double>(m_work.engine.GetGamma()) * 100.0));
    m_work.controls.SetEditText(ID_EDIT_GAMMA, QString::number(gamma));
    m_work.controls.SetSliderValue(ID_SLD_GAMMA, gamma);
}

void ParameterSteps::OnAbsolute() {
    if (m_work.engine.GetCalibrationMode() == kAbsolute) return;
    m_work.engine.SetCalibrationMode(kAbsolute);
    m_pictures.SelectViewer(m_work.raw);
    m_work.lists.SetMode(false);
    m_work.previewActive = false;
}

void ParameterSteps::OnRelative() {
    if (m_work.engine.GetCalibrationMode() == kRelative) return;
    m_work.engine.SetCalibrationMode(kRelative);
    m_pictures.SelectViewer(m_work.reference);
    m_work.lists.SetMode(true);
    m_pictures.OnLoadImage();
    m_work.news.Log(
        "A reference image is needed in relative calibration mode. Please load an image in the reference image "
        "window",
        LogWarning);
    m_work.news.ShowPane(ID_CBTN_REF_IMG_VIEW);
    if (m_work.manualColors) m_calibration.OnColorsManual();
    m_work.previewActive = false;
}

void ParameterSteps::OnIlluminant(int id) {
    m_work.engine.SetIlluminant(FindIlluminantOfCommand(id)->index);
    if (id == ID_BTN_ILLUMINANT_USER) {
        m_work.values.SetEnabled(true);
        m_work.news.ShowPane(ID_CBTN_SPECTRUM_VALUES);
        m_work.previewActive = false;
        return;
    }
    UsePredefinedIlluminant();
}

// A press on the button itself acts like a choice of the illuminant in force, and offers the choices.
void ParameterSteps::OnIlluminantType() {
    UsePredefinedIlluminant();
    m_work.controls.OpenMenuOf(ID_BTN_ILLUMINANT_TYPE);
}

void ParameterSteps::UsePredefinedIlluminant() {
    m_calibration.RerunPreview();
    m_work.values.SetEnabled(false);
    m_work.values.SetMatrixSize(6, 4);
}

void ParameterSteps::OnGammaEdit() {
    ApplyGamma(
        std::clamp(numberIn(m_work.controls.EditText(ID_EDIT_GAMMA)), kLeastGammaHundredths, kMostGammaHundredths));
}

void ParameterSteps::OnGammaSlider() { ApplyGamma(m_work.controls.SliderValue(ID_SLD_GAMMA)); }

void ParameterSteps::ApplyGamma(int hundredths) {
    m_work.controls.SetSliderValue(ID_SLD_GAMMA, hundredths);
    m_work.controls.SetEditText(ID_EDIT_GAMMA, QString::number(hundredths));
    m_work.engine.SetGamma(static_cast<float>(hundredths) / 100.0f);
    m_calibration.RerunPreview();
}

void ParameterSteps::OnSaturationMode(int id) { m_work.engine.SetSaturationMode(id - ID_BTN_SATURATION_AUTO); }

void ParameterSteps::OnSaturationEdit(int id) {
    ApplySaturation(id, std::clamp(numberIn(m_work.controls.EditText(id)), 0, kMostSaturation));
}

void ParameterSteps::OnSaturationSlider(int id) { ApplySaturation(id, m_work.controls.SliderValue(id)); }

void ParameterSteps::ApplySaturation(int id, int value) {
    std::uint32_t packed = 0;
    for (const SaturationChannel& channel : kSaturationChannels) {
        if (id == channel.editId || id == channel.sliderId) {
            m_work.controls.SetSliderValue(channel.sliderId, value);
            m_work.controls.SetEditText(channel.editId, QString::number(value));
        }
        packed |= static_cast<std::uint32_t>(m_work.controls.SliderValue(channel.sliderId)) << channel.shift;
    }
    m_work.engine.SetSaturationValue(packed);
    m_calibration.RerunPreview();
}

bool ParameterSteps::IsSlider(int id) {
    const auto isIts = [id](const SaturationChannel& channel) { return channel.sliderId == id; };
    return id == ID_SLD_GAMMA || std::ranges::any_of(kSaturationChannels, isIts);
}

std::array<int, 3> ParameterSteps::GetSaturationControls() const {
    std::array<int, 3> values{};
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = m_work.controls.SliderValue(kSaturationChannels[i].sliderId);
    }
    return values;
}

void ParameterSteps::ShowSaturation(const std::array<int, 3>& values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        m_work.controls.SetSliderValue(kSaturationChannels[i].sliderId, values[i]);
        m_work.controls.SetEditText(kSaturationChannels[i].editId, QString::number(values[i]));
    }
}

void ParameterSteps::OnResetParameters() {
    // The sibling tool's name is deliberate (C8).
    if (!GetPrompts().AskYesNo("Glyphix Parameter Reset",
                               "Do you really want to reset all the parameters to their default values?")) {
        return;
    }
    if (m_work.engine.Reset()) SyncControlsFromEngine();
}
