#include "app/workflow/CalibrationSteps.h"

#include "app/CommandIds.h"
#include "app/StringTable.h"
#include "app/toolkit/Prompts.h"
#include "app/workflow/StatusTexts.h"
#include "calibration/fit_transform.h"
#include "calibration/illuminants.h"
#include "quality/fit_quality.h"
#include "report/calibration_report.h"

using namespace tonewright;

namespace {

constexpr int kAbsolute = 0;
constexpr int kRelative = 1;

bool isLike(const CTivImage& one, const CTivImage& other) {
    return one.GetWidth() == other.GetWidth() && one.GetHeight() == other.GetHeight() &&
           one.GetFormat() == other.GetFormat();
}

}  // namespace

void CalibrationSteps::OnRoiChanged(const ViewRect& roi) {
    m_work.news.SetStatus(string_id::kRoi, status_texts::Roi(roi));
    if (m_work.manualColors) return;
    for (PictureView* viewer : {&m_work.raw, &m_work.reference}) {
        if (viewer->Image().IsAllocated()) viewer->DetectPatches();
    }
    emit m_work.news.detected();
}

// The reference follows with its next ROI or calibration.
void CalibrationSteps::OnMatrixSizeChosen() {
    m_work.raw.DetectPatches();
    emit m_work.news.detected();
}

// Whatever the setters refuse, Calibrate tells what is missing. Without a picture the colors that a file brought stay.
void CalibrationSteps::PushColorsToEngine() {
    CTivTonewrightDC& engine = m_work.engine;
    const bool isRelative = engine.GetCalibrationMode() == kRelative;
    if (m_work.manualColors) {
        engine.SetRawColors(m_work.lists.GetRawColors());
    } else if (m_work.raw.Image().IsAllocated()) {
        m_work.raw.DetectPatches();
        engine.SetRawColors(m_work.raw.GetRawColors());
    }
    if (engine.GetCalibrationMode() == kAbsolute && engine.GetIlluminant() == kUserIlluminant) {
        engine.SetSpectrumValues(m_work.values.GetSpectrumValues());
        engine.SetIlluminantValue(m_work.values.GetIlluminantValue());
    } else if (isRelative && m_work.manualColors) {
        engine.SetReferenceColors(m_work.lists.GetReferenceColors());
    } else if (isRelative && m_work.reference.Image().IsAllocated()) {
        m_work.reference.DetectPatches();
        engine.SetReferenceColors(m_work.reference.GetRawColors());
    }
    if (!m_work.manualColors) emit m_work.news.detected();
}

// A chart that was found in part gives colors from wrong places.
QString CalibrationSteps::WhyChartIsIncomplete() const {
    if (m_work.manualColors) return {};
    const bool isRelative = m_work.engine.GetCalibrationMode() == kRelative;
    const ChartSize chart = *m_work.values.GetChartSize();
    for (PictureView* viewer : {&m_work.raw, isRelative ? &m_work.reference : nullptr}) {
        if (!viewer || !viewer->Image().IsAllocated() || !viewer->Detector()) continue;
        const PatchDetector& found = *viewer->Detector();
        if (found.GetFoundRows() >= chart.Height && found.GetFoundColumns() >= chart.Width) continue;
        return QString("in the %1 image %2 of %3 rows and %4 of %5 columns of the chart were found")
            .arg(viewer == &m_work.raw ? "raw" : "reference")
            .arg(found.GetFoundRows())
            .arg(chart.Height)
            .arg(found.GetFoundColumns())
            .arg(chart.Width);
    }
    return {};
}

bool CalibrationSteps::CalibrateForSaving() {
    PushColorsToEngine();
    if (!m_work.engine.Calibrate()) {
        m_work.news.LogLastError(LogError);
        return false;
    }
    NoteFit();
    return true;
}

void CalibrationSteps::NoteFit() {
    const CTivTonewrightDC& engine = m_work.engine;
    m_work.fit = LastFit{.targets = ToXyz(GetTargets(engine)),
                         .isAbsolute = engine.GetCalibrationMode() == kAbsolute,
                         .transform = Checksum(*engine.GetTransform()),
                         .settings = ReportSettings(engine, false)};
}

void CalibrationSteps::OnCalibratePreview() {
    if (!m_work.coefficientFile.isEmpty()) {
        if (!GetPrompts().AskYesNo("Calibrate Preview",
                                   "This will overwrite any previously loaded calibration coefficients.\nDo you want "
                                   "to continue?")) {
            return;
        }
        m_work.coefficientFile.clear();
    }
    PictureView& preview = m_work.calibrated;
    preview.ResetView();
    preview.ClearOverlays();
    preview.Image().Clear();
    preview.SetFileName({});
    m_work.news.ShowPane(ID_CBTN_CALIB_IMG_VIEW);
    if (!CalibrateAndExecute()) {
        m_work.news.LogLastError(LogError);
        preview.Image().Free();  // nothing stays that looks like a result or could be saved as one
        preview.ShowNow();
        return;
    }
    preview.FitIfLarger();
    preview.ShowNow();
    m_work.previewActive = true;
    emit m_work.news.previewed();
}

bool CalibrationSteps::CalibrateAndExecute() {
    PushColorsToEngine();
    if (!m_work.engine.Calibrate()) return false;
    NoteFit();
    CTivImage& raw = m_work.raw.Image();
    CTivImage& preview = m_work.calibrated.Image();
    raw.SetRoi({});
    // A picture left from an image of another kind would keep its own size: the transform makes a new one.
    if (!isLike(preview, raw)) preview.Free();
    return m_work.engine.Execute(raw, preview);
}

void CalibrationSteps::RerunPreview() {
    if (m_work.previewActive) OnCalibratePreview();
}

void CalibrationSteps::OnColorsAutomatic() {
    m_work.manualColors = false;
    m_work.lists.SetEnabled(false);
    for (PictureView* viewer : {&m_work.raw, &m_work.reference}) {
        if (viewer->Image().IsAllocated()) viewer->SetAutoDetect(true);
    }
    m_work.previewActive = false;
}

void CalibrationSteps::OnColorsManual() {
    m_work.lists.SetEnabled(true);
    m_work.news.ShowPane(ID_CBTN_RAW_COLOR_LIST);
    m_work.manualColors = true;
    for (PictureView* viewer : {&m_work.raw, &m_work.reference}) {
        if (viewer->Image().IsAllocated()) viewer->SetAutoDetect(false);
    }
    emit m_work.news.statusWanted(string_id::kRoi);  // and never hidden again
    m_work.previewActive = false;
}

bool CalibrationSteps::MayPickByHand() {
    return m_work.manualColors && m_pictures.GetSelectedViewer() != &m_work.calibrated;
}

void CalibrationSteps::OnAddColor() {
    if (MayPickByHand()) m_work.lists.AddColor();
}

void CalibrationSteps::OnRemoveLastColor() {
    if (MayPickByHand()) m_work.lists.RemoveLast();
}

void CalibrationSteps::OnRemoveColor() { m_work.lists.Remove(); }

void CalibrationSteps::OnClearColors() { m_work.lists.Clear(); }
