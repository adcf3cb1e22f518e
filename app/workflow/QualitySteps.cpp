#include "app/workflow/QualitySteps.h"

#include <cmath>

#include "app/StringTable.h"
#include "app/toolkit/WaitCursor.h"
#include "app/workflow/StatusTexts.h"
#include "calibration/fit_transform.h"
#include "chart/ChartFinder.h"
#include "chart/patch_colors.h"
#include "quality/measured_chart.h"
#include "report/calibration_report.h"

using namespace tonewright;

namespace {

constexpr int kMomentMs = 150;
constexpr int kRelative = 1;

/// The greatest mean of a channel as a share of full scale.
double brightest(const MeasuredChart& chart) {
    double greatest = 0;
    for (const PatchMeasurement& patch : chart.patches) {
        for (const double mean : patch.mean) greatest = std::max(greatest, mean);
    }
    const int fullScale = GetChannelFullScale(chart.format);
    return fullScale > 0 ? greatest / fullScale : 0;
}

bool areLike(const CTivVector& one, const CTivVector& other) {
    return one.GetSize() == other.GetSize() && one.GetFormat() == other.GetFormat() && Checksum(one) == Checksum(other);
}

CTivVector colorsOf(const MeasuredChart& chart) { return ToPatchColors(chart.patches, chart.format).colors; }

}  // namespace

QualitySteps::QualitySteps(WorkflowContext& work, PictureSteps& pictures, CalibrationSteps& calibration)
    : m_work(work), m_pictures(pictures), m_calibration(calibration) {
    m_moment.setSingleShot(true);
    m_moment.setInterval(kMomentMs);
    connect(&m_moment, &QTimer::timeout, this, [this] { CatchUp(); });
    connect(&work.news, &WorkflowNews::previewed, this, [this] {
        m_wasPreviewed = true;
        m_judgedInputs = TakeInputs(m_work);
        m_moment.start();
    });
    connect(&work.news, &WorkflowNews::detected, this, [this] { m_moment.start(); });
}

void QualitySteps::CatchUp() {
    m_moment.stop();
    if (m_wasPreviewed) {
        m_wasPreviewed = false;
        Judge();
    } else if (!m_report) {
        TellPicture();
    }
    CheckInputs();
}

void QualitySteps::TellAgain() {
    if (!m_report) return TellPicture();
    emit judged(*m_report);
    if (!m_outOfDate.isEmpty()) emit outOfDate(m_outOfDate);
}

void QualitySteps::CheckInputs() {
    // While colors are picked by hand no detection tells of a new picture.
    if (!m_report && m_work.manualColors && m_toldPictures != m_work.pictures) TellPicture();
    if (!m_report || m_wasPreviewed) return;
    const QString reason = WhatDiffers(m_judgedInputs, TakeInputs(m_work));
    if (reason == m_outOfDate) return;
    m_outOfDate = reason;
    emit outOfDate(reason);
}

bool QualitySteps::LooksForChart() const {
    return !m_work.manualColors && m_work.raw.Image().IsAllocated() && m_work.raw.Detector();
}

bool QualitySteps::ShowsFoundChart() const { return m_found.found && m_foundInPicture == m_work.pictures; }

MeasuredChart QualitySteps::Measure() const {
    const CTivImage& raw = m_work.raw.Image();
    const ChartSize chart = *m_work.values.GetChartSize();
    const PatchDetector* const detector = m_work.raw.Detector();
    if (m_work.manualColors) {
        return ShowsFoundChart() ? MeasureFound(raw, m_found, GetClassicLayout()) : MeasuredChart();
    }
    const auto patches = static_cast<std::size_t>(chart.Width) * static_cast<std::size_t>(chart.Height);
    if (!LooksForChart()) return {};
    if (detector->GetOverlay().size() != patches) {  // nothing was found
        MeasuredChart none;
        none.chart = chart;
        return none;
    }
    return MeasureGrid(raw, *detector, chart, detector->GetBrightest());
}

