#include <gmock/gmock.h>

#include <sstream>

#include "acquisition/zvn/ZvnManager.h"
#include "tests/acquisition/fake_camera.h"
#include "tests/acquisition/simulation.h"

namespace {

/// An integer register of the fake camera's memory.
std::string integer(const std::string& name, int address) {
    std::ostringstream xml;
    xml << "<IntReg Name=\"" << name << "\"><Address>" << address << "</Address><Length>4</Length>"
        << "<AccessMode>RW</AccessMode><pPort>Device</pPort><Sign>Unsigned</Sign><Endianess>BigEndian</Endianess>"
        << "</IntReg>\n";
    return xml.str();
}

std::string choice(const std::string& name, int address, const std::vector<std::pair<std::string, long>>& entries) {
    std::ostringstream xml;
    xml << "<Enumeration Name=\"" << name << "\">";
    for (const auto& [entry, value] : entries) {
        xml << "<EnumEntry Name=\"" << entry << "\"><Value>" << value << "</Value></EnumEntry>";
    }
    xml << "<pValue>" << name << "Register</pValue></Enumeration>\n" << integer(name + "Register", address);
    return xml.str();
}

std::string command(const std::string& name, int value, const std::string& registerName) {
    return "<Command Name=\"" + name + "\"><pValue>" + registerName + "</pValue><CommandValue>" +
           std::to_string(value) + "</CommandValue></Command>\n";
}

/// A camera that holds one file, accessed 48 bytes at a time. Its memory serves as the file; each operation "succeeds"
/// unless the configuration sets its status to something else.
std::string cameraWithAFile() {
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
           "<RegisterDescription ModelName=\"Fake\" VendorName=\"Test\" StandardNameSpace=\"None\" "
           "SchemaMajorVersion=\"1\" SchemaMinorVersion=\"0\" SchemaSubMinorVersion=\"1\" MajorVersion=\"1\" "
           "MinorVersion=\"0\" SubMinorVersion=\"0\" ToolTip=\"\" ProductGuid=\"0\" VersionGuid=\"0\" "
           "xmlns=\"http://www.genicam.org/GenApi/Version_1_0\">\n"
           "<Port Name=\"Device\"/>\n<Category Name=\"Root\"></Category>\n" +
           integer("Width", 0x100) + integer("Height", 0x104) + integer("OffsetX", 0x130) + integer("OffsetY", 0x134) +
           choice("PixelFormat", 0x128, {{"Mono8", 0x01080001}}) +
           "<IntSwissKnife Name=\"PayloadSize\"><pVariable Name=\"W\">Width</pVariable>"
           "<pVariable Name=\"H\">Height</pVariable><Formula>W * H</Formula></IntSwissKnife>\n" +
           integer("Acquisition", 0x124) + command("AcquisitionStart", 1, "Acquisition") +
           command("AcquisitionStop", 0, "Acquisition") +
           choice("FileSelector", 0x8000, {{"UserFile", 7}, {"ColorCorrectionMatrix", 9}}) +
           choice("FileOpenMode", 0x8004, {{"Read", 0}, {"Write", 1}}) +
           choice("FileOperationSelector", 0x8008, {{"Open", 0}, {"Close", 1}, {"Read", 2}, {"Write", 3}}) +
           integer("Execution", 0x800c) + command("FileOperationExecute", 1, "Execution") +
           choice("FileOperationStatus", 0x8010, {{"Success", 0}, {"Failure", 1}}) +
           integer("FileAccessLength", 0x8014) + integer("FileOperationResult", 0x8014) +
           integer("FileAccessOffset", 0x8018) + integer("FileSize", 0x801c) +
           "<Register Name=\"FileAccessBuffer\"><Address>0x9000</Address><pAddress>FileAccessOffset</pAddress>"
           "<Length>48</Length><AccessMode>RW</AccessMode><pPort>Device</pPort></Register>\n"
           "</RegisterDescription>\n";
}

class Camera : public testing::Test {
protected:
    void SetUp() override {
#ifndef TONEWRIGHT_HAVE_ARAVIS
        GTEST_SKIP() << "built without the library for GenICam cameras";
#endif
        if (FakeCamera::FindTool().empty()) GTEST_SKIP() << "aravis-tools is not installed";
    }

    static bool IsFound(const FakeCamera& camera) {
        for (int looks = 0; looks < 3; ++looks) {
            if (looks > 0)
                std::this_thread::sleep_for(std::chrono::milliseconds(5100));  // what was found counts so long
            if (ZvnManager::GetResourceCount(ZvnLocation(camera.Name()), 8) == 1) return true;
        }
        return false;
    }

