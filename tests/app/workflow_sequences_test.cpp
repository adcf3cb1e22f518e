// The steps in orders in which a user takes them.

#include <cstring>

#include "app/CommandTable.h"
#include "tests/app/workflow_bench.h"

using namespace tonewright;

namespace {

using WorkflowSequences = WorkflowBench;

TEST_F(WorkflowSequences, TheQuestionIsAboutTheNameThatWillBeWritten) {
    struct Case {
        const char* typed;
        int filter;
        const char* there;
        bool asks;
    };
    LoadChart();
    Calibration().OnCalibratePreview();
    for (const Case& c : {Case{"new", 1, "other.bmp", false}, Case{"a", 1, "a.bmp", true}, Case{"b", 2, "b.tif", true},
                          Case{"c.bmp", 1, "c.bmp", false}, Case{"d", 3, "d.zvk", false}}) {
        Write(c.there, "somebody's");
        prompts.path = Path(c.typed);
        prompts.filterIndex = c.filter;
        prompts.questions.clear();
        Pictures().OnSaveImage();
        EXPECT_EQ(prompts.questions.size(), c.asks ? 1u : 0u) << c.typed;
        if (!c.asks) continue;
        EXPECT_EQ(prompts.questions[0],
                  "Save As: " + Path(c.there).toStdString() + " already exists.\nDo you want to replace it?");
        EXPECT_EQ(Read(c.there), "somebody's");
        prompts.yes = true;
        Pictures().OnSaveImage();
        prompts.yes = false;
        EXPECT_NE(Read(c.there), "somebody's");
    }
}

// 64 bytes that declare 20000 x 20000 pixels; the view's copy would pay for them.
TEST_F(WorkflowSequences, ANativeFileThatBreaksOffIsNotLoaded) {
    LoadChart();
    const CTivImage whole(400, 280, CTivData::FormatRgb, nullptr, true);
    prompts.path = Path("whole.zvk");
    ASSERT_TRUE(whole.Save(prompts.path.toStdString(), 0));
    const std::string bytes = Read("whole.zvk");
    std::string huge = bytes.substr(0, 64);
    const std::int32_t size[2] = {20000, 20000};
    std::memcpy(huge.data() + 36, size, sizeof size);
    Write("huge.zvk", huge);
    Write("short.zvk", bytes.substr(0, bytes.size() - 1));
    for (const char* name : {"huge.zvk", "short.zvk"}) {
        EXPECT_FALSE(Pictures().LoadImageFile(Path(name))) << name;
        EXPECT_EQ(raw.image.GetWidth(), 400) << name;
        EXPECT_NE(raw.image.GetData(40, 40).AsRgb() & 0xFFFFFF, 0u) << name << ": the picture before stays";
    }
    EXPECT_TRUE(Pictures().LoadImageFile(Path("whole.zvk")));
    EXPECT_TRUE(log.empty());
}

TEST_F(WorkflowSequences, TheListsFollowTheModeOfTheEngineWhateverSetIt) {
    LoadChart();
    prompts.path = WriteChart("reference.bmp");
    Parameters().OnRelative();
    prompts.path = Path("relative.twkp");
    Files().OnSaveParameters();
    EXPECT_TRUE(lists.relative);
    prompts.yes = true;
    Parameters().OnResetParameters();
    EXPECT_FALSE(lists.relative);
    Files().OnLoadParameters();
    EXPECT_TRUE(lists.relative);
    Parameters().OnAbsolute();
    EXPECT_FALSE(lists.relative);
}

// What the second picture gives must not depend on the first one, in either mode.
TEST_F(WorkflowSequences, ASecondPictureCountsAlone) {
    const auto coefficients = [&](const char* name) {
        prompts.path = Path(name);
        Files().OnSaveCoefficients();
        return Read(name);
    };
    LoadChart(20);
    const std::string alone = coefficients("alone.ccor");
    LoadChart(60, 2);
    Calibration().OnCalibratePreview();
    EXPECT_NE(coefficients("other.ccor"), alone);
    LoadChart(20);
    EXPECT_EQ(coefficients("again.ccor"), alone);
    prompts.yes = true;
    Calibration().OnCalibratePreview();
    EXPECT_EQ(calibrated.image.GetWidth(), 200);
    EXPECT_TRUE(log.empty());
}

// A picture that came into the calibrated view by a drop is no preview: the next one replaces it whatever its size.
TEST_F(WorkflowSequences, APreviewReplacesADroppedPicture) {
    LoadChart(20);
    Select(calibrated);
    const CTivImage gray(50, 30, CTivData::FormatUByte, nullptr, true);
    ASSERT_TRUE(gray.Save(Path("gray.bmp").toStdString(), 5));
    Files().OpenDroppedFile(Path("gray.bmp"));
    ASSERT_EQ(calibrated.image.GetWidth(), 50);
    Calibration().OnCalibratePreview();
    EXPECT_EQ(calibrated.image.GetWidth(), 200);
    EXPECT_EQ(calibrated.image.GetFormat(), CTivData::FormatRgb);
    EXPECT_TRUE(log.empty());
}

}  // namespace
