#include <cstring>

#include "acquisition/zvn/ZvnManager.h"
#include "tests/acquisition/simulation.h"

namespace {

constexpr const char* kCannotWrite = "Cannot write file to device.";
constexpr const char* kCannotRead = "Cannot read file from device.";

const std::string kGrabber = "[Grabber]\nkind = frame grabber\n";
const std::string kCamera = "[Camera_Link_1]\nkind = Camera Link camera\nfiles = one\n";
const std::string kSecondCamera = "[GigE]\nkind = other\nfiles = two\n";

void append(std::string& bytes, const void* data, std::size_t size) {
    bytes.append(static_cast<const char*>(data), size);
}

/// A coefficient file whose transform counts 0.5, 1.5, 2.5, ...
std::string coefficients(std::int32_t terms) {
    std::string bytes = "CTivTonewrightDC_XForm";
    bytes.resize(32);
    const std::int32_t head[] = {7300, terms};
    append(bytes, head, sizeof head);
    std::string record = "CTivVector";
    record.resize(32);
    const std::int32_t recordHead[] = {100, 3 * terms, 17};
    append(record, recordHead, sizeof recordHead);
    for (int i = 0; i < 3 * terms; ++i) {
        const float value = 0.5f + static_cast<float>(i);
        append(record, &value, sizeof value);
    }
    return bytes + record;
}

struct Transfer {
    Transfer(const std::string& ini, const std::string& server) : simulation(ini) {
        simulation.Write("up.ccor", coefficients(4));
        if (server.empty()) return;
        simulation.Pick(server);
        EXPECT_TRUE(recorded.session.Configure()) << LastError();
        ClearLastError();
    }
    /// @return the text of the failure, "" for success
    std::string Run(bool upload, const std::string& file) {
        ClearLastError();
        const bool done = recorded.session.TransferFile(simulation.Path(file).c_str(), upload);
        EXPECT_EQ(done, LastError().empty());
        return LastError();
    }
    std::string Upload(const std::string& file = "up.ccor") { return Run(true, file); }
    std::string Download(const std::string& file = "down.ccor") { return Run(false, file); }

