#include "app/FrameMessage.h"

#include <QMetaObject>
#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

#include "app/CMainFrame.h"

namespace frame_message {

namespace {

// What one sender waits at. Opening it takes no lock, so that it may happen anywhere, also under the road's.
class Gate {
public:
    void Open() {
        m_open = true;
        m_open.notify_all();
    }
    void Wait() const { m_open.wait(false); }

private:
    std::atomic<bool> m_open = false;
};

struct Road {
    std::mutex lock;
    CMainFrame* frame = nullptr;  // null: closed
    std::vector<std::shared_ptr<Gate>> gates;
};

// Goes with the message, whether it was handled, threw or was dropped, and sets its sender free. Its last holder may be
// the sender itself, where the window was quicker.
class Ticket {
public:
    explicit Ticket(std::shared_ptr<Gate> gate) : m_gate(std::move(gate)) {}
    Ticket(const Ticket&) = delete;
    Ticket& operator=(const Ticket&) = delete;
    ~Ticket() { m_gate->Open(); }

private:
    std::shared_ptr<Gate> m_gate;
};

// A thread that is late may still hold it when the process ends.
std::shared_ptr<Road> road() {
    static const auto theRoad = std::make_shared<Road>();
    return theRoad;
}

}  // namespace

void Open(CMainFrame& frame) {
    const std::lock_guard hold(road()->lock);
    road()->frame = &frame;
}

void Close() {
    const std::shared_ptr<Road> own = road();
    const std::lock_guard hold(own->lock);
    own->frame = nullptr;
    for (const auto& gate : own->gates) gate->Open();
}

void Send(int bufferIndex) {
    const std::shared_ptr<Road> own = road();
    const auto gate = std::make_shared<Gate>();
    {
        // The window can't go while the road is open and locked, so posting to it is safe.
        const std::lock_guard hold(own->lock);
        CMainFrame* const frame = own->frame;
        if (!frame) return;
        own->gates.push_back(gate);
        QMetaObject::invokeMethod(
            frame, [frame, bufferIndex, ticket = std::make_shared<Ticket>(gate)] { frame->OnFrameReady(bufferIndex); },
            Qt::QueuedConnection);
    }
    gate->Wait();
    const std::lock_guard hold(own->lock);
    std::erase(own->gates, gate);
}

}  // namespace frame_message

void AcquisitionCallback(void*, int bufferIndex) {
    frame_message::Send(bufferIndex);
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
}
