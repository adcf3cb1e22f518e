#include <csignal>
#include <cstdlib>

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

}  // namespace
