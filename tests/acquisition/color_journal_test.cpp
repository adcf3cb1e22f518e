#include "acquisition/zvn/color_journal.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "tests/acquisition/memory_camera.h"
#include "tests/support/library.h"
#include "tests/support/scratch.h"

namespace {

using testing::HasSubstr;

/// A folder for records and what happens to one camera, each time by a program of its own.
class ColorJournal : public testing::Test {
protected:
    ColorJournal() {
        std::filesystem::remove_all(folder_);
        std::filesystem::create_directories(folder_);
    }
    ~ColorJournal() override { std::filesystem::remove_all(folder_); }

    std::string Write(MemoryCamera& camera, const ZvnColorMatrix& matrix = kMatrix) const {
        ZvnColorJournal journal(folder_, kKey);
        try {
            return WriteZvnColorFeatures(camera, 255, matrix, journal);
        } catch (const ZvnFeatureFailure& failure) {
            return failure.what();
        }
    }
    ZvnColorRecovery Open(MemoryCamera& camera) const {
        ZvnColorJournal journal(folder_, kKey);
        return RestoreZvnColorFeatures(camera, journal);
    }
    bool IsPending() const { return ZvnColorJournal(folder_, kKey).IsPending(); }

    /// A transfer that ended in the middle, with the values of two transforms in the camera.
    MemoryCamera CutOff(bool wasOn = true) const {
        MemoryCamera camera;
        camera.state.isOn = wasOn;
        camera.failAt = 60;
        camera.isEnd = true;
        EXPECT_THAT(Write(camera), HasSubstr("opening the camera again puts them back"));
        EXPECT_FALSE(camera.state.isOn);
        camera.failAt = -1;
        camera.calls = 0;
        return camera;
    }

    void Replace(const std::string& what, const std::string& by) const {
        std::ifstream file(path_);
        std::string text{std::istreambuf_iterator<char>(file), {}};
        ASSERT_THAT(text, HasSubstr(what));
        text.replace(text.find(what), what.size(), by);
        std::ofstream(path_) << text;
    }

