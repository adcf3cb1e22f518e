#include "cli/arguments.h"

#include <gmock/gmock.h>

#include "tests/cli/tool_test.h"

using namespace tonewright;

namespace {

using testing::HasSubstr;

TEST(Arguments, NumbersAreTakenWholeOrNotAtAll) {
    EXPECT_EQ(ParseInteger("-12"), -12);
    for (const char* text : {"", "12 ", " 12", "+12", "12x", "0x10", "1.0", "1e3", "2147483648", "--1"}) {
        EXPECT_FALSE(ParseInteger(text)) << text;
    }
    EXPECT_EQ(ParseDecimal("0.45"), 0.45f);
    EXPECT_EQ(ParseDecimal("-1e2"), -100.0f);
    for (const char* text : {"", ".", "0,45", "0.45 ", "1e99", "inf", "nan", "0x1p3", "1.2.3"}) {
        EXPECT_FALSE(ParseDecimal(text)) << text;
    }
    EXPECT_EQ(ParseIntegers("1,-2,3", 3), (std::vector{1, -2, 3}));
    for (const char* text : {"1,2", "1,2,3,4", "1,,3", "1,2,", ",2,3", "1;2;3", "1, 2,3"}) {
        EXPECT_FALSE(ParseIntegers(text, 3)) << text;
    }
    EXPECT_EQ(ParseRoi("1,2,30,40"), (ChartRoi{1, 2, 30, 40}));
    EXPECT_EQ(ParseChartSize("5x7")->Width, 5);
    for (const char* text : {"5", "5x", "x5", "0x4", "4x0", "-4x6", "4X6", "4x6x8", "4 x 6"}) {
        EXPECT_FALSE(ParseChartSize(text)) << text;
    }
}

class CommandLine : public ToolTest {};

TEST_F(CommandLine, HelpAndVersionWorkEverywhere) {
    EXPECT_THAT(RunTool({"--help"}).out, HasSubstr("calibrate"));
    EXPECT_THAT(RunTool({"--version"}).out, HasSubstr("tonewright 1."));
    for (const char* command : {"detect", "calibrate", "apply", "info", "convert"}) {
        const ToolRun help = RunTool({command, "--help"});
        EXPECT_EQ(help.status, 0) << command;
        EXPECT_THAT(help.out, HasSubstr(std::string("tonewright ") + command)) << command;
        EXPECT_EQ(help.err, "") << command;
        const ToolRun version = RunTool({command, "--version"});
        EXPECT_EQ(version.status, 0) << command;
        EXPECT_THAT(version.out, HasSubstr("tonewright 1.")) << command;
    }
}

TEST_F(CommandLine, AWrongOneIsTwoAndNamesTheArgument) {
    const std::string image = kSample;
    const struct {
        std::vector<std::string> arguments;
        const char* named;
    } cases[] = {
        {{}, "command"},
        {{"frobnicate"}, "frobnicate"},
        {{"detect"}, "IMAGE"},
        {{"detect", image, "--colour"}, "--colour"},
        {{"detect", image, "another"}, "another"},
        {{"detect", image, "--roi", "1,2,3"}, "--roi"},
        {{"detect", image, "--roi", "1,2,3,4x"}, "--roi"},
        {{"detect", image, "--chart", "0x4"}, "--chart"},
        {{"detect", image, "--chart", "6x4 "}, "--chart"},
        {{"calibrate", image, "--terms", "5"}, "--terms"},
        {{"calibrate", image, "--gamma", "0"}, "--gamma"},
        {{"calibrate", image, "--gamma", "0.45f"}, "--gamma"},
        {{"calibrate", image, "--saturation", "256,0,0"}, "--saturation"},
        {{"calibrate", "missing.bmp", "--saturation", "256,0,0"}, "--saturation"},
        {{"calibrate", image, "--saturation", "1,2"}, "--saturation"},
        {{"calibrate", image, "--illuminant", "D60"}, "--illuminant"},
        {{"calibrate", image, "--illuminant", "user", "--white", "1,1,1"}, "--values"},
        {{"calibrate", image, "--illuminant", "user", "--values", "x.csv"}, "--white"},
        {{"calibrate", image, "--values", "x.csv"}, "--values"},
        {{"calibrate", image, "--white", "1,1,1"}, "--white"},
        {{"calibrate", image, "--reference-roi", "1,2,3,4"}, "--reference"},
        {{"calibrate", image, "--reference", image, "--illuminant", "A"}, "--illuminant"},
        {{"calibrate", image, "--corrected", Path("x.crc")}, "--corrected"},
        {{"calibrate", image, "--corrected", Path("x.bmp"), "--parameters", Path("x.bmp")}, "x.bmp"},
        {{"calibrate", "y.bmp", "--corrected", "./y.bmp"}, "is to be written, and is an input"},
        {{"calibrate", image, "--report", "y.csv", "--illuminant", "user", "--white", "1,1,1", "--values", "./y.csv"},
         "y.csv is to be written, and is an input"},
        {{"calibrate", image, "--coefficients", ""}, "--coefficients: is empty"},
        {{"verify", "y.bmp", "--parameters", "p", "--report", "./y.bmp"}, "is to be written, and is an input"},
        {{"verify", image, "--coefficients", "p", "--report", "p"}, "p is to be written, and is an input"},
        {{"grab", "f.bmp", "--dark", "./f.bmp"}, "f.bmp is to be written, and is an input"},
        {{"grab", "f.bmp", "--count", "12", "--flat", "f-07.bmp"}, "f-07.bmp is to be written, and is an input"},
        {{"send", "f.ccor", "--device", ""}, "--device: is empty"},
        {{"apply", image, "--output", Path("x.bmp")}, "--parameters"},
        {{"apply", image, "--parameters", "p", "--coefficients", "c", "--output", Path("x.bmp")}, "--coefficients"},
        {{"apply", image, "--parameters", "p"}, "--output"},
        {{"apply", image, "--parameters", "p", "--gamma", "1", "--output", Path("x.bmp")}, "--gamma"},
        {{"apply", image, "--parameters", "p", "--output", Path("x.crc")}, "--output"},
        {{"apply", image, image, "--parameters", "p", "--output", Path("x.bmp")}, "--output"},
        {{"apply", image, "--parameters", "p", "--output", Path(""), "--type", "png"}, "--type"},
        {{"info"}, "FILE"},
        {{"info", image, ""}, "FILE: is empty"},
        {{"convert", image, Path("x.png")}, "OUTPUT"},
        {{"convert", image, Path("x.bmp"), "--format", "FormatPurple"}, "--format"},
        {{"convert", image, Path("x.bmp"), "--mode", "3"}, "--mode"},
    };
    for (const auto& [arguments, named] : cases) {
        const ToolRun run = RunTool(arguments);
        const std::string line = testing::PrintToString(arguments);
        EXPECT_EQ(run.status, 2) << line << run.err;
        EXPECT_EQ(run.out, "") << line;
        EXPECT_THAT(run.err, HasSubstr(named)) << line;
    }
    EXPECT_TRUE(Files().empty());
}

TEST_F(CommandLine, WhatCannotBeSaidOrBegunIsOne) {
    const ToolRun unsaid = RunTool({"--help"}, "/dev/full");
    EXPECT_EQ(unsaid.status, 1);
    EXPECT_THAT(unsaid.err, HasSubstr("cannot write to standard output"));
#ifndef __SANITIZE_ADDRESS__  // whose own memory has no room under the limits
    bool isDone = false;
    for (int megabytes = 40; megabytes <= 400 && !isDone; ++megabytes) {
        const ToolRun run =
            RunTool({"info", kSample}, {}, "ulimit -v " + std::to_string(megabytes * 1024) + "; ulimit -c 0;");
        isDone = run.status == 0;
        const int expected = isDone ? 0 : run.status == 127 ? 127 : 1;  // 127: the system could not load the program
        EXPECT_EQ(run.status, expected) << megabytes << " MiB: " << run.err;
    }
    EXPECT_TRUE(isDone);
#endif
}

}  // namespace
