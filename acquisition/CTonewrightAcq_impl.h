#pragma once

#include <condition_variable>
#include <mutex>
#include <vector>

#include "acquisition/CTonewrightAcq.h"
#include "acquisition/zvn/ZvnBufferWithTrash.h"

/// The buffers in force. A frame on its way holds them too, so that they stay whole under the processing thread when
/// the session drops them.
struct CTonewrightAcq::Chain {
    explicit Chain(std::unique_ptr<ZvnBufferWithTrash> frames) : buffer(std::move(frames)) {}

    std::unique_ptr<ZvnBufferWithTrash> buffer;
    std::unique_ptr<ZvnBuffer> conversion;  ///< only where the format calls for it
    std::mutex
        converting;  ///< held while a frame is converted and while Reconnect reads a picture; never in a callback

    ZvnBuffer& Pictures() const { return conversion ? *conversion : *buffer; }
};

/// What the session and its processing thread share; the thread holds it until it ends, however late.
struct CTonewrightAcq::Worker {
    Worker(FrameCallback frameCallback, void* callbackContext) : callback(frameCallback), context(callbackContext) {
        queue.reserve(10);
    }

    FrameCallback callback;
    void* context;
    std::mutex lock;  ///< guards all below; held for no callback and no work on pixels
    std::condition_variable event;
    bool isSet = false;  ///< the event, which resets itself
    bool stop = false;
    bool isAbandoned = false;  ///< the session is gone
    bool hasEnded = false;
    std::vector<int> queue;        ///< indices of buffers that wait for the callback
    std::shared_ptr<Chain> chain;  ///< whose they are

    void Deliver(std::unique_lock<std::mutex>& held);
};
