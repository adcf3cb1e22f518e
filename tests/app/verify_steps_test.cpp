#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSignalSpy>

#include "tests/app/workflow_bench.h"
#include "tests/support/places.h"

using namespace tonewright;

namespace {

class VerifyTest : public WorkflowBench {
protected:
    VerifySteps& Verify() { return workflow->Get<VerifySteps>(); }
    QualitySteps& Quality() { return workflow->Get<QualitySteps>(); }
    void Preview() {
        Calibration().OnCalibratePreview();
        Quality().CatchUp();
    }
    void VerifyOn(const QString& path) {
        prompts.path = path;
        Verify().OnVerify();
        prompts.path.clear();
    }
    QString Sample(const char* name = "chart.bmp") {
        return QString::fromStdString(sampleFile(std::string("Tonewright/Images/") + name));
    }
    /// What the batch tool prints for these words.
    QJsonObject Tool(const QStringList& words) {
        QProcess tool;
        tool.start(QString::fromStdString(buildFile("cli/tonewright")), words);
        EXPECT_TRUE(tool.waitForFinished(60000));
        return QJsonDocument::fromJson(tool.readAllStandardOutput()).object();
    }
    static double MeanOf(const QJsonValue& differences) { return differences["deltaE00"]["mean"].toDouble(-1); }
    void ExpectFigures(const Report& report, const QJsonValue& delivered, const QJsonValue& before) {
        EXPECT_DOUBLE_EQ(report.mean, MeanOf(delivered));
        EXPECT_DOUBLE_EQ(report.before, MeanOf(before));
        const QJsonArray patches = delivered["deltaE00"]["patches"].toArray();
        ASSERT_EQ(report.patches.size(), static_cast<std::size_t>(patches.size()));
        for (std::size_t i = 0; i < report.patches.size(); ++i) {
            EXPECT_DOUBLE_EQ(report.patches[i].difference, patches[static_cast<int>(i)].toDouble(-1)) << i;
        }
    }
};

// Window and tool are two programs with one answer.
TEST_F(VerifyTest, FiguresAreThoseOfTheBatchTool) {
    prompts.path = Sample();
    Pictures().OnLoadRawImage();
    GetEngine().SetIlluminant(3);
    EditGamma("50");
    Preview();
    ASSERT_TRUE(Quality().GetReport());
    const QJsonObject calibrated = Tool({"calibrate", Sample(), "--illuminant", "D65", "--gamma", "0.5"});
    ExpectFigures(*Quality().GetReport(), calibrated["quality"]["delivered"], calibrated["quality"]["before"]);
    EXPECT_DOUBLE_EQ(Quality().GetReport()->unseen.value_or(-1), MeanOf(calibrated["quality"]["unseen"]));
    EXPECT_EQ(Quality().GetReport()->findings.size(),
              static_cast<std::size_t>(calibrated["findings"].toArray().size()));

    const QString file = Path("a.twkp");
    prompts.path = file;
    Files().OnSaveParameters();
    VerifyOn(Sample("chart-coded.bmp"));
    ASSERT_TRUE(Verify().GetReport());
    const QJsonObject verified = Tool({"verify", Sample("chart-coded.bmp"), "--find", "--parameters", file});
    ExpectFigures(*Verify().GetReport(), verified["delivered"], verified["before"]);
    EXPECT_EQ(Verify().GetReport()->findings.size(), static_cast<std::size_t>(verified["findings"].toArray().size()));
}

// No calibration; one; settings changed under it; the way back; and a preview, which brings another.
TEST_F(VerifyTest, AVerificationStandsUntilTheCalibrationChanges) {
    QSignalSpy verified(&Verify(), &VerifySteps::verified), left(&Verify(), &VerifySteps::left);
    VerifyOn(WriteChart("other.bmp", 30));
    EXPECT_TRUE(prompts.opened.empty()) << "nothing to verify yet";
    LoadChart();
    Preview();
    prompts.path.clear();
    Verify().OnVerify();  // cancelled
    EXPECT_FALSE(Verify().GetReport());

    VerifyOn(WriteChart("other.bmp", 30));
    ASSERT_EQ(verified.count(), 1);
    EXPECT_EQ(verified[0][1].toString(), "other.bmp");
    EXPECT_EQ(wanted.back(), ID_BTN_QUALITY_PANE);
    EXPECT_EQ(Verify().GetPicture().GetWidth(), 300);
    EXPECT_EQ(raw.image.GetWidth(), 400) << "no viewer shows it";
    // The same colors at another size: what is delivered is the same.
    EXPECT_NEAR(Verify().GetReport()->mean, Quality().GetReport()->mean, 0.2);

    LoadChart(20);
    GetEngine().SetIlluminant(3);
    Verify().CheckInputs();
    EXPECT_EQ(Verify().WhyOutOfDate(), "") << "picture and illuminant come into the next fit";
    GetEngine().SetSaturationMode(2);
    Verify().CheckInputs();
    EXPECT_EQ(Verify().WhyOutOfDate(), "the saturation was changed");
    GetEngine().SetSaturationMode(0);
    Verify().CheckInputs();
    EXPECT_EQ(Verify().WhyOutOfDate(), "");
    Calibration().CalibrateForSaving();
    Verify().CheckInputs();
    EXPECT_EQ(Verify().WhyOutOfDate(), "another calibration was made");
    Preview();
    EXPECT_FALSE(Verify().GetReport());
    EXPECT_EQ(left.count(), 1);

    VerifyOn(Path("other.bmp"));
    Verify().OnBack();
    EXPECT_EQ(left.count(), 2);
    VerifyOn(Path("other.bmp"));
    prompts.yes = true;
    Parameters().OnResetParameters();
    EXPECT_FALSE(Verify().CanVerify());
    Verify().CheckInputs();
    EXPECT_EQ(Verify().WhyOutOfDate(), "there is no calibration any more");
}

// Parameters of a file are a calibration without any picture.
TEST_F(VerifyTest, AParameterFileIsEnough) {
    LoadChart();
    prompts.path = Path("a.twkp");
    Files().OnSaveParameters();
    GetEngine().Reset();
    Begin();
    EXPECT_FALSE(Verify().CanVerify());
    ASSERT_TRUE(Files().LoadParameterFile(Path("a.twkp")));
    VerifyOn(Path("chart.bmp"));
    ASSERT_TRUE(Verify().GetReport());
    EXPECT_EQ(Verify().GetReport()->patches.size(), 24u);
}

TEST_F(VerifyTest, WhatCannotBeVerifiedSaysWhyAndLeavesWhatStands) {
    LoadChart();
    Preview();
    VerifyOn(WriteChart("other.bmp", 30));
    const double mean = Verify().GetReport()->mean;
    ASSERT_TRUE(CTivImage(300, 200, CTivData::FormatRgb, nullptr, true).Save(Path("black.bmp").toStdString(), 5));
    ASSERT_TRUE(CTivImage(30, 20, CTivData::FormatUByte, nullptr, true).Save(Path("gray.zvk").toStdString(), 0));
    CTivImage deep;
    CTivImage chart;
    ASSERT_TRUE(chart.Load(Path("chart.bmp").toStdString(), true));
    ASSERT_TRUE(deep.Set(chart.GetWidth(), chart.GetHeight(), CTivData::FormatRgb16, nullptr, true));
    ASSERT_TRUE(deep.ConvertFormat(chart, 2));
    ASSERT_TRUE(deep.Save(Path("deep.zvk").toStdString(), 0));
    Write("broken.bmp", "BM and no more");
    struct Case {
        const char* name;
        const char* words;
    };
    for (const Case& c : {Case{"black.bmp", "Verify: black.bmp: "}, Case{"gray.zvk", "Verify: gray.zvk: "},
                          Case{"deep.zvk", "Verify: deep.zvk: the calibration was made for another depth of pixels"},
                          Case{"broken.bmp", "Verify: broken.bmp: "}, Case{"none.bmp", "Verify: none.bmp: "}}) {
        log.clear();
        VerifyOn(Path(c.name));
        ASSERT_EQ(log.size(), 1u) << c.name;
        EXPECT_EQ(log[0].type, LogWarning);
        EXPECT_EQ(log[0].text.substr(0, std::string(c.words).size()), c.words);
        EXPECT_GT(log[0].text.size(), std::string("Verify: : ").size() + std::string(c.name).size() + 5) << "a reason";
        EXPECT_EQ(Verify().GetReport()->mean, mean);
    }
    values.size = {3, 2};  // the chart that was calibrated has 24 patches
    log.clear();
    VerifyOn(Path("other.bmp"));
    ASSERT_EQ(log.size(), 1u);
    EXPECT_EQ(Verify().GetReport()->mean, mean);
}

// Coefficients that were loaded are what is in force, and what is verified.
TEST_F(VerifyTest, LoadedCoefficientsAreVerifiedByName) {
    LoadChart();
    Preview();
    ASSERT_TRUE(GetEngine().SaveXForm(Path("own.ccor").toStdString(), false));
    GetEngine().SetIlluminant(6);
    Preview();
    prompts.path = Path("own.ccor");
    VerifyOn(Path("chart.bmp"));
    const double mean = Verify().GetReport()->mean;
    prompts.path = Path("own.ccor");
    Files().OnLoadCoefficients();
    Verify().CheckInputs();
    EXPECT_EQ(Verify().WhyOutOfDate(), "other coefficients were loaded");
    VerifyOn(Path("chart.bmp"));
    EXPECT_NE(Verify().GetReport()->mean, mean);
    bool isNamed = false;
    for (const ReportRow& row : Verify().GetReport()->settings) isNamed |= row.value.ends_with("own.ccor");
    EXPECT_TRUE(isNamed);
}

}  // namespace
