#include <QFile>
#include <algorithm>

#include "app/workflow/QualitySteps.h"
#include "tests/app/workflow_bench.h"
#include "tests/support/places.h"

using namespace tonewright;

namespace {

class QualityStepsTest : public WorkflowBench {
protected:
    QualitySteps& Quality() { return workflow->Get<QualitySteps>(); }
    void Preview() {
        Calibration().OnCalibratePreview();
        Quality().CatchUp();
    }
};

}  // namespace

// A preview, everything that a user may change after it, and previews again.
TEST_F(QualityStepsTest, FiguresFollowPreviewsAndSayWhenTheyAreOld) {
    QString told;
    QObject::connect(&Quality(), &QualitySteps::pictureTold, [&](const QString& summary) { told = summary; });
    EXPECT_FALSE(Quality().GetReport());
    LoadChart();
    Quality().CatchUp();
    EXPECT_TRUE(told.startsWith("24 of 24 patches found")) << told.toStdString();
    EXPECT_FALSE(Quality().GetReport());

    Preview();
    ASSERT_TRUE(Quality().GetReport());
    EXPECT_EQ(Quality().GetReport()->patches.size(), 24u);
    EXPECT_EQ(Quality().GetReport()->patches[0].outline.size(), 4u);
    const CalibrationQuality judged = JudgeCalibration(GetEngine(), *GetEngine().GetTransform(), {});
    EXPECT_DOUBLE_EQ(Quality().GetReport()->mean, judged.delivered.deltaE00.mean);
    Quality().CheckInputs();
    EXPECT_TRUE(Quality().WhyOutOfDate().isEmpty());

    GetEngine().SetIlluminant(3);
    Quality().CheckInputs();
    EXPECT_EQ(Quality().WhyOutOfDate(), "the illuminant was changed");
    GetEngine().SetIlluminant(0);  // and back: what is shown is true again
    Quality().CheckInputs();
    EXPECT_TRUE(Quality().WhyOutOfDate().isEmpty());

    LoadChart(30);
    Quality().CheckInputs();
    EXPECT_EQ(Quality().WhyOutOfDate(), "another picture came");
    Preview();
    EXPECT_TRUE(Quality().WhyOutOfDate().isEmpty());
    Calibration().OnColorsManual();
    Quality().CheckInputs();
    EXPECT_EQ(Quality().WhyOutOfDate(), "the colors were changed");
}

// A chart, then a picture without one, calibrated all the same, and one that is picked from by hand.
TEST_F(QualityStepsTest, NothingGoodIsSaidOfAPictureWithoutAChart) {
    QString told;
    std::vector<Finding> found;
    QObject::connect(&Quality(), &QualitySteps::pictureTold, [&](const QString& summary, const auto& findings) {
        told = summary;
        found = findings;
    });
    LoadChart();
    Quality().CatchUp();
    EXPECT_TRUE(told.startsWith("24 of 24")) << told.toStdString();
    LoadChart(40, 0);
    Quality().CatchUp();
    EXPECT_EQ(told, "0 of 24 patches found");
    ASSERT_EQ(found.size(), 1u);
    EXPECT_STREQ(found[0].code, "incomplete");

    Calibration().OnColorsManual();
    LoadChart();
    Quality().CheckInputs();
    EXPECT_EQ(told, "") << "nobody looked for a chart in this one";

    Calibration().OnColorsAutomatic();
    LoadChart(40, 0);
    Preview();
    ASSERT_TRUE(Quality().GetReport());
    const auto& judged = Quality().GetReport()->findings;
    EXPECT_TRUE(std::ranges::any_of(judged, [](const Finding& f) { return f.code == std::string("incomplete"); }));
}

// Loading a coefficient file replaces the transform under a preview, before or after it was judged.
TEST_F(QualityStepsTest, LoadedCoefficientsAreNotTakenForThePreviewed) {
    LoadChart();
    Preview();
    const std::string file = folder.filePath("a.ccor").toStdString();
    ASSERT_TRUE(GetEngine().SaveXForm(file, false));
    GetEngine().SetIlluminant(3);
    Preview();
    const double mean = Quality().GetReport()->mean;
    ASSERT_TRUE(GetEngine().LoadXForm(file));
    Quality().CheckInputs();
    EXPECT_EQ(Quality().WhyOutOfDate(), "other coefficients were loaded");

    Calibration().OnCalibratePreview();
    ASSERT_TRUE(GetEngine().LoadXForm(file));
    Quality().CatchUp();
    EXPECT_EQ(Quality().GetReport()->mean, mean);
    EXPECT_EQ(Quality().WhyOutOfDate(), "other coefficients were loaded");
}

TEST_F(QualityStepsTest, ReportIsSavedAndAFailureIsTold) {
    workflow->Get<ReportSteps>().OnSaveReport();  // nothing to save yet: asks nothing
    LoadChart();
    Calibration().OnCalibratePreview();  // judged only when the report is asked for
    prompts.path = folder.filePath("none/report.html");
    workflow->Get<ReportSteps>().OnSaveReport();
    ASSERT_FALSE(log.empty());
    EXPECT_EQ(log.back().type, LogError);
    prompts.path = folder.filePath("report.html");
    workflow->Get<ReportSteps>().OnSaveReport();
    QFile file(prompts.path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray page = file.readAll();
    EXPECT_TRUE(page.contains("data:image/png"));
    EXPECT_TRUE(page.contains("18 Cyan"));
    prompts.path = folder.filePath("report.PDF");
    workflow->Get<ReportSteps>().OnSaveReport();
    EXPECT_EQ(Read("report.PDF"), "%PDF");
}

TEST_F(QualityStepsTest, FindingAChartFillsTheListOrSaysWhyNot) {
    prompts.path = QString::fromStdString(sampleFile("Tonewright/Images/chart.bmp"));
    Pictures().OnLoadRawImage();
    Quality().OnFindChart();
    ASSERT_FALSE(log.empty());
    const bool isFound = log.back().type == LogInformation;
    EXPECT_TRUE(isFound) << log.back().text;
    EXPECT_TRUE(State().manualColors);
    EXPECT_EQ(lists.GetRawColors().GetSize(), 24);
    Preview();
    ASSERT_TRUE(Quality().GetReport());
    EXPECT_FALSE(Quality().GetReport()->patches[0].outline.empty());

    lists.AddColor();
    lists.lists.reference.Add({0x123456, 1, 2});
    Quality().OnFindChart();
    EXPECT_EQ(lists.GetRawColors().GetSize(), 24) << "in the place of what was there";
    EXPECT_EQ(lists.GetReferenceColors().GetSize(), 1);

    raw.image.Clear();  // a black picture
    Quality().OnFindChart();
    EXPECT_EQ(log.back().type, LogWarning);
    EXPECT_EQ(lists.GetRawColors().GetSize(), 24) << "what was picked stays";
}
