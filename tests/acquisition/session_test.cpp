#include <gmock/gmock.h>

#include <atomic>

#include "tests/acquisition/simulation.h"
#include "tests/support/own_clock.h"
#include "tests/support/places.h"

namespace {

const std::string kGrabber = "[Grabber]\nkind = frame grabber\nwidth = 40\nheight = 30\n";
const std::string kTwoServers = kGrabber + "[Bad]\nkind = other\nwidth = 16\nheight = 8\n";

/// One way to fail in each step of building the chain.
struct Failure {
    const char* settings;
    const char* text;
};
const Failure kFailures[] = {
    {"faults = create", "Configure => cannot create Acquisition object"},
    {"faults = buffer", "Configure => cannot create Buffer object"},
    {"width = 2147483647\nheight = 2147483647", "Configure => cannot create Buffer object"},
    {"faults = transfer", "Configure => cannot create Transfer object"},
    {"format = 0x01080900",
     "Configure => input data format not supported (must be monochrome 1/8/16-bit or RGB 24/32-bit or RGBR 24-bit)"},
    {"format = RGB 24\nfaults = conversion", "Configure => cannot create Buffer object for conversion"},
    {"format = mono 1\nwidth = 12", "Configure => cannot obtain Zelvan buffer address"},
};

void expectNoObjects(CTonewrightAcq& session) {
    for (int i = 0; i < session.GetBufferCount(); ++i) EXPECT_FALSE(session.GetImage(i)->IsAllocated());
    EXPECT_FALSE(session.Snap());
    EXPECT_EQ(LastError(), "Snap => not initialized");
}

void expectWorks(RecordedSession& recorded, int width) {
    const std::size_t before = recorded.GetFrames().size();
    EXPECT_TRUE(recorded.session.Snap());
    EXPECT_EQ(recorded.WaitForFrames(before + 1).size(), before + 1);
    EXPECT_EQ(recorded.session.GetImage(-1)->GetWidth(), width);
}

TEST(Configure, EachFailingStepTellsItsTextAndLeavesNothing) {
    for (const auto& failure : kFailures) {
        SCOPED_TRACE(failure.settings);
        Simulation simulation(kTwoServers + failure.settings);
        simulation.Pick("Bad");
        RecordedSession recorded;
        EXPECT_FALSE(recorded.session.Configure());
        EXPECT_EQ(LastError(), failure.text);
        expectNoObjects(recorded.session);
    }
}

TEST(Configure, AfterEachFailingStepTheEarlierSetupIsBack) {
    for (const auto& failure : kFailures) {
        SCOPED_TRACE(failure.settings);
        Simulation simulation(kTwoServers + failure.settings);
        simulation.Write("narrow.txt", "width = 24\n");
        simulation.Pick("Grabber", simulation.Path("narrow.txt"));
        RecordedSession recorded;
        ASSERT_TRUE(recorded.session.Configure());
        simulation.Pick("Bad");
        EXPECT_FALSE(recorded.session.Configure());
        EXPECT_EQ(LastError(), failure.text);
        EXPECT_EQ(recorded.session.GetDeviceKind(), DeviceKindFrameGrabber);
        expectWorks(recorded, 24);
        EXPECT_TRUE(recorded.session.Reconnect());
        expectWorks(recorded, 24);
    }
}

TEST(Reconnect, EachFailingStepTellsItsTextAndTheNextTryConnectsAgain) {
    for (const auto& failure : kFailures) {
        SCOPED_TRACE(failure.settings);
        Simulation simulation(kTwoServers);
        simulation.Pick("Bad");
        RecordedSession recorded;
        ASSERT_TRUE(recorded.session.Configure());
        simulation.Describe(kTwoServers + failure.settings);
        EXPECT_FALSE(recorded.session.Reconnect());
        EXPECT_EQ(LastError(), failure.text);
        expectNoObjects(recorded.session);
        simulation.Describe(kTwoServers);
        EXPECT_TRUE(recorded.session.Reconnect());
        expectWorks(recorded, 16);
    }
}

TEST(Configure, WhereBothNewAndEarlierSetupFailTheEarlierOneIsTriedAtTheNextReconnect) {
    Simulation simulation(kTwoServers);
    simulation.Pick("Grabber");
    RecordedSession recorded;
    ASSERT_TRUE(recorded.session.Configure());
    simulation.Describe(kGrabber + "faults = create\n[Bad]\nkind = other\nfaults = buffer\n");
    simulation.Pick("Bad");
    EXPECT_FALSE(recorded.session.Configure());
    EXPECT_EQ(LastError(), "Configure => cannot create Acquisition object");
    expectNoObjects(recorded.session);
    simulation.Describe(kGrabber);
    EXPECT_TRUE(recorded.session.Reconnect());
    expectWorks(recorded, 40);
}

TEST(Configure, WithoutAnyServerNoDialogIsShown) {
    Simulation simulation("");
    simulation.Pick("Grabber");
    RecordedSession recorded;
    EXPECT_FALSE(recorded.session.Configure());
    EXPECT_EQ(LastError(), "Configure => no acquisition device found");
    EXPECT_EQ(simulation.questions, 0);
}

TEST(Configure, CancellingReportsNothingAndChangesNothing) {
    Simulation simulation(kGrabber);
    RecordedSession recorded;
    EXPECT_FALSE(recorded.session.Configure());
    EXPECT_EQ(LastError(), "");
    EXPECT_EQ(simulation.questions, 1);
    EXPECT_EQ(recorded.session.GetDeviceKind(), DeviceKindNone);
}

TEST(Configure, AServerWithoutResourcesIsRefusedAndWhatWorkedGoesOn) {
    Simulation simulation(kGrabber);
    simulation.Pick("Grabber");
    RecordedSession recorded;
    ASSERT_TRUE(recorded.session.Configure());
    simulation.Pick("Gone");
    EXPECT_FALSE(recorded.session.Configure());
    EXPECT_EQ(LastError(), "Configure => unknown server category");
    EXPECT_EQ(recorded.session.GetDeviceKind(), DeviceKindNone);
    expectWorks(recorded, 40);
}

TEST(Configure, TheDeviceKindFollowsResourceAndName) {
    Simulation simulation(
        "[Grabber]\nkind=frame grabber\n[My_Camera_Link_1]\nkind=Camera Link camera\n[GigE]\nkind=other\n");
    RecordedSession recorded;
    for (const auto& [server, kind] :
         std::vector<std::pair<std::string, int>>{{"Grabber", DeviceKindFrameGrabber},
                                                  {"My_Camera_Link_1", DeviceKindCameraLink},
                                                  {"GigE", DeviceKindOther}}) {
        simulation.Pick(server);
        EXPECT_TRUE(recorded.session.Configure());
        EXPECT_EQ(recorded.session.GetDeviceKind(), kind) << server;
    }
}

TEST(Configure, AConfigurationFileThatIsWrongDoesNotOpenTheDevice) {
    Simulation simulation(kGrabber);
    RecordedSession recorded;
    simulation.Write("wrong.txt", "wodth = 3\n");
    for (const std::string file : {"wrong.txt", "missing.txt"}) {
        simulation.Pick("Grabber", simulation.Path(file));
        EXPECT_FALSE(recorded.session.Configure());
        EXPECT_EQ(LastError(), "Configure => cannot create Acquisition object");
    }
}

TEST(Reconnect, AConfigurationFileWithALongPathStaysTheSetups) {
    Simulation simulation(kGrabber);
    const std::string file = std::string(130, 'f') + "/" + std::string(140, 'n') + ".txt";
    simulation.Write(file, "width = 24\n");
    simulation.Pick("Grabber", simulation.Path(file));
    RecordedSession recorded;
    ASSERT_TRUE(recorded.session.Configure());
    expectWorks(recorded, 24);
    EXPECT_TRUE(recorded.session.Reconnect()) << LastError();
    expectWorks(recorded, 24);
}

TEST(Snap, WithoutASetupIsRefused) {
    Simulation simulation(kGrabber);
    RecordedSession recorded;
    expectNoObjects(recorded.session);
}

/// Until it opens, the second of a snap takes no time and a late frame doesn't come.
class LateClock : public OwnClock {
public:
    bool Wait(std::condition_variable& changed, std::unique_lock<std::mutex>& held, Duration time,
              const std::function<bool()>& until) override {
        if (isOpen_ || time < Duration(1000)) return ZvnClock::Wait(changed, held, time, until);
        asked.push_back(time);
        return until();
    }
    void Sleep(Duration) override { gate_.Pass(); }
    void Open() {
        isOpen_ = true;
        gate_.Open();
    }
    std::vector<Duration> asked;

private:
    std::atomic<bool> isOpen_ = false;
    Gate gate_;
};

TEST(Snap, AFrameThatComesTooLateIsNoFailureAndNeverShows) {
    Simulation simulation(kGrabber);
    simulation.Pick("Grabber");
    RecordedSession recorded;
    ASSERT_TRUE(recorded.session.Configure());
    expectWorks(recorded, 40);
    simulation.Describe(kGrabber + "faults = late frame\n");
    ASSERT_TRUE(recorded.session.Reconnect());
    CAbortDlg::SetWaitFor(nullptr);  // the session's own second
    LateClock clock;
    EXPECT_TRUE(recorded.session.Snap());
    EXPECT_THAT(clock.asked, testing::ElementsAre(ZvnClock::Duration(1000)));
    clock.Open();
    EXPECT_EQ(recorded.session.GetImage(-1)->GetData(0, 0).AsRgb(), 1u);  // the picture from before
    EXPECT_EQ(recorded.GetFrames().size(), 1u);
    simulation.Describe(kGrabber);
    ASSERT_TRUE(recorded.session.Reconnect());
    expectWorks(recorded, 40);
}

TEST(Snap, AnAbortedWaitEndsTheTransferAtOnce) {
    Simulation simulation(kGrabber + "faults = no frame\n");
    simulation.Pick("Grabber");
    RecordedSession recorded;
    ASSERT_TRUE(recorded.session.Configure());
    Simulation::WaitAtMost(5);
    WatchedClock clock;
    for (int i = 0; i < 5; ++i) EXPECT_TRUE(recorded.session.Snap());
    EXPECT_EQ(clock.runOut, 5) << "those for the frames, and no one for the transfer's end";
    EXPECT_TRUE(recorded.GetFrames().empty());
}

TEST(Reconnect, KeepsThePictureInTheCurrentImage) {
    Simulation simulation(kGrabber);
    simulation.Pick("Grabber");
    RecordedSession recorded;
    ASSERT_TRUE(recorded.session.Configure());
    for (int i = 0; i < 3; ++i) recorded.session.Snap();
    recorded.WaitForFrames(3);
    EXPECT_EQ(recorded.session.GetImage(-1)->GetData(7, 9).AsRgb(), 0x070903u);
    ASSERT_TRUE(recorded.session.Reconnect());
    EXPECT_EQ(recorded.session.GetImage(-1)->GetData(7, 9).AsRgb(), 0x070903u);
    EXPECT_TRUE(recorded.session.GetImage(-1)->IsExternal());
}

TEST(Reconnect, APictureThatDoesNotFitTheDeviceIsAFailureButTheDeviceIsConnected) {
    Simulation simulation(kGrabber);
    simulation.Pick("Grabber");
    RecordedSession recorded;
    ASSERT_TRUE(recorded.session.Configure());
    recorded.session.GetImage(-1)->Set(50, 30, CTivData::FormatRgb, nullptr, true);
    EXPECT_FALSE(recorded.session.Reconnect());
    EXPECT_EQ(LastError(), "CTivImage::Copy => preallocated source ROI width and/or height not large enough");
    expectWorks(recorded, 40);
}

TEST(GetImage, IndicesOutsideTakeSlotZero) {
    Simulation simulation("");
    RecordedSession recorded;
    CTonewrightAcq& session = recorded.session;
    EXPECT_EQ(session.GetImage(-1), session.GetImage(0));
    EXPECT_EQ(LastError(), "");
    EXPECT_EQ(session.GetImage(4), session.GetImage(0));
    EXPECT_EQ(LastError(), "GetImage => index out of range");
    // Without a device the slot serves for pictures from files.
    EXPECT_TRUE(session.GetImage(-1)->Load(sampleFile("Tonewright/Images/chart.bmp"), true));
    EXPECT_EQ(session.GetImage(0)->GetWidth(), 608);
}

}  // namespace