PatchOutlines QualitySteps::Outlines(const MeasuredChart& chart) const {
    if (chart.patches.empty()) return {};
    if (m_work.manualColors) return OutlineFound(m_found);
    return OutlineGrid(chart.places, m_work.raw.Detector()->GetPatchWidth(), m_work.raw.Detector()->GetPatchHeight());
}

void QualitySteps::Judge() {
    const CTivTonewrightDC& engine = m_work.engine;
    if (!engine.GetTransform() || !engine.GetRawColors()) return;
    // Coefficients that were loaded since are not what was previewed.
    if (Checksum(*engine.GetTransform()) != m_judgedInputs.transform) return;
    MeasuredChart chart = Measure();
    const std::optional<Finding> incomplete = LooksForChart() ? FindIncomplete(chart) : std::nullopt;
    // Other colors than the engine's say nothing of its calibration.
    if (!areLike(colorsOf(chart), *engine.GetRawColors())) chart = {};
    const CalibrationQuality quality =
        JudgeCalibration(engine, *engine.GetTransform(), {&m_work.raw.Image(), chart.areas, chart.patches});
    if (quality.patches.empty()) return;
    std::vector<Finding> findings;
    if (!chart.patches.empty()) {
        if (engine.GetCalibrationMode() != kRelative) chart.targets = ToXyz(GetTargets(engine));
        findings = FindInPicture(chart);
    } else if (incomplete) {
        findings.push_back(*incomplete);
    }
    for (Finding& finding : FindInCalibration(quality, *engine.GetTransform())) findings.push_back(std::move(finding));
    m_report =
        ReportCalibration(quality, findings, engine.GetXformSize(), *m_work.values.GetChartSize(), Outlines(chart));
    m_report->settings = ReportSettings(engine, false);
    m_outOfDate.clear();
    emit judged(*m_report);
}

void QualitySteps::TellPicture() {
    const MeasuredChart chart = Measure();
    m_toldPictures = m_work.pictures;
    if (chart.patches.empty() && !LooksForChart()) {
        emit pictureTold({}, {});
        return;
    }
    const int size = chart.chart.Width * chart.chart.Height;
    QString summary =
        QString("%1 of %2 patches found").arg(std::min(size, chart.foundRows * chart.foundColumns)).arg(size);
    if (!chart.patches.empty()) {
        summary += QString("; the brightest reaches %1 % of full scale").arg(std::lround(100 * brightest(chart)));
    }
    emit pictureTold(summary, FindInPicture(chart));
}

// The chart is looked for in the whole picture: a rectangle drawn for the straight grid is none for this.
void QualitySteps::OnFindChart() {
    PictureView* const view = m_pictures.GetSelectedViewer();
    if (!view || view == &m_work.calibrated || !view->Image().IsAllocated()) return;
    const bool isRaw = view == &m_work.raw;
    FoundChart found;
    {
        const WaitCursor wait;
        found = ChartFinder().Find(view->Image());
    }
    if (!found.found) {
        m_work.news.Log("Find Chart: " + QString::fromStdString(found.text), LogWarning);
        return;
    }
    const MeasuredChart chart = MeasureFound(view->Image(), found, GetClassicLayout());
    const CTivVector colors = colorsOf(chart);
    m_work.values.SetMatrixSize(chart.chart.Width, chart.chart.Height);
    m_calibration.OnColorsManual();
    RawColorLists lists = m_work.lists.Lists();
    RawColorSide& side = isRaw ? lists.raw : lists.reference;
    side.Clear();  // a calibration takes the colors of one chart
    side.Fill(colors);
    m_work.lists.Restore(lists);
    if (isRaw) {
        m_found = found;
        m_foundInPicture = m_work.pictures;
    }
    view->ShowOutlines(OutlineFound(found));
    m_work.news.SetStatus(string_id::kRoi, status_texts::Roi(view->GetRoi()));  // a square to pick with by now
    m_work.news.Log(QString("Find Chart: 24 patches found, turned by %1 degrees%2.")
                        .arg(std::lround(found.rotation))
                        .arg(found.mirrored ? ", mirrored" : ""),
                    LogInformation);
}
