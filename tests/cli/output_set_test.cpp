#include <sys/stat.h>
#include <unistd.h>

#include "tests/cli/tool_test.h"
#include "tests/support/drawn_chart.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// The commands that write a few files, all or none.
class Outputs : public ToolTest {
protected:
    std::vector<std::string> Calibrating(const std::string& coefficients, const std::string& corrected) const {
        return {"calibrate", chart_, "--coefficients", coefficients, "--corrected", corrected};
    }

    const std::string chart_ = WriteImage("chart.bmp", DrawnChart().Draw());
};

TEST_F(Outputs, WhatCouldNotBeToldIsTakenBack) {
    const std::string earlier = Write("c.ccor", "earlier");
    const std::vector<std::string> lines[] = {Calibrating(earlier, Path("i.bmp")), {"convert", chart_, Path("i.tif")}};
    for (const auto& line : lines) {
        const ToolRun run = RunTool(line, "/dev/full");
        EXPECT_EQ(run.status, 1) << line[0];
        EXPECT_THAT(run.err, HasSubstr("cannot write to standard output"));
        EXPECT_EQ(ReadBytes(earlier), "earlier");
        EXPECT_THAT(Files(), ElementsAre("c.ccor", "chart.bmp")) << line[0];
    }
}

TEST_F(Outputs, APathThatCannotBeOpenedIsToldWithItsReason) {
    std::filesystem::create_symlink("loop.bmp", Path("loop.bmp"));
    std::filesystem::create_directory(Path("folder.bmp"));
    const std::pair<std::string, const char*> cases[] = {
        {Path(std::string(300, 'n') + ".bmp"), "File name too long"},
        {Path("loop.bmp"), "Too many levels of symbolic links"},
        {Path("folder.bmp"), "Is a directory"},
        {Path("nowhere/i.bmp"), "No such file or directory"},
        {chart_ + "/i.bmp", "Not a directory"},
    };
    for (const auto& [path, reason] : cases) {
        const ToolRun run = RunTool(Calibrating(Path("c.ccor"), path));
        EXPECT_EQ(run.status, 1) << path;
        EXPECT_THAT(run.err, HasSubstr(path));
        EXPECT_THAT(run.err, HasSubstr(reason));
    }
    EXPECT_THAT(Files(), ElementsAre("chart.bmp", "folder.bmp", "loop.bmp"));
}

TEST_F(Outputs, AReplacedFileKeepsItsOwnerAndPermissions) {
    const std::string earlier = Write("c.ccor", "earlier");
    const bool isRoot = ::geteuid() == 0;  // nobody else may give files away
    ASSERT_EQ(isRoot ? ::chown(earlier.c_str(), 12345, 12346) : 0, 0);
    ASSERT_EQ(::chmod(earlier.c_str(), 0640), 0);
    ASSERT_EQ(RunTool(Calibrating(earlier, Path("i.bmp"))).status, 0);
    struct stat after {};
    ASSERT_EQ(::stat(earlier.c_str(), &after), 0);
    EXPECT_EQ(after.st_mode & 0777, 0640u);
    EXPECT_EQ(after.st_uid, isRoot ? 12345u : ::geteuid());
    EXPECT_EQ(ReadBytes(earlier).size(), 132u);
}

TEST_F(Outputs, AWriteBeyondTheLimitOnFileSizesIsTold) {
    const ToolRun run = RunTool(Calibrating(Path("c.ccor"), Path("i.bmp")), {}, "ulimit -f 64;");  // 32 or 64 KiB
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, HasSubstr(Path("i.bmp")));
    EXPECT_THAT(Files(), ElementsAre("chart.bmp"));
}

}  // namespace