    static constexpr const char* kKey = "Maker_Model_42";
    const std::string folder_ = scratchFolder() + "/journal";
    const std::string path_ = folder_ + "/" + kKey + ".journal";
};

TEST_F(ColorJournal, ACameraThatEndsAtAnyCallHasOneTransformWholeOnceItIsOpenedAgain) {
    const struct {
        double step;  ///< which the camera does not say
        bool wasOn;
        int stride;
    } rows[] = {{0, true, 1}, {1 / 16.0, true, 4}, {0, false, 5}};
    for (const auto& row : rows) {
        MemoryCamera start;
        start.step = row.step;
        start.saysStep = false;
        start.state.isOn = row.wasOn;
        MemoryCamera whole = start;
        Write(whole);
        int back = 0;
        for (int call = 0; call < whole.calls; call += row.stride) {
            MemoryCamera camera = start;
            camera.failAt = call;
            camera.isEnd = true;
            Write(camera);
            camera.failAt = -1;
            const ZvnColorRecovery recovery = Open(camera);
            EXPECT_TRUE(recovery.isGood) << call << recovery.text;
            const bool isNew = camera.state.values == whole.state.values && camera.state.isOn;
            const bool isOld = camera.state.values == start.state.values && camera.state.isOn == row.wasOn;
            EXPECT_TRUE(isNew || isOld) << call;
            back += recovery.text.find("those from before are back") != std::string::npos ? 1 : 0;
            EXPECT_EQ(Open(camera).text, "");
        }
        EXPECT_GT(back, 45 / row.stride);  // for most of the way
    }
}

TEST_F(ColorJournal, ACameraThatEndsWhilePuttingBackIsPutBackLater) {
    const auto before = MemoryCamera().state.values;
    MemoryCamera once = CutOff();
    Open(once);
    ASSERT_GT(once.calls, 60);
    for (int call = 0; call < once.calls; call += 3) {
        MemoryCamera camera = CutOff();
        camera.failAt = call;
        camera.isEnd = true;
        const ZvnColorRecovery failed = Open(camera);
        camera.failAt = -1;
        if (!failed.isGood) {
            EXPECT_THAT(failed.text, HasSubstr("the camera does not answer; opening the camera again"));
        }
        EXPECT_EQ(failed.isGood, !IsPending());
        Open(camera);
        EXPECT_EQ(camera.state.values, before) << call;
        EXPECT_TRUE(camera.state.isOn) << call;
    }
}

TEST_F(ColorJournal, SendingAgainKeepsWhatWasThereAtFirst) {
    const auto before = MemoryCamera().state.values;
    MemoryCamera camera = CutOff();
    camera.failAt = 60;  // no opening in between
    EXPECT_THAT(Write(camera), HasSubstr("; the earlier coefficients could not be put back"));
    camera.failAt = -1;
    Open(camera);
    EXPECT_EQ(camera.state.values, before);
    EXPECT_TRUE(camera.state.isOn);
    camera = CutOff();
    EXPECT_EQ(Write(camera), "");
    EXPECT_EQ(camera.state.values["Gain22"], 1.63f);
    EXPECT_EQ(Open(camera).text, "");
}

TEST_F(ColorJournal, WhatTheCameraHasWholeStays) {
    const MemoryCamera fresh;
    MemoryCamera next;
    Write(next);
    MemoryCamera::State factory = fresh.state;  // after a power cycle
    for (auto& [name, value] : factory.values) value = name == "Gain00" || name == "Gain11" || name == "Gain22";
    factory.isOn = false;
    MemoryCamera::State mixed = fresh.state;  // switched on by another hand
    mixed.values["Gain22"] = 1.63;
    const struct {
        MemoryCamera::State found, left;
        const char* text;
    } rows[] = {
        {fresh.state, fresh.state, "it has kept those from before"},
        {next.state, next.state, "it has the new ones"},
        {factory, factory, "others came to it since, and stay"},
        {mixed, fresh.state, "those from before are back"},
    };
    for (const auto& row : rows) {
        MemoryCamera camera = CutOff();
        camera.state = row.found;
        const ZvnColorRecovery recovery = Open(camera);
        EXPECT_EQ(recovery.text,
                  std::string("an earlier transfer of coefficients to this camera was cut off; ") + row.text);
        EXPECT_TRUE(recovery.isGood);
        EXPECT_EQ(camera.state.values, row.left.values) << row.text;
        EXPECT_EQ(camera.state.isOn, row.left.isOn) << row.text;
        EXPECT_FALSE(IsPending());
    }
}

TEST_F(ColorJournal, AHostileRecordIsToldAndWritesNothing) {
    const std::function<void()> edits[] = {
        [&] { Replace("Maker_Model_42", "Maker_Model_43"); },
        [&] { Replace("on = 1", "on = yes"); },
        [&] { Replace("Gain22 = ", "Gain22 = nan ;"); },
        [&] { Replace("Offset1 = ", "Offset1 = 1e999 ;"); },
        [&] { Replace("Gain11 = ", "Gain33 = "); },
        [&] { std::filesystem::resize_file(path_, 90); },
        [&] { std::filesystem::resize_file(path_, 90'000'000); },
        [&] {
            Replace("Gain00 = ", "Gain00 = 0 ;"), Replace("Gain01 = ", "Gain01 = 0 ;"),
                Replace("Gain02 = ", "Gain02 = 0 ;");
        },
        [&] { std::filesystem::remove(path_), mkfifo(path_.c_str(), 0600); },
        [&] { std::filesystem::remove(path_), std::filesystem::create_symlink("/dev/zero", path_); },
    };
    for (std::size_t i = 0; i < std::size(edits); ++i) {
        MemoryCamera camera = CutOff();
        edits[i]();
        const auto before = camera.state.values;
        const ZvnColorRecovery recovery = Open(camera);
        EXPECT_FALSE(recovery.isGood) << i;
        EXPECT_THAT(recovery.text, HasSubstr("what is to be put back cannot be used: " + path_)) << i;
        EXPECT_EQ(camera.state.values, before) << i;
        EXPECT_FALSE(camera.state.isOn) << i;
        EXPECT_FALSE(IsPending()) << i;
    }
    MemoryCamera camera = CutOff();
    camera.range = 1;  // as the camera is set by now
    EXPECT_THAT(Open(camera).text, HasSubstr("Offset0 would be 2, outside the camera's -1 to 1; opening"));
    EXPECT_FALSE(camera.state.isOn);
    EXPECT_TRUE(IsPending());
    camera.range = 64;
    EXPECT_EQ(Write(camera), "");  // which ends it
    EXPECT_FALSE(IsPending());
}

TEST_F(ColorJournal, TwoProgramsTakeTurns) {
    MemoryCamera camera = CutOff();
    const auto before = camera.state.values;
    auto other = std::make_unique<ZvnColorJournal>(folder_, kKey);
    ASSERT_TRUE(other->Lock());
    EXPECT_EQ(Open(camera).text, "another program is writing coefficients to the camera");
    EXPECT_EQ(Write(camera), "another program is writing coefficients to the camera");
    EXPECT_EQ(camera.state.values, before);
    EXPECT_TRUE(IsPending());
    other.reset();
    EXPECT_THAT(Open(camera).text, HasSubstr("are back"));
}

TEST_F(ColorJournal, WhereNothingCanBeKeptTheTransferGoesOnAndSaysSo) {
    const std::string file = folder_ + "/file";
    std::ofstream(file) << "in the folder's way";
    for (const std::string& folder : {std::string(), file, file + "/cameras"}) {
        MemoryCamera camera;
        ZvnColorJournal journal(folder, kKey);
        EXPECT_THAT(WriteZvnColorFeatures(camera, 255, kMatrix, journal), HasSubstr("had it been lost meanwhile: "));
        EXPECT_EQ(camera.state.values["Gain22"], 1.63f);
        MemoryCamera lost;
        lost.failAt = 60;
        lost.isEnd = true;
        EXPECT_THROW(static_cast<void>(WriteZvnColorFeatures(lost, 255, kMatrix, journal)), ZvnFeatureFailure);
        EXPECT_EQ(RestoreZvnColorFeatures(lost, journal).text, "");
    }
}

TEST_F(ColorJournal, EachCameraHasARecordOfItsOwnWhateverItsName) {
    EXPECT_EQ(GetZvnCameraKey("Maker", "M-1", "42"), "Maker_M-1_42");
    EXPECT_EQ(GetZvnCameraKey("../a b", "\n;", "4_2"), "%2e%2e%2fa%20b_%0a%3b_4%5f2");
    EXPECT_EQ(GetZvnCameraKey("Maker", "M-1", ""), "");
    const std::string longest(300, '/');
    EXPECT_EQ(GetZvnCameraKey(longest, longest, "1234567890").size(), 150u);
    EXPECT_NE(GetZvnCameraKey(longest, longest, "1234567890"), GetZvnCameraKey(longest, longest, "1234567891"));

    const char *home = std::getenv("HOME"), *data = std::getenv("XDG_DATA_HOME");
    const std::string earlierHome = home ? home : "", earlierData = data ? data : "";
    unsetenv("XDG_DATA_HOME");
    setenv("HOME", "/home/me", 1);
    EXPECT_EQ(FindZvnJournalFolder(), "/home/me/.local/share/Brennick Korva/Tonewright/cameras");
    setenv("XDG_DATA_HOME", "/data", 1);
    EXPECT_EQ(FindZvnJournalFolder(), "/data/Brennick Korva/Tonewright/cameras");
    setenv("XDG_DATA_HOME", "data", 1);  // only whole paths count
    unsetenv("HOME");
    const std::string named = FindZvnJournalFolder();
    EXPECT_TRUE(named.empty() || named.front() == '/') << named;
    unsetenv("XDG_DATA_HOME");
    if (data) setenv("XDG_DATA_HOME", earlierData.c_str(), 1);
    if (home) setenv("HOME", earlierHome.c_str(), 1);
}

}  // namespace
