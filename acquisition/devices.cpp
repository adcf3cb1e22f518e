#include "acquisition/devices.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "acquisition/zvn/CAcqConfigDlg.h"
#include "acquisition/zvn/ZvnManager.h"

namespace tonewright {

using namespace tonewright;

const char* GetDeviceWord(int deviceKind) {
    switch (deviceKind) {
        case DeviceKindFrameGrabber:
            return "frame grabber";
        case DeviceKindCameraLink:
            return "Camera Link camera";
        default:
            return "other";
    }
}

std::vector<std::string> ListDevices() {
    std::vector<std::string> names;
    const int count = ZvnManager::GetServerCount();
    for (int server = 0; server < count; ++server) {
        char name[64];
        if (!ZvnManager::GetServerName(server, name, sizeof name)) continue;
        if (CTonewrightAcq::Classify(ZvnLocation(name)).category != 0) names.emplace_back(name);
    }
    return names;
}

std::string FindDevice(const std::string& chosen) {
    const std::vector<std::string> names = ListDevices();
    if (names.empty()) return chosen;  // which the session refuses in its own words
    if (chosen.empty()) return names.front();
    if (std::ranges::find(names, chosen) != names.end()) return chosen;
    std::string known;
    for (const auto& name : names) known += "\n  " + name;
    throw WorkFailure("there is no device " + chosen + ", but" + known);
}

std::string ConnectSession(CTonewrightAcq& session, const DeviceChoice& choice) {
    std::string device = FindDevice(choice.device);
    CAcqConfigDlg::SetAsk([&](void*, const CAcqConfigDlg::Choice*) {
        return CAcqConfigDlg::Choice{ZvnLocation(device), choice.config};
    });
    const std::unique_ptr<void, void (*)(void*)> asking(&device, [](void*) { CAcqConfigDlg::SetAsk(nullptr); });
    Require([&] { return session.Configure(); }, device, "cannot be configured");
    return device;
}

BackendWords::BackendWords(std::function<void(const std::string&)> tell) : tell_(std::move(tell)) {
    ZvnManager::SetStatusListener([this](ZvnStatus kind, const std::string& text) {
        if (kind == ZvnStatus::Note) return tell_("note: " + text);
        const std::scoped_lock held(lock_);
        if (std::ranges::find(errors_, text) == errors_.end()) errors_.push_back(text);
    });
}

BackendWords::~BackendWords() { ZvnManager::SetStatusListener(nullptr); }

std::vector<std::string> BackendWords::Take() {
    const std::scoped_lock held(lock_);
    return std::exchange(errors_, {});
}

}  // namespace tonewright
