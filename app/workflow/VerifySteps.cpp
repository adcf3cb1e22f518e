#include "app/workflow/VerifySteps.h"

#include <filesystem>

#include "app/CommandIds.h"
#include "app/toolkit/Profile.h"
#include "app/toolkit/Prompts.h"
#include "app/toolkit/WaitCursor.h"
#include "app/workflow/StudioFiles.h"
#include "foundation/record_length.h"
#include "quality/verification.h"
#include "report/calibration_outputs.h"

using namespace tonewright;

using namespace studio_files;

namespace {

constexpr const char* kSection = "Verification";

CTivImage loadPicture(const std::string& path, const std::string& name) {
    // Declared pixels that never came would be paid for by the copies.
    if (const std::string reason = CheckImageFileLength(path); !reason.empty()) throw WorkFailure(name + ": " + reason);
    CTivImage picture;
    if (!picture.Load(path, true)) throw WorkFailure(name + ": " + CTivManager::GetLastErrorString());
    return picture;
}

void requireWhole(const ChartReading& reading, const std::string& name) {
    const PatchDetector& grid = reading.detector;
    const ChartSize& chart = reading.measured.chart;
    if (grid.GetFoundRows() >= chart.Height && grid.GetFoundColumns() >= chart.Width) return;
    throw WorkFailure(name + ": " + std::to_string(grid.GetFoundRows()) + " of " + std::to_string(chart.Height) +
                      " rows and " + std::to_string(grid.GetFoundColumns()) + " of " + std::to_string(chart.Width) +
                      " columns of the chart were found");
}

ChartReading readGrid(const CTivImage& picture, const std::string& name, const ChartSize& size) {
    ChartReading reading = ReadChart(picture, name, {}, {.size = size});
    requireWhole(reading, name);
    return reading;
}

/// The chart wherever it lies, or else where it fills the picture. Of another size than 6 x 4 only there.
ChartReading readChart(const CTivImage& picture, const std::string& name, const ChartSize& size) {
    if (size.Width != 6 || size.Height != 4) return readGrid(picture, name, size);
    try {
        ChartReading reading = ReadChart(picture, name, {}, {.size = size, .isFind = true});
        RequireOrder(reading, name);
        return reading;
    } catch (const WorkFailure&) {
        try {
            return readGrid(picture, name, size);
        } catch (const WorkFailure&) {
            // The finder's reason says more.
        }
        throw;
    }
}

}  // namespace

VerifySteps::VerifySteps(WorkflowContext& work) : m_work(work) {
    connect(&work.news, &WorkflowNews::previewed, this, [this] { OnBack(); });
}

void VerifySteps::OnVerify() {
    if (!CanVerify()) return;
    const QString start =
        GetProfile().ReadString(kImageSection, kLoadName, DefaultPath(m_work.baseDir, kImages, "*.bmp"));
    const auto choice = GetPrompts().OpenFile({GetProfile().ReadString(kSection, kName, start),
                                               kOpenImageFilters,
                                               GetProfile().ReadInt(kSection, kLoadType, 1),
                                               {},
                                               "Verify on Another Picture"});
    if (!choice) return;
    const std::string path = choice->path.toStdString();
    const std::string name = std::filesystem::path(path).filename().string();
    try {
        const WaitCursor wait;
        VerifyPicture(path, name);
    } catch (const WorkFailure& failure) {
        m_work.news.Log("Verify: " + QString::fromStdString(failure.what()), LogWarning);
        return;
    }
    GetProfile().WriteString(kSection, kName, choice->path);
    GetProfile().WriteInt(kSection, kLoadType, choice->filterIndex);
    m_work.news.ShowPane(ID_BTN_QUALITY_PANE);
    emit verified(*m_report, QString::fromStdString(name));
}

void VerifySteps::VerifyPicture(const std::string& path, const std::string& name) {
    const CTivTonewrightDC& engine = m_work.engine;
    const ChartReading reading = readChart(loadPicture(path, name), name, *m_work.values.GetChartSize());
    const CTivVector& transform = *engine.GetTransform();
    const Verification verification =
        VerifyOn(reading, name, engine, transform, m_work.fit->targets, m_work.fit->isAbsolute);
    m_report = ReportOn(verification, reading, path);
    const bool isFit = Checksum(transform) == m_work.fit->transform;
    const std::string file = m_work.coefficientFile.toStdString();
    m_report->settings.push_back({"Calibration", isFit || file.empty() ? "the present one" : file});
    for (const ReportRow& row : m_work.fit->settings) m_report->settings.push_back(row);
    m_picture = ReportPicture(reading.image);
    m_inputs = TakeInputs(m_work);
    m_outOfDate.clear();
}

void VerifySteps::CheckInputs() {
    if (!m_report) return;
    const CalibrationInputs now = TakeInputs(m_work);
    QString reason;
    if (now.transform != m_inputs.transform) {
        const bool isFit = m_work.fit && now.transform == m_work.fit->transform;
        reason = !now.transform ? "there is no calibration any more"
                 : isFit        ? "another calibration was made"
                                : "other coefficients were loaded";
    } else if (now.gamma != m_inputs.gamma) {
        reason = "gamma was changed";
    } else if (now.saturationMode != m_inputs.saturationMode || now.saturation != m_inputs.saturation) {
        reason = "the saturation was changed";
    }
    if (reason == m_outOfDate) return;
    m_outOfDate = reason;
    emit outOfDate(reason);
}

void VerifySteps::OnBack() {
    if (!m_report) return;
    m_report.reset();
    m_picture.Free();
    m_outOfDate.clear();
    emit left();
}
