#include "acquisition/zvn/backend_impl.h"

#ifndef TONEWRIGHT_HAVE_ARAVIS

ZvnBackend* GetCameraBackend() { return nullptr; }

#else

#include <algorithm>
#include <cstring>

#include "acquisition/zvn/ZvnClock.h"
#include "acquisition/zvn/camera_source_impl.h"
#include "acquisition/zvn/color_journal.h"

namespace {

constexpr std::chrono::seconds kListLife{5};
constexpr std::size_t kLongestName = 29;

/// GenICam cameras on the network and on USB.
class CameraBackend : public ZvnBackend {
public:
    std::vector<ZvnServer> ListServers() override {
        if (!lookedAt_ || ZvnClock::Get().Now() - *lookedAt_ > kListLife) Look();
        std::vector<ZvnServer> servers;
        for (const auto& camera : cameras_) servers.push_back({camera.name, 0, 1});
        return servers;
    }

    std::shared_ptr<ZvnSource> Open(const ZvnLocation& location, ZvnResourceType type,
                                    const std::string& configFile) override {
        if (type != kZvnAcqDevice || location.GetResourceIndex() != 0 || location.GetServerName().empty()) {
            return nullptr;
        }
        const auto found = [&] { return std::ranges::find(cameras_, location.GetServerName(), &Camera::name); };
        if (found() == cameras_.end()) Look();
        if (found() == cameras_.end()) return nullptr;
        ArvErrors errors;
        ArvCameraHandle camera(arv_camera_new(found()->id.c_str(), errors.Next()));
        if (!camera) {
            TellZvnStatus(location.GetServerName() + ": " + errors.Text());
            lookedAt_.reset();
            return nullptr;
        }
        auto source = std::make_shared<CameraSource>(std::move(camera), found()->key);
        const std::string wrong = source->Configure(configFile);
        if (wrong.empty()) return source;
        TellZvnStatus(wrong);
        return nullptr;
    }

    bool AllowBuffers(const ZvnLocation&) override { return true; }

private:
    struct Camera {
        std::string name;
        std::string id;   // the camera library's
        std::string key;  // tells it from all others
    };

    static std::string ToText(const char* text) { return text ? text : ""; }

    void Look() {
        arv_update_device_list();
        lookedAt_ = ZvnClock::Get().Now();
        cameras_.clear();
        for (unsigned i = 0; i < arv_get_n_devices(); ++i) {
            const char *model = arv_get_device_model(i), *serial = arv_get_device_serial_nbr(i);
            cameras_.push_back({NameFor(model, serial), arv_get_device_id(i),
                                GetZvnCameraKey(ToText(arv_get_device_vendor(i)), ToText(model), ToText(serial))});
        }
    }

    /// Model and serial number, the model cut where both are too long, and a number where it was there before.
    std::string NameFor(const char* model, const char* serial) const {
        std::string serialTail;
        if (serial && *serial) serialTail.append("-").append(serial, std::min(std::strlen(serial), kLongestName / 2));
        for (int number = 1;; ++number) {
            std::string tail = serialTail;
            if (number > 1) tail.append("#").append(std::to_string(number));
            const std::string name = std::string(model ? model : "Camera").substr(0, kLongestName - tail.size()) + tail;
            if (std::ranges::find(cameras_, name, &Camera::name) == cameras_.end()) return name;
        }
    }

    std::vector<Camera> cameras_;
    std::optional<ZvnClock::Time> lookedAt_;
};

}  // namespace

ZvnBackend* GetCameraBackend() {
    static CameraBackend backend;
    return &backend;
}

#endif
