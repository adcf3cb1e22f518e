#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "foundation/CTivImage.h"
#include "imagefile/CTivImageFileFormat.h"
#include "tests/support/library.h"
#include "tests/support/places.h"

/// What a run of the real program gave.
struct ToolRun {
    int status = -1;  ///< the exit status; above 128: ended by a signal, or by the runner after half a minute
    std::string out;
    std::string err;
    long peakKilobytes = 0;  ///< the most that this run or one before it took

    nlohmann::json Document() const { return nlohmann::json::parse(out); }
};

/// Runs `tonewright` with these arguments.
/// @param out where standard output goes instead of into the answer @param before what the shell does first
ToolRun RunTool(const std::vector<std::string>& arguments, const std::string& out = {}, const std::string& before = {});

/// Starts the tool, sends it a signal once `isReady`, and waits for its end.
/// @return with the negative number of the signal that ended it as the status, where one did
ToolRun InterruptTool(const std::vector<std::string>& arguments, int signal, const std::function<bool()>& isReady);

/// Gives each test a folder of its own that is gone afterwards.
class ToolTest : public testing::Test {
public:
    static std::string ReadBytes(const std::string& path);

protected:
    ToolTest();
    ~ToolTest() override;

    std::string Path(const std::string& name) const { return (folder_ / name).native(); }
    /// Everything in the folder, hidden files included, sorted.
    std::vector<std::string> Files() const;
    /// Writes a file. @return its path
    std::string Write(const std::string& name, const std::string& bytes) const;
    std::string WriteImage(const std::string& name, const CTivImage& image, int fileFormat = ImageFileBmp) const;

private:
    std::filesystem::path folder_;
};

/// Puts a little-endian integer over a file's bytes.
std::string WithU32(std::string bytes, std::size_t offset, std::uint32_t value);

/// The sample's photograph as it was, coded for a screen, and where its chart lies.
inline const std::string kSample = sampleFile("Tonewright/Images/chart-coded.bmp");
inline const std::string kSampleRoi = "154,100,738,506";
/// The sample itself: as a linear camera would deliver it, filled by the chart.
inline const std::string kLinearSample = sampleFile("Tonewright/Images/chart.bmp");