    /// Folder and dialog of the simulation, but real hardware.
    struct Answers : Simulation {
        Answers() : Simulation("") { unsetenv("ZVN_SIMULATION"); }
    } answers_;
};

TEST_F(Camera, DeliversFramesAsItsConfigurationSays) {
    const FakeCamera camera;
    if (!camera.IsRunning()) GTEST_SKIP() << "another program has the fake camera's port";
    ASSERT_TRUE(IsFound(camera));
    RecordedSession recorded;
    answers_.Pick(camera.Name());
    ASSERT_TRUE(recorded.session.Configure()) << LastError();
    EXPECT_EQ(recorded.session.GetDeviceKind(), DeviceKindOther);
    for (int i = 0; i < 5; ++i) EXPECT_TRUE(recorded.session.Snap());
    ASSERT_EQ(recorded.WaitForFrames(5).size(), 5u);
    EXPECT_EQ(recorded.session.GetImage(-1)->GetFormat(), CTivData::FormatUByte);
    EXPECT_EQ(recorded.session.GetImage(-1)->GetWidth(), 512);
    EXPECT_EQ(recorded.session.GetImage(-1), recorded.session.GetImage(0));

    answers_.Write("color.txt", "# features\nWidth = 320\nHeight = 200\nPixelFormat = RGB8\n");
    answers_.Pick(camera.Name(), answers_.Path("color.txt"));
    ASSERT_TRUE(recorded.session.Configure()) << LastError();
    recorded.session.Snap();
    ASSERT_EQ(recorded.WaitForFrames(6).size(), 6u);
    const CTivImage& image = *recorded.session.GetImage(-1);
    EXPECT_EQ(image.GetFormat(), CTivData::FormatRgb);
    EXPECT_EQ(image.GetWidth(), 320);
    EXPECT_EQ(image.GetHeight(), 200);
    EXPECT_NE(image.GetData(0, 0).AsRgb(), image.GetData(160, 100).AsRgb());

    answers_.Write("bayer.txt", "Width = 321\nHeight = 199\nPixelFormat = BayerRG8\n");
    answers_.Write("wrong.txt", "Wodth = 320\n");
    answers_.Pick(camera.Name(), answers_.Path("bayer.txt"));
    ASSERT_TRUE(recorded.session.Configure()) << LastError();
    recorded.session.Snap();
    ASSERT_EQ(recorded.WaitForFrames(7).size(), 7u);
    EXPECT_EQ(recorded.session.GetImage(-1)->GetFormat(), CTivData::FormatRgb);
    EXPECT_EQ(recorded.session.GetImage(-1)->GetWidth(), 321);

    answers_.Pick(camera.Name(), answers_.Path("wrong.txt"));
    EXPECT_FALSE(recorded.session.Configure());
    EXPECT_EQ(LastError(), "Configure => cannot create Acquisition object");
    EXPECT_TRUE(recorded.session.Snap());  // on the setup that is back
    EXPECT_EQ(recorded.WaitForFrames(8).size(), 8u);
    EXPECT_FALSE(recorded.session.TransferFile(answers_.Path("up.ccor").c_str(), true));
}

TEST_F(Camera, UnpluggingIsToldAtTheNextReconnectAndPluggingInMends) {
    FakeCamera camera;
    if (!camera.IsRunning()) GTEST_SKIP() << "another program has the fake camera's port";
    ASSERT_TRUE(IsFound(camera));
    auto recorded = std::make_unique<RecordedSession>();
    answers_.Pick(camera.Name());
    ASSERT_TRUE(recorded->session.Configure()) << LastError();
    camera.Unplug();
    CAbortDlg::SetWaitFor(nullptr);
    auto start = Clock::now();
    EXPECT_TRUE(recorded->session.Snap());
    EXPECT_LT(millisecondsSince(start), 1600);
    Simulation::WaitAtMost(10'000);
    EXPECT_TRUE(recorded->GetFrames().empty());
    EXPECT_FALSE(recorded->session.Reconnect());
    EXPECT_EQ(LastError(), "Configure => cannot create Acquisition object");
    camera.Plug();
    EXPECT_TRUE(recorded->session.Reconnect()) << LastError();
    recorded->session.Snap();
    EXPECT_EQ(recorded->WaitForFrames(1).size(), 1u);
    camera.Unplug();
    start = Clock::now();
    recorded.reset();
    EXPECT_LT(millisecondsSince(start), 1400);
}

TEST_F(Camera, TakesAndGivesFilesInPieces) {
    answers_.Write("camera.xml", cameraWithAFile());
    const FakeCamera camera(answers_.Path("camera.xml"));
    if (!camera.IsRunning()) GTEST_SKIP() << "another program has the fake camera's port";
    ASSERT_TRUE(IsFound(camera));
    std::string content;
    for (int i = 0; i < 132; ++i) content += static_cast<char>(i * 37);
    answers_.Write("up.ccor", content);
    answers_.Write("size.txt", "FileSize = 132\n");
    answers_.Write("failing.txt", "FileOperationStatus = Failure\n");
    RecordedSession recorded;
    answers_.Pick(camera.Name(), answers_.Path("size.txt"));
    ASSERT_TRUE(recorded.session.Configure()) << LastError();
    EXPECT_TRUE(recorded.session.TransferFile(answers_.Path("up.ccor").c_str(), true)) << LastError();
    EXPECT_TRUE(recorded.session.TransferFile(answers_.Path("down.ccor").c_str(), false)) << LastError();
    EXPECT_EQ(answers_.Read("down.ccor"), content);

    answers_.Pick(camera.Name(), answers_.Path("failing.txt"));
    ASSERT_TRUE(recorded.session.Configure()) << LastError();
    EXPECT_FALSE(recorded.session.TransferFile(answers_.Path("up.ccor").c_str(), true));
    EXPECT_EQ(LastError(), "Cannot write file to device.");
    EXPECT_FALSE(recorded.session.TransferFile(answers_.Path("down.ccor").c_str(), false));
    EXPECT_EQ(LastError(), "Cannot read file from device.");
}

}  // namespace
