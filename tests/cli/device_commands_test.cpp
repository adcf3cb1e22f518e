#include <csignal>
#include <cstdlib>

#include "tests/acquisition/camera_description.h"
#include "tests/acquisition/fake_camera.h"
#include "tests/cli/tool_test.h"

namespace {

/// The tool with the servers of an INI file in the test's folder.
class DeviceCommands : public ToolTest {
protected:
    ~DeviceCommands() override { unsetenv("ZVN_SIMULATION"); }

    void Simulate(const std::string& ini) const { setenv("ZVN_SIMULATION", Write("simulation.ini", ini).c_str(), 1); }
};

const std::string kGrabber = "[Grabber]\nkind = frame grabber\nwidth = 30\nheight = 20\nformat = RGBR 24\n";
const std::string kCamera =
    "[Camera_Link_1]\nkind = Camera Link camera\nwidth = 16\nheight = 8\nformat = mono 8\nfiles = .\n";

/// A coefficient file that passes every pixel as it is.
std::string identity() {
    std::string bytes(132, '\0');
    bytes.replace(0, 22, "CTivTonewrightDC_XForm").replace(40, 10, "CTivVector");
    const std::uint32_t one = 0x3f800000;
    for (const auto& [offset, value] : std::vector<std::pair<std::size_t, std::uint32_t>>{
             {32, 7300}, {36, 4}, {72, 100}, {76, 12}, {80, 17}, {88, one}, {108, one}, {128, one}}) {
        bytes = WithU32(bytes, offset, value);
    }
    return bytes;
}

TEST_F(DeviceCommands, DevicesListsWhatTheMachineHas) {
    Simulate("");
    EXPECT_EQ(RunTool({"devices"}).Document(), nlohmann::json::array());
    Simulate(kGrabber + kCamera);
    const ToolRun run = RunTool({"devices"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.Document(), nlohmann::json::parse(R"([
        {"name": "Grabber", "kind": "frame grabber", "acquisitionResources": 1, "acquisitionDevices": 0},
        {"name": "Camera_Link_1", "kind": "Camera Link camera", "acquisitionResources": 0, "acquisitionDevices": 1}
    ])"));
}

TEST_F(DeviceCommands, GrabSavesOneFrameOfTheFirstDeviceUnderTheNameItself) {
    Simulate(kGrabber + kCamera);
    const ToolRun run = RunTool({"grab", Path("frame.bmp")});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.Document()["device"], "Grabber");
    EXPECT_EQ(run.Document()["format"], "FormatRgb");
    CTivImage frame;
    ASSERT_TRUE(frame.Load(Path("frame.bmp"), true));
    EXPECT_EQ(frame.GetWidth(), 30);
    EXPECT_EQ(frame.GetData(29, 19).AsRgb() & 0xffffff, 0x1d1301u);
}

TEST_F(DeviceCommands, GrabNumbersSeveralFramesInTheirOrder) {
    Simulate(kGrabber + kCamera);
    const ToolRun run = RunTool({"grab", Path("f.zvk"), "--device", "Camera_Link_1", "--count", "11", "--config",
                                 Write("settings.txt", "format = RGB 32\nwidth = 24\n")});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.Document()["written"].size(), 11u);
    for (int number : {1, 2, 11}) {
        CTivImage frame;
        ASSERT_TRUE(frame.Load(Path(number < 10 ? "f-0" + std::to_string(number) + ".zvk" : "f-11.zvk"), true));
        EXPECT_EQ(frame.GetWidth(), 24);
        EXPECT_EQ(frame.GetData(0, 0).AsRgb(), static_cast<std::uint32_t>(number));
    }
}

#ifndef __SANITIZE_ADDRESS__  // whose own memory has no room under the limits
TEST_F(DeviceCommands, GrabShortOfMemoryWritesWholeFramesOrNone) {
    Simulate("[Big]\nkind = frame grabber\nwidth = 6000\nheight = 4000\nformat = RGB 32\n");
    int failed = 0;
    int done = 0;
    for (int megabytes = 100; megabytes <= 1000 && done < 2; megabytes += 20) {
        SCOPED_TRACE(megabytes);
        const ToolRun run =
            RunTool({"grab", Path("f.zvk")}, {}, "ulimit -v " + std::to_string(megabytes * 1024) + "; ulimit -c 0;");
        EXPECT_LE(run.status, 128) << "ended by a signal: " << run.err;
        if (run.status == 0) {
            ++done;
            CTivImage frame;
            ASSERT_TRUE(frame.Load(Path("f.zvk"), true));
            EXPECT_EQ(frame.GetWidth(), 6000);
            EXPECT_NE(frame.GetData(5999, 3999).AsRgb(), 0u);
            std::filesystem::remove(Path("f.zvk"));
        } else {
            ++failed;
            EXPECT_FALSE(run.err.empty());
        }
        EXPECT_THAT(Files(), testing::ElementsAre("simulation.ini"));
    }
    EXPECT_GT(failed, 2);
    EXPECT_EQ(done, 2);
}
#endif

