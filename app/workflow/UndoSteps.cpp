#include "app/workflow/UndoSteps.h"

#include "calibration/illuminants.h"
#include "quality/chart_calibration.h"

using namespace tonewright;

namespace {

unsigned differentParts(const EditState& one, const EditState& other) {
    unsigned parts = 0;
    if (one.gamma != other.gamma) parts |= kGammaPart;
    if (one.saturationMode != other.saturationMode || one.saturation != other.saturation ||
        one.saturationControls != other.saturationControls) {
        parts |= kSaturationPart;
    }
    if (one.colors != other.colors) parts |= kColorsPart;
    if (one.values != other.values) parts |= kValuesPart;
    return parts;
}

}  // namespace

UndoSteps::UndoSteps(WorkflowContext& work, CalibrationSteps& calibration, ParameterSteps& parameters)
    : m_work(work), m_calibration(calibration), m_parameters(parameters) {
    QObject::connect(&work.news, &WorkflowNews::parametersReplaced, [this] { m_now.reset(); });
}

void UndoSteps::Begin(int id) {
    const int slider = m_parameters.IsSlider(id) ? id : 0;
    if (slider != m_slider) m_hasMoved = false;
    m_slider = slider;
}

// What did not change is shared with the state before: it may be large.
EditState UndoSteps::Take() const {
    const CTivTonewrightDC& engine = m_work.engine;
    EditState state;
    state.gamma = engine.GetGamma();
    state.saturationMode = engine.GetSaturationMode();
    // In the other modes the fit computes the value.
    if (state.saturationMode == SaturationChoice::Manual) state.saturation = engine.GetSaturationRgb().AsRgb();
    state.saturationControls = m_parameters.GetSaturationControls();
    const bool hasSameColors = m_now && *m_now->colors == m_work.lists.Lists();
    state.colors = hasSameColors ? m_now->colors : std::make_shared<RawColorLists>(m_work.lists.Lists());
    const bool hasSameValues = m_now && m_work.values.Shows(*m_now->values);
    state.values = hasSameValues ? m_now->values : std::make_shared<UserValueTexts>(m_work.values.GetTexts());
    state.chart = *m_work.values.GetChartSize();
    return state;
}

void UndoSteps::Note() {
    const EditState before = m_now ? *m_now : EditState();
    if (!m_now) m_history.Clear();
    const bool isFirst = !m_now;
    m_now = Take();
    if (isFirst) return;
    unsigned parts = differentParts(before, *m_now);
    // While the charts are measured the lists play no part, and a new picture empties them.
    if (!m_work.manualColors) parts &= ~static_cast<unsigned>(kColorsPart);
    if (!parts) return;
    if (m_slider && m_hasMoved) {
        m_history.Extend(parts, *m_now);
    } else {
        m_history.Push({parts, before, *m_now});
    }
    m_hasMoved = m_slider != 0;
}

void UndoSteps::OnUndo() {
    Note();
    if (const auto step = m_history.Undo()) Bring(step->parts, step->before);
}

void UndoSteps::OnRedo() {
    Note();
    if (const auto step = m_history.Redo()) Bring(step->parts, step->after);
}

// As the edit itself does: a preview follows gamma and the values of the saturation, and is out of date after others.
void UndoSteps::Bring(unsigned parts, const EditState& state) {
    bool isRerun = false;
    if (parts & kGammaPart) {
        m_work.engine.SetGamma(state.gamma);
        m_parameters.ShowGamma();
        isRerun = true;
    }
    if (parts & kSaturationPart) {
        isRerun = isRerun || m_now->saturation != state.saturation;
        m_work.engine.SetSaturationMode(state.saturationMode);
        m_parameters.ShowSaturation(state.saturationControls);
        if (state.saturationMode == SaturationChoice::Manual) m_work.engine.SetSaturationValue(state.saturation);
    }
    if (parts & kColorsPart) m_work.lists.Restore(*state.colors);
    if (parts & kValuesPart) {
        m_work.values.ShowTexts(*state.values);
        const ChartSize& chart = *m_work.values.GetChartSize();
        const bool isOther = chart.Width != state.chart.Width || chart.Height != state.chart.Height;
        if (isOther && m_work.engine.GetIlluminant() == kUserIlluminant) {
            m_work.values.SetMatrixSize(state.chart.Width, state.chart.Height);
            m_calibration.OnMatrixSizeChosen();
        }
    }
    m_now = Take();
    if (isRerun) m_calibration.RerunPreview();
}
