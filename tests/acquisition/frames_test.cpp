#include <atomic>
#include <set>
#include <thread>

#include <gmock/gmock.h>

#include "tests/acquisition/simulation.h"
#include "tests/support/own_clock.h"

namespace {

using Frame = RecordedSession::Frame;

const std::string kCamera = "[GigE]\nkind = other\nwidth = 256\nheight = 210\n";

/// A session on the camera above.
struct Connected {
    explicit Connected(const std::string& settings, std::function<void()> inCallback = {})
        : simulation(kCamera + settings), recorded(std::move(inCallback)) {
        simulation.Pick("GigE");
        EXPECT_TRUE(recorded.session.Configure()) << LastError();
    }
    CTonewrightAcq& Session() { return recorded.session; }

    Simulation simulation;
    RecordedSession recorded;
};

std::vector<Frame> inTurn(std::uint32_t count) {
    std::vector<Frame> frames;
    for (std::uint32_t i = 0; i < count; ++i) frames.push_back({static_cast<int>(i % 4), i + 1});
    return frames;
}

TEST(Frames, ArriveInOrderAndNoneIsLostWhileTheCallbackIsSlow) {
    Connected device("", [] { std::this_thread::sleep_for(std::chrono::milliseconds(20)); });
    for (int i = 0; i < 14; ++i) EXPECT_TRUE(device.Session().Snap());
    EXPECT_EQ(device.recorded.WaitForFrames(14), inTurn(14));
}

TEST(Frames, ABufferIsGivenBackOnlyAfterItsCallback) {
    Gate gate;
    Connected device("", [&gate] { gate.Pass(); });
    Simulation::WaitAtMost(50);
    for (int i = 0; i < 6; ++i) device.Session().Snap();  // four fill the buffers, the others find none
    EXPECT_EQ(device.recorded.GetFrames(), inTurn(1));
    for (int i = 0; i < 4; ++i) EXPECT_EQ(device.Session().GetImage(i)->GetData(0, 0).AsRgb(), i + 1u);
    gate.Open();
    EXPECT_EQ(device.recorded.WaitForFrames(4), inTurn(4));
    device.Session().Snap();
    EXPECT_EQ(device.recorded.WaitForFrames(5), inTurn(5));
}

TEST(Frames, TrashIsPassedOver) {
    Connected device("faults = trash\n");  // every second frame
    for (int i = 0; i < 5; ++i) device.Session().Snap();
    EXPECT_EQ(device.recorded.WaitForFrames(3), (std::vector<Frame>{{0, 1}, {1, 3}, {2, 5}}));
}

TEST(Frames, ImageSlotsAreViewsThatStayInPlace) {
    for (const std::string format : {"RGB 32", "RGB 24"}) {
        Connected device("format = " + format + "\n");
        std::set<void*> addresses;
        for (int i = 0; i < 4; ++i) {
            EXPECT_TRUE(device.Session().GetImage(i)->IsExternal());
            addresses.insert(device.Session().GetImage(i)->GetData());
        }
        EXPECT_EQ(addresses.size(), 4u);
        void* const second = device.Session().GetImage(1)->GetData();
        for (int i = 0; i < 6; ++i) device.Session().Snap();
        device.recorded.WaitForFrames(6);
        EXPECT_EQ(device.Session().GetImage(-1)->GetData(), second);
        EXPECT_EQ(*static_cast<std::uint8_t*>(second), 6);  // blue of pixel (0, 0): the frame's number
    }
}

TEST(Frames, AnImageLoadedIntoASlotGivesWayToTheNextFrameThere) {
    Connected device("");
    Simulation::WaitAtMost(20);
    device.Session().GetImage(-1)->Set(8, 8, CTivData::FormatUByte, nullptr, true);
    EXPECT_EQ(device.Session().GetImage(-1)->GetWidth(), 8);
    device.Session().Snap();
    device.recorded.WaitForFrames(1);
    EXPECT_EQ(device.Session().GetImage(-1)->GetWidth(), 256);
}

TEST(Frames, ThoseOfBuffersThatAreGoneNeverReachTheCallback) {
    Gate gate;
    Connected device("", [&gate] { gate.Pass(); });
    for (int i = 0; i < 3; ++i) device.Session().Snap();
    EXPECT_EQ(device.recorded.WaitForFrames(1), inTurn(1));
    EXPECT_TRUE(device.Session().Reconnect());
    gate.Open();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_EQ(device.recorded.GetFrames(), inTurn(1));
    device.Session().Snap();
    EXPECT_EQ(device.recorded.WaitForFrames(2), (std::vector<Frame>{{0, 1}, {0, 1}}));
}

TEST(Frames, EachBufferFormatBecomesItsImageFormat) {
    // Pixel (255, 200) of the first frame is red 255, green 200, blue 1, and gray 194.
    const struct {
        const char* word;
        CTivData::Format format;
        CTivData pixel;
    } rows[] = {
        {"mono 8", CTivData::FormatUByte, CTivData::UByte(194)},
        {"mono 16", CTivData::FormatUShort, CTivData::UShort(194 * 257)},
        {"mono 1", CTivData::FormatBinary, CTivData(CTivData::FormatBinary, 1)},
        {"RGB 32", CTivData::FormatRgb, CTivData::Rgb(255, 200, 1)},
        {"0x610A2000", CTivData::FormatRgb10, CTivData::Rgb10(1023, 802, 4)},
        {"RGB 24", CTivData::FormatRgb, CTivData::Rgb(255, 200, 1)},
        {"RGBR 24", CTivData::FormatRgb, CTivData::Rgb(255, 200, 1)},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.word);
        Connected device(std::string("format = ") + row.word);
        device.Session().Snap();
        device.recorded.WaitForFrames(1);
        const CTivImage& image = *device.Session().GetImage(-1);
        EXPECT_EQ(image.GetFormat(), row.format);
        EXPECT_EQ(image.GetData(255, 200).GetPayload(), row.pixel.GetPayload());
    }
}