TEST_F(DeviceCommands, GrabThatFailsTellsWhyAndLeavesNoFile) {
    const struct {
        std::string ini;
        std::vector<std::string> arguments;
        int status;
        const char* text;
    } rows[] = {
        {"", {"f.bmp"}, 1, "Configure => no acquisition device found"},
        {kGrabber, {"f.bmp", "--device", "Other"}, 1, "there is no device Other, but\n  Grabber"},
        {kGrabber + "faults = create\n", {"f.bmp"}, 1, "Configure => cannot create Acquisition object"},
        {kGrabber + "faults = trash\n", {"f.bmp", "--count", "2"}, 1, "no frame came within 1000 ms"},
        {kGrabber, {"f.png"}, 2, "is not a name that ends in .bmp, .tif, .zvk or .crc"},
        {kGrabber, {"f.bmp", "--count", "0"}, 2, "is not a number from 1 to 100000"},
    };
    for (const auto& row : rows) {
        Simulate(row.ini);
        std::vector<std::string> arguments = row.arguments;
        arguments[0] = Path(arguments[0]);
        arguments.insert(arguments.begin(), "grab");
        const ToolRun run = RunTool(arguments);
        EXPECT_EQ(run.status, row.status);
        EXPECT_THAT(run.err, testing::HasSubstr(row.text));
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(Files(), std::vector<std::string>{"simulation.ini"});
    }
}

TEST_F(DeviceCommands, GrabThatASignalEndsLeavesNoFile) {
    Simulate(kGrabber);
    for (const int signal : {SIGINT, SIGTERM}) {
        const ToolRun run =
            InterruptTool({"grab", Path("f.bmp"), "--count", "100000"}, signal, [&] { return Files().size() > 3; });
        EXPECT_EQ(run.status, -signal) << run.err;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(Files(), std::vector<std::string>{"simulation.ini"}) << signal;
    }
}

TEST_F(DeviceCommands, SendRefusesWhatCanBeNoCalibration) {
    Simulate(kCamera);
    Write("ColorCorrectionMatrix", "factory");
    const struct {
        std::size_t offset;
        std::uint32_t value;
        const char* reason;
    } cases[] = {
        {88, 0x7fc00000, "the red row of the transform has an entry that is no number"},
        {108, 0, "the green row of the transform has no weight"},
    };
    for (const auto& [offset, value, reason] : cases) {
        const ToolRun run = RunTool({"send", Write("new.ccor", WithU32(identity(), offset, value))});
        EXPECT_EQ(run.status, 1) << reason;
        EXPECT_THAT(run.err, testing::HasSubstr(reason));
        EXPECT_EQ(ReadBytes(Path("ColorCorrectionMatrix")), "factory");
    }
}

TEST_F(DeviceCommands, SendPutsACoefficientFileOnTheDevice) {
    Simulate(kCamera);
    Write("ColorCorrectionMatrix", "factory");
    const ToolRun run = RunTool({"send", Write("new.ccor", identity())});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.Document()["device"], "Camera_Link_1");
    EXPECT_EQ(ReadBytes(Path("ColorCorrectionMatrix")), identity());

    EXPECT_EQ(RunTool({"send", Write("short.ccor", identity().substr(0, 131))}).status, 1);
    EXPECT_EQ(ReadBytes(Path("ColorCorrectionMatrix")), identity());
    Simulate(kCamera + "faults = write\n");
    const ToolRun refused = RunTool({"send", Path("new.ccor")});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.err, testing::HasSubstr("Cannot write file to device."));
}

