#include "app/FrameMessage.h"

#include <QMetaObject>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

#include "app/CMainFrame.h"

namespace frame_message {

namespace {

struct Road {
    std::mutex lock;
    std::condition_variable handled;
    CMainFrame* frame = nullptr;  // null: closed
};

// Goes with the message, whether it was handled, threw or was dropped, and sets its sender free.
class Ticket {
public:
    Ticket(std::shared_ptr<Road> road, std::shared_ptr<bool> done) : road_(std::move(road)), done_(std::move(done)) {}
    Ticket(const Ticket&) = delete;
    Ticket& operator=(const Ticket&) = delete;
    ~Ticket() {
        {
            const std::lock_guard hold(road_->lock);
            *done_ = true;
        }
        road_->handled.notify_all();
    }

private:
    std::shared_ptr<Road> road_;
    std::shared_ptr<bool> done_;
};

// A thread that is late may still hold it when the process ends.
const std::shared_ptr<Road>& road() {
    static const auto theRoad = std::make_shared<Road>();
    return theRoad;
}

}  // namespace

void Open(CMainFrame& frame) {
    const std::lock_guard hold(road()->lock);
    road()->frame = &frame;
}

void Close() {
    {
        const std::lock_guard hold(road()->lock);
        road()->frame = nullptr;
    }
    road()->handled.notify_all();
}

void Send(int bufferIndex) {
    const std::shared_ptr<Road> own = road();
    const auto done = std::make_shared<bool>(false);
    std::unique_lock hold(own->lock);
    CMainFrame* const frame = own->frame;
    if (!frame) return;
    // The window can't go while the road is open and locked, so posting to it is safe.
    QMetaObject::invokeMethod(
        frame, [frame, bufferIndex, ticket = std::make_shared<Ticket>(own, done)] { frame->OnFrameReady(bufferIndex); },
        Qt::QueuedConnection);
    own->handled.wait(hold, [&] { return *done || own->frame != frame; });
}

}  // namespace frame_message

void AcquisitionCallback(void*, int bufferIndex) {
    frame_message::Send(bufferIndex);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
}
