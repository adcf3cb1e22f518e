#include "acquisition/CTonewrightAcq.h"
#include "acquisition/zvn/ZvnAcqDevice.h"
#include "acquisition/zvn/ZvnAcquisition.h"
#include "acquisition/zvn/ZvnBuffer.h"
#include "acquisition/zvn/ZvnManager.h"
#include "acquisition/zvn/zvn_formats.h"

namespace {

constexpr const char* kDeviceFile = "ColorCorrectionMatrix";
constexpr const char* kCannotWrite = "Cannot write file to device.";
constexpr const char* kCannotRead = "Cannot read file from device.";

/// A probe that tells nobody what it does not find.
class SilentProbe {
public:
    SilentProbe() { ZvnManager::SetDisplayStatusMode(1, 0, 0); }
    SilentProbe(const SilentProbe&) = delete;
    SilentProbe& operator=(const SilentProbe&) = delete;
    ~SilentProbe() { ZvnManager::SetDisplayStatusMode(earlierMode_, 0, 0); }

private:
    int earlierMode_ = ZvnManager::GetDisplayStatusMode();
};

/// @return the last server that has a camera, by name; an empty name if none has
ZvnLocation findLastCamera() {
    char name[30] = "";
    const int count = ZvnManager::GetServerCount();
    for (int server = 0; server < count; ++server) {
        if (ZvnManager::GetResourceCount(server, kZvnAcqDevice) > 0) {
            ZvnManager::GetServerName(server, name, sizeof name);
        }
    }
    return ZvnLocation(name, 0);
}

/// @param device null counts as one that fails
bool moveFile(ZvnAcqDevice* device, const char* path, bool upload) {
    const bool done = device && (upload ? device->WriteFile(path, kDeviceFile) : device->ReadFile(kDeviceFile, path));
    return done || CTivManager::Refuse(upload ? kCannotWrite : kCannotRead);
}

}  // namespace

bool CTonewrightAcq::TransferFile(const char* path, bool upload) {
    if (setup_.category == 1) return TransferThroughGrabber(path, upload);
    return moveFile(GetCamera(), path, upload);
}

ZvnAcqDevice* CTonewrightAcq::GetCamera() const { return dynamic_cast<ZvnAcqDevice*>(acquisition_.get()); }

bool CTonewrightAcq::TransferThroughGrabber(const char* path, bool upload) {
    auto device = std::make_unique<ZvnAcqDevice>(findLastCamera(), nullptr);
    if (!device->Create()) {
        unopenedDevices_.push_back(std::move(device));  // deliberately (C2) not deleted before the session ends
        return Refuse("Cannot create link to device.");
    }
    ZvnBuffer matrix(1, 4, 3, kZvnFloat, -1, ZvnLocation());
    bool hasFile = false;
    {
        const SilentProbe probe;
        int index = 0;
        hasFile = device->GetFileIndexByName(kDeviceFile, &index);
        if (!hasFile && !matrix.Create()) return Refuse("Cannot create color correction buffer object.");
    }
    if (hasFile) return moveFile(device.get(), path, upload);
    if (!upload) return Refuse("Reading file from device is not available for frame grabbers.");
    auto* grabber = dynamic_cast<ZvnAcquisition*>(acquisition_.get());
    const bool done = matrix.Load(path, 0, 0, 0, "-format auto") && grabber && grabber->SetImageFilter(0, matrix);
    return done || Refuse(kCannotWrite);
}