TEST_F(DeviceCommands, GrabAveragesAndCorrectsWithDarkAndFlat) {
    Simulate(kCamera);
    const std::string config = Write("settings.txt", "format = RGB 32\nwidth = 24\n");
    // Red is x, green is y, blue the frame's number: 1 to 4 here, of which the mean is 2.5.
    const ToolRun run = RunTool({"grab", Path("mean.zvk"), "--config", config, "--average", "4"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.Document()["average"], 4);
    CTivImage mean;
    ASSERT_TRUE(mean.Load(Path("mean.zvk"), true));
    EXPECT_EQ(mean.GetData(20, 3).AsRgb(), 0x140302u);

    CTivImage dark(24, 8, CTivData::FormatRgb, nullptr, true), flat = dark;
    for (int y = 0; y < 8; ++y) {
        for (int x = 0; x < 24; ++x) {
            dark.SetData(x, y, CTivData::Rgb(4, 0, 1));
            flat.SetData(x, y, CTivData::Rgb(x < 12 ? 50 : 150, 100, 100));
        }
    }
    const std::vector<std::string> corrected = {"grab",     Path("out.zvk"),
                                                "--config", config,
                                                "--dark",   WriteImage("dark.bmp", dark),
                                                "--flat",   WriteImage("flat.bmp", flat)};
    const ToolRun second = RunTool(corrected);
    ASSERT_EQ(second.status, 0) << second.err;
    CTivImage picture;
    ASSERT_TRUE(picture.Load(Path("out.zvk"), true));
    EXPECT_EQ(picture.GetData(8, 3).AsRgb(), 0x080300u);   // (8 - 4) x 100 / 50
    EXPECT_EQ(picture.GetData(22, 3).AsRgb(), 0x0c0300u);  // (22 - 4) x 100 / 150
    const ToolRun other = RunTool({"grab", Path("gray.zvk"), "--dark", Path("dark.bmp")});
    EXPECT_EQ(other.status, 1);
    EXPECT_THAT(other.err,
                testing::HasSubstr("the dark frame is FormatRgb of 24 x 8, the frames are FormatUByte of 16 x 8"));
    EXPECT_EQ(RunTool({"grab", Path("gray.zvk"), "--average", "0"}).status, 2);
}

TEST_F(DeviceCommands, SendKeepsABackupTellsItsWayAndReceiveReadsBack) {
    Simulate(kCamera);
    Write("ColorCorrectionMatrix", "factory");
    const std::string file = Write("new.ccor", identity());
    const ToolRun run = RunTool({"send", file, "--backup", Path("before.ccor")});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.Document()["way"], "file");
    EXPECT_EQ(run.Document()["written"], true);
    EXPECT_EQ(run.Document()["verified"], true);
    EXPECT_EQ(ReadBytes(Path("before.ccor")), "factory");

    const ToolRun received = RunTool({"receive", Path("now.ccor")});
    ASSERT_EQ(received.status, 0) << received.err;
    EXPECT_EQ(received.Document()["way"], "file");
    EXPECT_EQ(ReadBytes(Path("now.ccor")), identity());

    const struct {
        std::string ini;
        std::vector<std::string> arguments;
        int status;
        const char* text;
    } rows[] = {
        {kCamera, {"send", file, "--way", "features"}, 1, "The device has no color transformation features"},
        {kCamera, {"send", file, "--way", "filter"}, 2, "is not auto, file or features"},
        {kCamera + "faults = read\n", {"send", file, "--backup", Path("b.ccor")}, 1, "Cannot read file from device."},
        {kCamera + "faults = read\n", {"receive", Path("b.ccor")}, 1, "Cannot read file from device."},
        {kGrabber + kCamera, {"send", file, "--device", "Grabber", "--way", "features"}, 1, "The device has no color"},
    };
    Write("ColorCorrectionMatrix", "factory");
    for (const auto& row : rows) {
        Simulate(row.ini);
        const ToolRun refused = RunTool(row.arguments);
        EXPECT_EQ(refused.status, row.status);
        EXPECT_THAT(refused.err, testing::HasSubstr(row.text));
        EXPECT_EQ(refused.out, "");
        EXPECT_EQ(ReadBytes(Path("ColorCorrectionMatrix")), "factory");
    }
    EXPECT_EQ(ReadBytes(Path("b.ccor")), "");
    Simulate(kCamera);
    std::filesystem::create_hard_link(file, Path("same.ccor"));
    for (const char* backup : {"new.ccor", "same.ccor"}) {
        const ToolRun refused = RunTool({"send", file, "--backup", Path(backup)});
        EXPECT_EQ(refused.status, 1) << backup;
        EXPECT_THAT(refused.err, testing::HasSubstr("is to be sent, so it cannot take the backup"));
        EXPECT_EQ(ReadBytes(file), identity());
        EXPECT_EQ(ReadBytes(Path("ColorCorrectionMatrix")), "factory");
    }
    Simulate("[Grabber]\nkind = frame grabber\nfiles = .\n[Other]\nkind = other\n");
    const ToolRun filter = RunTool({"send", file, "--device", "Grabber"});
    ASSERT_EQ(filter.status, 0) << filter.err;
    EXPECT_EQ(filter.Document()["way"], "filter");
    EXPECT_EQ(filter.Document()["verified"], false);
}

