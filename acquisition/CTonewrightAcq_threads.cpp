#include "acquisition/CTonewrightAcq_impl.h"

#include "acquisition/zvn/ZvnClock.h"
#include "acquisition/zvn/ZvnTransfer.h"

namespace {
constexpr ZvnClock::Duration kThreadTime{1000};
}

/// In the transfer's thread, which is not kept waiting.
void CTonewrightAcq::TransferCallback(ZvnXferCallbackInfo* info) {
    if (info->IsTrash()) return;
    auto& session = *static_cast<CTonewrightAcq*>(info->GetContext());
    if (!session.worker_) return;
    const int index = session.chain_->buffer->GetIndex();
    session.hasNewFrame_[static_cast<std::size_t>(index)] = true;
    const std::scoped_lock held(session.worker_->lock);
    session.worker_->queue.push_back(index);
    session.worker_->isSet = true;
    session.worker_->event.notify_all();
}

void CTonewrightAcq::ProcessingThread(const std::shared_ptr<Worker>& worker) {
    std::unique_lock held(worker->lock);
    for (;;) {
        worker->event.wait(held, [&] { return worker->isSet; });
        worker->isSet = false;
        if (worker->stop) break;
        while (!worker->queue.empty() && !worker->isAbandoned) worker->Deliver(held);
    }
    worker->hasEnded = true;
    worker->event.notify_all();
}

/// Takes the head of the queue through conversion and callback, and gives its buffer back.
/// @param held on the lock, which is open in between
void CTonewrightAcq::Worker::Deliver(std::unique_lock<std::mutex>& held) {
    const int index = queue.front();
    queue.erase(queue.begin());
    const std::shared_ptr<Chain> itsChain = chain;
    held.unlock();
    if (itsChain->conversion) {
        const std::scoped_lock converting(itsChain->converting);
        itsChain->conversion->Copy(*itsChain->buffer, index, index);
    }
    held.lock();
    if (isAbandoned) return;
    held.unlock();
    callback(context, index);
    itsChain->buffer->Empty(index);
    held.lock();
}

// The worker stays: the transfer may still be handing it frames.
void CTonewrightAcq::StopThread() {
    if (!worker_) return;
    std::unique_lock held(worker_->lock);
    worker_->stop = true;
    worker_->isSet = true;
    worker_->event.notify_all();
    const bool ended = ZvnClock::Get().Wait(worker_->event, held, kThreadTime, [this] { return worker_->hasEnded; });
    // A thread cannot be ended from outside: from here on this one owns what it works with, and ends when it can.
    worker_->isAbandoned = true;
    held.unlock();
    if (ended) {
        thread_.join();
    } else {
        thread_.detach();
    }
}
