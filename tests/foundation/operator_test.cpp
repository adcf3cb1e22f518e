#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <thread>

#include "foundation/CTivAlgo.h"
#include "foundation/CTivOperator.h"
#include "foundation/CTivOutputStream.h"
#include "foundation/CTivParameter.h"
#include "primitives/acceleration.h"
#include "tests/support/library.h"
#include "tests/support/scratch.h"

namespace {

void configure(const std::string& content) {
    const std::string file = scratchFolder() + "/config.ini";
    std::ofstream(file) << content;
    setenv("ZELVAN_PROCESSING_CONFIG", file.c_str(), 1);
    CTivConfig::Forget();
}

class Config : public testing::Test {
protected:
    void TearDown() override {
        unsetenv("ZELVAN_PROCESSING_CONFIG");
        CTivConfig::Forget();
        CTivConfig::EnsureRead();
    }
    const int processors = static_cast<int>(std::thread::hardware_concurrency());
};

}  // namespace

TEST_F(Config, DefaultsWithoutAFile) {
    setenv("ZELVAN_PROCESSING_CONFIG", "/nonexistent/file.ini", 1);
    CTivConfig::Forget();
    EXPECT_EQ(CTivOperator::GetOptimizationLevel(), 1);
    EXPECT_EQ(CTivConfig::GetThreadCount(), static_cast<int>(static_cast<float>(processors) * 0.75f));
    EXPECT_FALSE(CTivOperator::IsCoprocessorEnabled());
    EXPECT_EQ(CTivOperator::GetCoprocessorDefaultIndex(), -1);
}

TEST_F(Config, ValuesOfTheFile) {
    configure("[Configuration]\nCPU Thread Count = 0\nOptimization Level=2\nGPU Coprocessor Default Index=0\n");
    EXPECT_EQ(CTivOperator::GetOptimizationLevel(), 2);
    EXPECT_EQ(CTivConfig::GetThreadCount(), processors);
    EXPECT_EQ(CTivOperator::GetCoprocessorDefaultIndex(), -1);
    configure("[Configuration]\nCPU Thread Count=100000\nOptimization Level=3\n");
    EXPECT_EQ(CTivConfig::GetThreadCount(), processors);
    EXPECT_EQ(CTivOperator::GetOptimizationLevel(), 1);
    configure("[Configuration]\nCPU Thread Count=1\nOptimization Level=no\n[Other]\nOptimization Level=0\n");
    EXPECT_EQ(CTivConfig::GetThreadCount(), 1);
    EXPECT_EQ(CTivOperator::GetOptimizationLevel(), 1);
}

TEST(Operator, CoprocessorRequestsAreRefusedInWords) {
    EXPECT_FALSE(CTivOperator::SetCoprocessorDefaultIndex(1));
    EXPECT_EQ(LastError(), "CTivOperator::SetCoprocessorDefaultIndex=> invalid coprocessor index");
    EXPECT_FALSE(CTivOperator::SetCoprocessorOptim(true));
    EXPECT_EQ(LastError(), "CTivOperator::SetCoprocessorOptim=> GPU acceleration not available");
}

TEST(Algo, ChildrenShareTheRootsTimeout) {
    CTivAlgo root("root");
    CTivAlgo child("child");
    CTivAlgo grandchild("grandchild");
    EXPECT_EQ(root.GetTimeout(), 1000.0f);
    grandchild.SetParent(&child);
    child.SetParent(&root);
    EXPECT_EQ(grandchild.GetTimeoutObject(), root.GetTimeoutObject());
    EXPECT_FALSE(child.SetTimeout(5.0f));
    EXPECT_FALSE(child.EnableTimeout(true));
    EXPECT_TRUE(root.SetTimeout(5.0f));
    EXPECT_EQ(child.GetTimeout(), 5.0f);
    EXPECT_EQ(root.GetChild(0), &child);
    EXPECT_EQ(root.GetChild(1), nullptr);
    EXPECT_EQ(root.GetChild(-1), nullptr);
    CTivAlgo above("above");
    root.SetParent(&above);  // ends the root's own one
    EXPECT_EQ(grandchild.GetTimeoutObject(), above.GetTimeoutObject());
}

