#include "acquisition/zvn/backend_impl.h"

#ifndef TONEWRIGHT_HAVE_ARAVIS

ZvnBackend* GetCameraBackend() { return nullptr; }

#else

#include <algorithm>
#include <chrono>
#include <cstring>
#include <future>
#include <system_error>
#include <thread>

#include "acquisition/zvn/aravis_impl.h"
#include "acquisition/zvn/camera_files_impl.h"
#include "acquisition/zvn/ini_impl.h"
#include "acquisition/zvn/zvn_formats.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::seconds kListLife{5};
constexpr std::chrono::milliseconds kCloseTime{300};
constexpr std::uint64_t kPopMicroseconds = 20'000;
constexpr std::size_t kLongestName = 29;

// Deeper gray pixels than 8 bits come as words.
constexpr struct {
    ArvPixelFormat camera;
    std::uint32_t buffer;
} kPixelFormats[] = {
    {ARV_PIXEL_FORMAT_MONO_8, kZvnMono8},       {ARV_PIXEL_FORMAT_MONO_10, kZvnMono16},
    {ARV_PIXEL_FORMAT_MONO_12, kZvnMono16},     {ARV_PIXEL_FORMAT_MONO_14, kZvnMono16},
    {ARV_PIXEL_FORMAT_MONO_16, kZvnMono16},     {ARV_PIXEL_FORMAT_BGRA_8_PACKED, kZvnRgb32},
    {ARV_PIXEL_FORMAT_BGR_8_PACKED, kZvnRgb24}, {ARV_PIXEL_FORMAT_RGB_8_PACKED, kZvnRgbr24},
};

/// @return a code that the session refuses, with the right number of bits, for a format without a counterpart
std::uint32_t toBufferFormat(ArvPixelFormat camera) {
    for (const auto& row : kPixelFormats) {
        if (row.camera == camera) return row.buffer;
    }
    return static_cast<std::uint32_t>(ARV_PIXEL_FORMAT_BIT_PER_PIXEL(camera)) << 8;
}

std::string applyFeature(ArvDevice* device, const std::string& name, const std::string& value) {
    ArvGcNode* node = arv_device_get_feature(device, name.c_str());
    if (!node || !ARV_IS_GC_FEATURE_NODE(node)) return "the camera has no feature " + name;
    ArvErrors errors;
    if (ARV_IS_GC_COMMAND(node)) {
        arv_device_execute_command(device, name.c_str(), errors.Next());
    } else {
        arv_gc_feature_node_set_value_from_string(ARV_GC_FEATURE_NODE(node), value.c_str(), errors.Next());
    }
    return errors.Text();
}

class CameraSource : public ZvnSource {
public:
    explicit CameraSource(ArvCameraHandle camera) : camera_(std::move(camera)) {}

    /// Closing a camera that was unplugged takes seconds: it goes on by itself then.
    ~CameraSource() override {
        auto closed = std::make_shared<std::promise<void>>();
        auto done = closed->get_future();
        try {
            std::thread([closed, camera = std::move(camera_)]() mutable {
                camera.reset();
                closed->set_value();
            }).detach();
            done.wait_for(kCloseTime);
        } catch (const std::system_error&) {  // no thread: the camera was closed with the closure
        }
    }

    /// Applies the configuration and learns what the frames are like. @return why it fails, empty where it does not
    std::string Configure(const std::string& configFile) {
        arv_camera_set_acquisition_mode(camera_.get(), ARV_ACQUISITION_MODE_CONTINUOUS, nullptr);
        if (!configFile.empty()) {
            const std::string wrong =
                ReadIni(configFile, [this](const std::string&, const std::string& name, const std::string& value) {
                    return applyFeature(Device(), name, value);
                });
            if (!wrong.empty()) return wrong;
        }
        ArvErrors errors;
        int x = 0, y = 0;
        arv_camera_get_region(camera_.get(), &x, &y, &frame_.width, &frame_.height, errors.Next());
        pixelFormat_ = arv_camera_get_pixel_format(camera_.get(), errors.Next());
        payload_ = arv_camera_get_payload(camera_.get(), errors.Next());
        frame_.format = toBufferFormat(pixelFormat_);
        return errors.Text();
    }

    ZvnFrameFormat GetFrameFormat() const override { return frame_; }
    bool PrepareBuffers(int) override { return true; }
    bool PrepareTransfer() override { return true; }

