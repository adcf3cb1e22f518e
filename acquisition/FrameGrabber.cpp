#include "acquisition/FrameGrabber.h"

#include <chrono>

namespace tonewright {

using namespace tonewright;

namespace {

constexpr std::chrono::milliseconds kFrameTime{1000};

}  // namespace

void FrameGrabber::FrameBox::Receive(void* context, int bufferIndex) {
    auto& self = *static_cast<FrameBox*>(context);
    const std::scoped_lock held(self.lock_);
    self.frames_.push_back(*self.session_->GetImage(bufferIndex));  // empty where the memory is short
    self.arrived_.notify_all();
}

CTivImage FrameGrabber::FrameBox::Take(const std::string& device) {
    std::unique_lock held(lock_);
    if (!arrived_.wait_for(held, kFrameTime, [this] { return !frames_.empty(); })) {
        throw WorkFailure(device + ": no frame came within " + std::to_string(kFrameTime.count()) + " ms");
    }
    CTivImage frame = std::move(frames_.front());
    frames_.pop_front();
    if (!frame.IsAllocated()) throw WorkFailure(device + ": not enough memory for a frame");
    return frame;
}

FrameGrabber::FrameGrabber(const DeviceChoice& choice) : session_(FrameBox::Receive, &box_, nullptr) {
    box_.session_ = &session_;
    device_ = ConnectSession(session_, choice);
}

CTivImage FrameGrabber::Grab() {
    Require([&] { return session_.Snap(); }, device_, "cannot grab");
    return box_.Take(device_);
}

CTivImage FrameGrabber::GrabMean(int count, const FrameCorrection& correction) {
    if (count == 1 && correction.IsEmpty()) return Grab();
    FrameMean mean;
    for (int i = 0; i < count; ++i) {
        const std::string wrong = mean.Add(Grab());
        if (!wrong.empty()) throw WorkFailure(device_ + ": " + wrong);
    }
    const std::string wrong = mean.Check(correction);
    if (!wrong.empty()) throw WorkFailure(wrong);
    CTivImage picture = mean.Make(correction);
    if (!picture.IsAllocated()) throw WorkFailure(device_ + ": not enough memory for a frame");
    return picture;
}

}  // namespace tonewright