/// No wait takes any time.
struct ImpatientClock : OwnClock {
    bool Wait(std::condition_variable&, std::unique_lock<std::mutex>&, Duration time,
              const std::function<bool()>& until) override {
        asked.push_back(time);
        return until();
    }
    std::vector<Duration> asked;
};

/// Sleep lasts until the gate opens.
struct GatedClock : OwnClock {
    void Sleep(Duration) override {
        gate.Pass();
        ++ended;
    }
    Gate gate;
    std::atomic<int> ended = 0;
};

// The stress tests count library objects before and after, and are what to run under a race detector.

TEST(Stress, AThousandSnapsAndAHundredReconnectsLoseNothing) {
    const long before = CTivManager::GetInstanceCount();
    {
        Connected device("width = 16\nheight = 16\nformat = RGBR 24\n");
        for (std::size_t round = 1; round <= 100; ++round) {
            for (int i = 0; i < 10; ++i) EXPECT_TRUE(device.Session().Snap());
            EXPECT_EQ(device.recorded.WaitForFrames(10 * round).size(), 10 * round);
            EXPECT_TRUE(device.Session().Reconnect());
        }
    }
    EXPECT_EQ(CTivManager::GetInstanceCount(), before);
}

TEST(Stress, ReconnectingWithFramesOnTheirWayIsSafe) {
    Simulation simulation(kCamera + "width = 64\nheight = 64\nformat = RGB 24\n");
    simulation.Pick("GigE");
    std::atomic<int> frames = 0;
    CTonewrightAcq session([](void* count, int) { ++*static_cast<std::atomic<int>*>(count); }, &frames, nullptr);
    ASSERT_TRUE(session.Configure());
    for (int i = 0; i < 100; ++i) {
        for (int more = i % 3; more >= 0; --more) EXPECT_TRUE(session.Snap());
        EXPECT_TRUE(session.Reconnect());
    }
    EXPECT_LE(frames, 199);  // what was asked for: 34 rounds of one frame, 33 of two, 33 of three
}

TEST(Stress, DestructionWhileAFrameIsInTheCallbackEndsAfterASecond) {
    struct Late {
        Gate gate;
        std::atomic<int> begun = 0, ended = 0;
    } late;  // outlives the callback, as its context must
    Simulation simulation(kCamera);
    simulation.Pick("GigE");
    auto session = std::make_unique<CTonewrightAcq>(
        [](void* context, int) {
            auto& self = *static_cast<Late*>(context);
            ++self.begun;
            self.gate.Pass();
            ++self.ended;
        },
        &late, nullptr);
    ASSERT_TRUE(session->Configure());
    for (int i = 0; i < 3; ++i) session->Snap();
    while (late.begun == 0) std::this_thread::yield();
    {
        ImpatientClock clock;
        session.reset();
        EXPECT_THAT(clock.asked, testing::Contains(ZvnClock::Duration(1000)));
    }
    late.gate.Open();
    while (late.ended == 0) std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_EQ(late.begun, 1);  // the frames behind it never reach the callback
}

TEST(Stress, DestructionDuringAHangDoesNotWaitForTheDevice) {
    const long before = CTivManager::GetInstanceCount();
    GatedClock clock;
    auto device = std::make_unique<Connected>("faults = hang\n");
    Simulation::WaitAtMost(20);
    EXPECT_TRUE(device->Session().Snap());
    EXPECT_TRUE(device->Session().Snap());
    device.reset();
    EXPECT_EQ(clock.ended, 0);
    clock.gate.Open();
    while (clock.ended == 0 || CTivManager::GetInstanceCount() != before) std::this_thread::yield();
}

TEST(Stress, SessionsWithoutADeviceComeAndGoAtOnce) {
    Simulation simulation("");
    WatchedClock clock;
    for (int i = 0; i < 200; ++i) RecordedSession recorded;
    EXPECT_EQ(clock.runOut, 0);
}

}  // namespace