    ZvnGrab Grab(std::span<std::byte> destination, std::stop_token stop) override {
        ArvErrors errors;
        // The stream ends before this returns, so that nothing writes to the destination afterwards.
        const ArvStreamHandle stream(arv_camera_create_stream(camera_.get(), nullptr, nullptr, errors.Next()));
        if (!errors.HasNone() || !stream) return Fail(errors);
        // Frames land where they belong, unless the camera sends more than the picture.
        const bool isDirect = payload_ == destination.size();
        arv_stream_push_buffer(
            stream.get(), isDirect ? arv_buffer_new(payload_, destination.data()) : arv_buffer_new_allocate(payload_));
        arv_camera_start_acquisition(camera_.get(), errors.Next());
        if (!errors.HasNone()) return Fail(errors);
        ZvnGrab result = ZvnGrab::None;
        while (result == ZvnGrab::None && !stop.stop_requested()) {
            ArvBufferHandle buffer(arv_stream_timeout_pop_buffer(stream.get(), kPopMicroseconds));
            if (!buffer) continue;
            if (TakePicture(buffer.get(), isDirect, destination)) {
                result = ZvnGrab::Frame;
            } else {
                arv_stream_push_buffer(stream.get(), buffer.release());  // came in damaged: the next one
            }
        }
        arv_camera_stop_acquisition(camera_.get(), errors.Next());
        if (!errors.HasNone()) TellZvnStatus(errors.Text());
        return result;
    }

    std::optional<int> FindFile(const std::string& name) override { return FindCameraFile(Device(), name); }
    std::optional<std::vector<char>> ReadFile(const std::string& name) override {
        return ReadCameraFile(Device(), name);
    }
    bool WriteFile(const std::string& name, std::span<const char> content) override {
        return WriteCameraFile(Device(), name, content);
    }
    bool SetImageFilter(int, std::span<const float, 12>) override { return false; }

private:
    ArvDevice* Device() const { return arv_camera_get_device(camera_.get()); }

    static ZvnGrab Fail(ArvErrors& errors) {
        TellZvnStatus(errors.HasNone() ? "the camera gives no stream" : errors.Text());
        return ZvnGrab::None;
    }

    bool TakePicture(ArvBuffer* buffer, bool isDirect, std::span<std::byte> destination) const {
        if (arv_buffer_get_status(buffer) != ARV_BUFFER_STATUS_SUCCESS) return false;
        if (arv_buffer_get_image_pixel_format(buffer) != pixelFormat_ ||
            arv_buffer_get_image_width(buffer) != frame_.width ||
            arv_buffer_get_image_height(buffer) != frame_.height) {
            return false;
        }
        if (isDirect) return true;
        std::size_t size = 0;
        const void* data = arv_buffer_get_image_data(buffer, &size);
        if (!data || size < destination.size()) return false;
        std::memcpy(destination.data(), data, destination.size());
        return true;
    }

    ArvCameraHandle camera_;
    ZvnFrameFormat frame_;
    ArvPixelFormat pixelFormat_ = 0;
    std::size_t payload_ = 0;  // bytes of what the camera sends for a frame
};

/// GenICam cameras on the network and on USB.
class CameraBackend : public ZvnBackend {
public:
    std::vector<ZvnServer> ListServers() override {
        if (!lookedAt_ || Clock::now() - *lookedAt_ > kListLife) Look();
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
        auto source = std::make_shared<CameraSource>(std::move(camera));
        const std::string wrong = source->Configure(configFile);
        if (wrong.empty()) return source;
        TellZvnStatus(wrong);
        return nullptr;
    }

    bool AllowBuffers(const ZvnLocation&) override { return true; }

private:
    struct Camera {
        std::string name;
        std::string id;  // the camera library's
    };

    void Look() {
        arv_update_device_list();
        lookedAt_ = Clock::now();
        cameras_.clear();
        for (unsigned i = 0; i < arv_get_n_devices(); ++i) {
            cameras_.push_back({NameFor(arv_get_device_model(i), arv_get_device_serial_nbr(i)), arv_get_device_id(i)});
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
    std::optional<Clock::time_point> lookedAt_;
};

}  // namespace

ZvnBackend* GetCameraBackend() {
    static CameraBackend backend;
    return &backend;
}

#endif