TEST(Algo, ChildrenMoveUpWhenTheirParentEnds) {
    CTivAlgo root("root");
    CTivAlgo leaf("leaf");
    {
        CTivAlgo middle("middle");
        middle.SetParent(&root);
        leaf.SetParent(&middle);
    }
    EXPECT_EQ(leaf.GetParent(), &root);
    EXPECT_EQ(root.GetChildCount(), 1);
    CTivAlgo orphan("orphan");
    {
        CTivAlgo gone("gone");
        orphan.SetParent(&gone);
    }
    EXPECT_EQ(orphan.GetParent(), nullptr);
    EXPECT_EQ(orphan.GetTimeout(), 0.0f);
}

TEST(Algo, ChildrenThatWereOnlyAddedDoNotHoldTheirParentsEnd) {
    CTivAlgo root("root");
    CTivAlgo leaf("leaf"), twice("twice"), alone("alone");
    {
        CTivAlgo middle("middle");
        middle.SetParent(&root);
        middle.AddChild(&leaf);
        for (int i = 0; i < 2; ++i) middle.AddChild(&twice);
    }
    EXPECT_EQ(leaf.GetParent(), &root);
    EXPECT_EQ(twice.GetParent(), &root);
    EXPECT_GE(root.GetChildCount(), 2);
    {
        CTivAlgo gone("gone");
        gone.AddChild(&alone);
    }
    EXPECT_TRUE(alone.SetTimeout(5.0f)) << "its time-out is its own";
    EXPECT_EQ(alone.GetTimeout(), 5.0f);
}

TEST(Algo, AverageOfItsOwnSamples) {
    CTivAlgo algo("mine");
    EXPECT_EQ(algo.GetAverageTime(), 0.0f);
    algo.AddTimeSample("mine", 2.0f);
    algo.AddTimeSample("mine", 4.0f);
    algo.AddTimeSample("other", 90.0f);
    EXPECT_EQ(algo.GetAverageTime(), 3.0f);
    algo.ClearTimeSamples("mine");
    EXPECT_EQ(algo.GetAverageTime(), 0.0f);
}

TEST(Timeout, LimitsAndTheirExceptions) {
    CTivTimeout timeout(-1.0f);
    EXPECT_EQ(timeout.GetLimit(), 1000.0f);
    timeout.Restart(1.0f);
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
    EXPECT_FALSE(timeout.IsTimedOut());
    timeout.Enable(true);
    EXPECT_TRUE(timeout.IsTimedOut());
    EXPECT_GE(timeout.GetElapsed(), 1.0f);
    timeout.Reset();
    timeout.Restart(0.0f);
    EXPECT_FALSE(timeout.IsTimedOut());
    timeout.Restart(std::numeric_limits<float>::quiet_NaN());
    timeout.Update();
    EXPECT_FALSE(timeout.IsTimedOut());
}

TEST(Parameters, PresenceFollowsSet) {
    ctiv::OptionalParameter<double> scale;
    EXPECT_FALSE(scale.IsPresent());
    *scale.Set() = 2.5;
    EXPECT_TRUE(scale.IsPresent());
    EXPECT_EQ(*scale.Get(), 2.5);
    ctiv::OptionalParameter<std::string> unit;
    unit.Set("mm");
    EXPECT_TRUE(unit.IsPresent());
    EXPECT_STREQ(unit.Get(), "mm");
}

TEST(OutputStream, FailuresThrowWithTheirWords) {
    std::ofstream closed("/nonexistent/file");
    brennick::korva::zelvan_pix::OutputStreamStdOstream stream(closed);
    const auto textOf = [](auto action) -> std::string {
        try {
            action();
        } catch (const std::ios_base::failure& failure) {
            EXPECT_EQ(failure.code().category(), std::iostream_category());
            return failure.what();
        }
        return "";
    };
    EXPECT_NE(textOf([&] { stream.Write("x", 1); }).find("failed to write data to an output stream"),
              std::string::npos);
    EXPECT_NE(textOf([&] { stream.Seek(0); }).find("failed to seek within an output stream"), std::string::npos);
    // A stream that throws by itself, at the flush of the end as well.
    std::ofstream full("/dev/full");
    full << "x";
    full.exceptions(std::ios::badbit | std::ios::failbit);
    { const brennick::korva::zelvan_pix::OutputStreamStdOstream ends(full); }
    EXPECT_TRUE(full.bad());
}