TEST_F(DeviceCommands, AWrongConfigurationIsToldWithItsLine) {
    Simulate(kCamera);
    const std::string config = Write("wrong.txt", "width = 8\nheigth = 9\n");
    const ToolRun run = RunTool({"grab", Path("f.bmp"), "--config", config});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, testing::HasSubstr("Configure => cannot create Acquisition object\n" + config + ", line 2"));
    EXPECT_EQ(RunTool({"devices", "--check", "Camera_Link_1"}).Document(),
              nlohmann::json::parse(R"({"name": "Camera_Link_1", "kind": "Camera Link camera", "notes": []})"));
    EXPECT_THAT(RunTool({"devices", "--check", "Other"}).err, testing::HasSubstr("there is no device Other, but"));
}

TEST_F(DeviceCommands, ACameraIsCheckedAndTakesCoefficientsThroughItsFeatures) {
#ifndef TONEWRIGHT_HAVE_ARAVIS
    GTEST_SKIP() << "built without the library for GenICam cameras";
#endif
    if (FakeCamera::FindTool().empty()) GTEST_SKIP() << "aravis-tools is not installed";
    const FakeCamera camera(Write(
        "camera.xml",
        CameraDescription().ColorTransformation().Choice("GainAuto", 0x8000, {{"Off", 0}, {"Continuous", 1}}).Xml()));
    if (!camera.IsRunning()) GTEST_SKIP() << "another program has the fake camera's port";
    const std::string name = camera.Name();
    const std::string file = Write("new.ccor", identity());
    const ToolRun sent = RunTool({"send", file, "--device", name, "--backup", Path("before.ccor")});
    ASSERT_EQ(sent.status, 0) << sent.err;
    EXPECT_EQ(sent.Document()["way"], "features");
    EXPECT_EQ(sent.Document()["verified"], true);
    EXPECT_EQ(ReadBytes(Path("before.ccor")).size(), 132u);
    const ToolRun received = RunTool({"receive", Path("after.ccor"), "--device", name});
    ASSERT_EQ(received.status, 0) << received.err;
    EXPECT_EQ(ReadBytes(Path("after.ccor")), identity());

    const std::string config = Write("auto.txt", "GainAuto = Continuous\n");
    const ToolRun checked = RunTool({"devices", "--check", name, "--config", config});
    ASSERT_EQ(checked.status, 0) << checked.err;
    const nlohmann::json notes = checked.Document()["notes"];
    ASSERT_EQ(notes.size(), 2u);
    EXPECT_EQ(notes[0]["line"], "GainAuto = Off");
    EXPECT_EQ(notes[0]["value"], "Continuous");
    EXPECT_EQ(notes[1]["feature"], "ColorTransformationEnable");
    EXPECT_THAT(checked.err, testing::HasSubstr("note: " + notes[1]["text"].get<std::string>()));

    const std::string seven = WithU32(identity(), 36, 7);
    EXPECT_EQ(RunTool({"send", Write("seven.ccor", seven), "--device", name}).status, 1);
    EXPECT_EQ(RunTool({"send", file, "--device", name, "--way", "file"}).status, 1);
    const ToolRun strong =
        RunTool({"send", Write("strong.ccor", WithU32(identity(), 88, 0x43c80000)), "--device", name});
    EXPECT_EQ(strong.status, 1);
    EXPECT_THAT(strong.err, testing::HasSubstr("Gain00 would be 400, outside the camera's -256 to 256"));
    EXPECT_EQ(RunTool({"receive", Path("still.ccor"), "--device", name}).status, 0);
    EXPECT_EQ(ReadBytes(Path("still.ccor")), identity());
}

}  // namespace