    Simulation simulation;
    RecordedSession recorded;
};

TEST(TransferFile, ACameraHoldsTheFileAsItStands) {
    Transfer transfer(kCamera, "Camera_Link_1");
    transfer.simulation.Write("one/ColorCorrectionMatrix", "factory");
    transfer.simulation.Write("odd.ccor", std::string("any\0thing", 9));
    EXPECT_EQ(transfer.Download(), "");
    EXPECT_EQ(transfer.simulation.Read("down.ccor"), "factory");
    EXPECT_EQ(transfer.Upload("odd.ccor"), "");
    EXPECT_EQ(transfer.Download(), "");
    EXPECT_EQ(transfer.simulation.Read("down.ccor"), std::string("any\0thing", 9));
}

TEST(TransferFile, ACameraThatFailsIsTold) {
    Transfer faulty(kCamera + "faults = read, write\n", "Camera_Link_1");
    faulty.simulation.Write("one/ColorCorrectionMatrix", "factory");
    faulty.simulation.Write("down.ccor", "earlier");
    EXPECT_EQ(faulty.Upload(), kCannotWrite);
    EXPECT_EQ(faulty.Download(), kCannotRead);
    EXPECT_EQ(faulty.simulation.Read("down.ccor"), "earlier");
    EXPECT_EQ(faulty.simulation.Read("one/ColorCorrectionMatrix"), "factory");

    Transfer without(kCamera, "Camera_Link_1");
    EXPECT_EQ(without.Upload(), kCannotWrite);
    EXPECT_EQ(without.Download(), kCannotRead);
    without.simulation.Write("one/ColorCorrectionMatrix", "factory");
    EXPECT_EQ(without.Upload("missing.ccor"), kCannotWrite);
    EXPECT_EQ(without.Download("no/such/folder.ccor"), kCannotRead);
    EXPECT_EQ(without.Upload(), "");
}

TEST(TransferFile, ALostOrMissingDeviceIsAFailureAndNoCrash) {
    Transfer none(kCamera, "");
    EXPECT_EQ(none.Upload(), kCannotWrite);
    Transfer lost(kCamera, "Camera_Link_1");
    lost.simulation.Write("one/ColorCorrectionMatrix", "factory");
    lost.simulation.Describe("");
    EXPECT_FALSE(lost.recorded.session.Reconnect());
    EXPECT_EQ(lost.Upload(), kCannotWrite);
    EXPECT_EQ(lost.Download(), kCannotRead);
}

TEST(TransferFile, AFrameGrabbersFileGoesToTheLastCamera) {
    Transfer transfer(kCamera + kSecondCamera + kGrabber, "Grabber");
    transfer.simulation.Write("one/ColorCorrectionMatrix", "first");
    transfer.simulation.Write("two/ColorCorrectionMatrix", "second");
    EXPECT_EQ(transfer.Upload(), "");
    EXPECT_EQ(transfer.simulation.Read("one/ColorCorrectionMatrix"), "first");
    EXPECT_EQ(transfer.simulation.Read("two/ColorCorrectionMatrix"), coefficients(4));
    EXPECT_EQ(transfer.Download(), "");
    EXPECT_EQ(transfer.simulation.Read("down.ccor"), coefficients(4));
}

TEST(TransferFile, AFrameGrabberWithoutACameraHasNoLink) {
    for (const std::string& camera : {std::string(), kCamera + "faults = create\n"}) {
        Transfer transfer(kGrabber + camera, "Grabber");
        EXPECT_EQ(transfer.Upload(), "Cannot create link to device.");
        EXPECT_EQ(transfer.Download(), "Cannot create link to device.");
    }
}

TEST(TransferFile, WhereTheCameraHasNoFileTheGrabberTakesTheMatrixAsAFilter) {
    Transfer transfer(kGrabber + "files = grabber\n" + kCamera, "Grabber");
    transfer.simulation.Write("grabber/about", "");
    EXPECT_EQ(transfer.Upload(), "");
    const std::string filter = transfer.simulation.Read("grabber/ImageFilter0");
    ASSERT_EQ(filter.size(), 12 * sizeof(float));
    for (std::size_t i = 0; i < 12; ++i) {
        float value = 0;
        std::memcpy(&value, filter.data() + i * sizeof value, sizeof value);
        EXPECT_EQ(value, 0.5f + static_cast<float>(i));
    }
    EXPECT_EQ(transfer.Download(), "Reading file from device is not available for frame grabbers.");
    EXPECT_EQ(ZvnManager::GetDisplayStatusMode(), 0);
}

TEST(TransferFile, AFilterThatCannotBeMadeOrSetIsTold) {
    Transfer refusing(kGrabber + "faults = filter\n" + kCamera, "Grabber");
    EXPECT_EQ(refusing.Upload(), kCannotWrite);

    Transfer accepting(kGrabber + kCamera, "Grabber");
    accepting.simulation.Write("ten.ccor", coefficients(10));
    accepting.simulation.Write("short.ccor", coefficients(4).substr(0, 131));
    accepting.simulation.Write("other.ccor", "CTivVector and more");
    for (const char* file : {"ten.ccor", "short.ccor", "other.ccor", "missing.ccor"}) {
        EXPECT_EQ(accepting.Upload(file), kCannotWrite) << file;
    }
    EXPECT_EQ(accepting.Upload(), "");

    Transfer noBuffer(kGrabber + kCamera + "faults = matrix\n", "Grabber");
    EXPECT_EQ(noBuffer.Upload(), "Cannot create color correction buffer object.");
    EXPECT_EQ(ZvnManager::GetDisplayStatusMode(), 0);
}

}  // namespace
