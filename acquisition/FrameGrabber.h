#pragma once

#include <condition_variable>
#include <deque>
#include <mutex>
#include <string>

#include "acquisition/FrameMean.h"
#include "acquisition/devices.h"
#include "foundation/CTivImage.h"

namespace tonewright {

/// A device that frames come from.
class FrameGrabber {
public:
    /// Connects. @throw WorkFailure
    explicit FrameGrabber(const DeviceChoice& choice);

    const std::string& GetDevice() const { return device_; }
    const char* GetKind() const { return GetDeviceWord(session_.GetDeviceKind()); }

    /// @throw WorkFailure where no frame comes within a second, or there is no memory for it
    CTivImage Grab();

    /// The mean of `count` frames, corrected. @throw WorkFailure as Grab, and where frames and correction do not agree
    CTivImage GrabMean(int count, const FrameCorrection& correction);

private:
    /// Frames on their way from the session's thread to the main one.
    class FrameBox {
    public:
        CTonewrightAcq* session_ = nullptr;

        static void Receive(void* context, int bufferIndex);
        CTivImage Take(const std::string& device);

    private:
        std::mutex lock_;
        std::condition_variable arrived_;
        std::deque<CTivImage> frames_;
    };

    FrameBox box_;  // outlives the session, whose thread fills it
    CTonewrightAcq session_;
    std::string device_;
};

}  // namespace tonewright
