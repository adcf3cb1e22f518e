#include <gmock/gmock.h>

#include "acquisition/zvn/ZvnManager.h"
#include "tests/acquisition/simulation.h"
#include "tests/support/places.h"

namespace {

constexpr int kBmp = 5;  // of CTivImage::Save

/// Servers of one wrong file: none, and why.
std::string complaintAbout(const std::string& ini) {
    Simulation simulation(ini);
    testing::internal::CaptureStderr();
    EXPECT_EQ(ZvnManager::GetServerCount(), 0);
    return testing::internal::GetCapturedStderr();
}

TEST(SimulationFile, WhatIsWrongIsToldWithItsLineAndLeavesNoServer) {
    const struct {
        const char* ini;
        const char* complaint;
    } rows[] = {
        {"kind = other\n", "line 1: a setting before the first section"},
        {"[A]\nkind = toaster\n", "line 2: unknown kind \"toaster\""},
        {"[A]\n\nfaults = create, thirst\n", "line 3: unknown fault \"thirst\""},
        {"[A]\nwidth = 12x\n", "line 2: width is not a number from 1 to 2147483647"},
        {"[A]\nwidth = 0\n", "line 2: width is not a number"},
        {"[A]\nnoise = 256\n", "line 2: noise is not a number from 0 to 255"},
        {"[A]\nformat = 0x61080000\n", "line 2: unknown format \"0x61080000\""},
        {"[A]\ndepth = 3\n", "line 2: unknown setting \"depth\""},
        {"[A]\nnonsense\n", "line 2: neither a section nor"},
        {"[A name that is longer than 29 bytes]\nkind = other\n", "line 2: the section's name is longer"},
        {"[A]\nkind = Camera Link camera\n", "[A] the name of a Camera Link camera holds \"Camera_Link\""},
        {"[Camera_Link]\nkind = other\n", "[Camera_Link] the name of a Camera Link camera"},
    };
    for (const auto& row : rows) EXPECT_THAT(complaintAbout(row.ini), testing::HasSubstr(row.complaint)) << row.ini;
}

TEST(SimulationFile, ServersKeepTheirOrderNamesAndResources) {
    Simulation simulation("[Zeta]\nkind = frame grabber\n[Alpha]\nkind = other\n");
    ASSERT_EQ(ZvnManager::GetServerCount(), 2);
    char name[30];
    EXPECT_TRUE(ZvnManager::GetServerName(0, name, sizeof name));
    EXPECT_STREQ(name, "Zeta");
    EXPECT_TRUE(ZvnManager::GetServerName(ZvnLocation("Alpha"), name, 4));
    EXPECT_STREQ(name, "Alp");
    EXPECT_FALSE(ZvnManager::GetServerName(2, name, sizeof name));
    EXPECT_STREQ(name, "");
    EXPECT_EQ(ZvnManager::GetResourceCount(0, 0), 1);
    EXPECT_EQ(ZvnManager::GetResourceCount(0, 8), 0);
    EXPECT_EQ(ZvnManager::GetResourceCount(ZvnLocation("Alpha"), 8), 1);
    EXPECT_EQ(ZvnManager::GetResourceCount(ZvnLocation("Alpha"), 3), 0);
    EXPECT_EQ(ZvnManager::GetResourceCount(-1, 0), 0);
}

TEST(SimulatedFrames, ShowTheFoldersPicturesInTurnStretchedToTheFrame) {
    Simulation simulation("[GigE]\nkind = other\npictures = pictures\nwidth = 4\n");
    simulation.Write("pictures/notes.txt", "no picture");
    const CTivData left = CTivData::Rgb(10, 20, 30), right = CTivData::Rgb(200, 100, 50);
    CTivImage picture(2, 3, CTivData::FormatRgb, nullptr, true);
    for (int y = 0; y < 3; ++y) picture.SetData(1, y, right);
    ASSERT_TRUE(picture.Save(simulation.Path("pictures/b.BMP"), kBmp));
    for (int y = 0; y < 3; ++y) picture.SetData(0, y, left);
    ASSERT_TRUE(picture.Save(simulation.Path("pictures/c.bmp"), kBmp));
    simulation.Pick("GigE");
    RecordedSession recorded;
    ASSERT_TRUE(recorded.session.Configure());
    CTivImage& image = *recorded.session.GetImage(0);
    EXPECT_EQ(image.GetWidth(), 4);
    EXPECT_EQ(image.GetHeight(), 3);  // of the first picture
    for (int i = 0; i < 3; ++i) recorded.session.Snap();
    const std::uint32_t shown = static_cast<std::uint32_t>(left.GetPayload());
    EXPECT_EQ(recorded.WaitForFrames(3), (std::vector<RecordedSession::Frame>{{0, 0}, {1, shown}, {2, 0}}));
    EXPECT_EQ(image.GetData(1, 2).AsRgb(), 0u);
    EXPECT_EQ(image.GetData(2, 2).AsRgb(), right.GetPayload());
}

TEST(SimulatedFrames, NoiseStaysWithinItsBound) {
    Simulation simulation("[GigE]\nkind = other\nwidth = 100\nheight = 100\nnoise = 3\n");
    simulation.Pick("GigE");
    RecordedSession recorded;
    ASSERT_TRUE(recorded.session.Configure());
    recorded.session.Snap();
    recorded.WaitForFrames(1);
    int largest = 0;
    for (int i = 0; i < 10'000; ++i) {
        const auto red = static_cast<int>(recorded.session.GetImage(0)->GetData(i % 100, i / 100).AsRgb() >> 16);
        largest = std::max(largest, std::abs(red - i % 100));
    }
    EXPECT_EQ(largest, 3);
}

TEST(SimulatedFrames, AFolderWithoutAPictureThatLoadsDoesNotOpen) {
    Simulation simulation("[GigE]\nkind = other\npictures = pictures\n");
    simulation.Pick("GigE");
    RecordedSession recorded;
    EXPECT_FALSE(recorded.session.Configure());
    simulation.Write("pictures/broken.bmp", "BM and no more");
    EXPECT_FALSE(recorded.session.Configure());
    EXPECT_EQ(LastError(), "Configure => cannot create Acquisition object");
}

TEST(SampleSimulation, AFrameGrabberAndACameraDeliverTheSampleChart) {
    Simulation simulation("");
    setenv("ZVN_SIMULATION", sampleFile("simulation.ini").c_str(), 1);
    ASSERT_EQ(ZvnManager::GetServerCount(), 2);
    std::vector<int> kinds;
    for (int server = 0; server < 2; ++server) {
        char name[30];
        ZvnManager::GetServerName(server, name, sizeof name);
        simulation.Pick(name);
        RecordedSession recorded;
        ASSERT_TRUE(recorded.session.Configure()) << LastError();
        kinds.push_back(recorded.session.GetDeviceKind());
        recorded.session.Snap();
        EXPECT_EQ(recorded.WaitForFrames(1).size(), 1u);
        EXPECT_EQ(recorded.session.GetImage(-1)->GetWidth(), 608);
        EXPECT_EQ(recorded.session.GetImage(-1)->GetFormat(), CTivData::FormatRgb);
        EXPECT_TRUE(recorded.session.TransferFile(simulation.Path("backup.ccor").c_str(), false)) << LastError();
        EXPECT_EQ(simulation.Read("backup.ccor").size(), 132u);
    }
    EXPECT_EQ(kinds, (std::vector<int>{DeviceKindFrameGrabber, DeviceKindCameraLink}));
}

}  // namespace
