#pragma once

#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "foundation/CTivImage.h"
#include "tests/support/library.h"

/// What a run of the real program gave.
struct ToolRun {
    int status = -1;  ///< the exit status; -1: ended by a signal, or by the time limit of the runner
    std::string out;
    std::string err;
    long peakKilobytes = 0;

    nlohmann::json Document() const { return nlohmann::json::parse(out); }
};

/// Runs `tonewright` with these arguments. What takes longer than half a minute is ended.
ToolRun RunTool(const std::vector<std::string>& arguments);

/// Gives each test a folder of its own that is gone afterwards.
class ToolTest : public testing::Test {
protected:
    ToolTest();
    ~ToolTest() override;

    std::string Path(const std::string& name) const { return (folder_ / name).native(); }
    /// Everything in the folder, hidden files included, sorted.
    std::vector<std::string> Files() const;
    /// Writes a file. @return its path
    std::string Write(const std::string& name, const std::string& bytes) const;
    std::string WriteImage(const std::string& name, const CTivImage& image, int fileFormat) const;
    static std::string ReadBytes(const std::string& path);

private:
    std::filesystem::path folder_;
};

/// Puts a little-endian integer over a file's bytes.
std::string WithU32(std::string bytes, std::size_t offset, std::uint32_t value);

inline const std::string kSample = TONEWRIGHT_SAMPLES "/Tonewright/Images/chart.bmp";
inline const std::string kSampleRoi = "154,100,738,506";
