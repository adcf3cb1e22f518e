#pragma once

#include <string>

#include "acquisition/zvn/ZvnBackend.h"
#include "acquisition/zvn/ZvnCameraFormats.h"
#include "acquisition/zvn/aravis_impl.h"

/// An open GenICam camera.
class CameraSource : public ZvnSource {
public:
    /// @param key what tells the camera from all others, empty where that is not known
    CameraSource(ArvCameraHandle camera, std::string key) : camera_(std::move(camera)), key_(std::move(key)) {}
    /// Closing a camera that was unplugged takes seconds: it goes on by itself then.
    ~CameraSource() override;

    /// Puts back coefficients whose transfer was cut off, applies the configuration and learns what the frames are
    /// like. @return why it fails, empty where it does not
    std::string Configure(const std::string& configFile);

    ZvnFrameFormat GetFrameFormat() const override { return frame_; }
    bool PrepareBuffers(int) override { return true; }
    bool PrepareTransfer() override { return true; }
    ZvnGrab Grab(std::span<std::byte> destination, std::stop_token stop) override;
    std::optional<int> FindFile(const std::string& name) override;
    std::optional<std::vector<char>> ReadFile(const std::string& name) override;
    bool WriteFile(const std::string& name, std::span<const char> content) override;
    bool SetImageFilter(int, std::span<const float, 12>) override { return false; }

    bool HoldsFile(const std::string& name) override;
    bool HasColorFeatures() override;
    std::optional<std::array<float, 12>> ReadColorFeatures() override;
    bool WriteColorFeatures(std::span<const float, 12> matrix) override;
    std::vector<ZvnNote> GetNotes() override { return notes_; }
    int GetExposureMs() const override { return exposureMs_; }

private:
    ArvDevice* Device() const { return arv_camera_get_device(camera_.get()); }
    std::string Apply(const std::string& name, const std::string& value);
    void LookAtTrigger();
    void LookAtExposure();
    double GetFullScale();
    void RestoreColorFeatures();
    void TellRefusedFormat() const;
    bool TakePicture(ArvBuffer* buffer, bool isDirect, std::span<std::byte> destination) const;

    ArvCameraHandle camera_;
    std::string key_;
    int deliveredBits_ = 8;
    bool isTriggered_ = false;  // frames come when TriggerSoftware is carried out
    int exposureMs_ = 0;
    std::vector<ZvnNote> notes_;
    ZvnFrameFormat frame_;
    ArvPixelFormat pixelFormat_ = 0;
    const ZvnCameraFormat* format_ = nullptr;  // null: refused
    std::size_t payload_ = 0;                  // bytes of what the camera sends for a frame
};
