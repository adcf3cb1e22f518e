#include "acquisition/zvn/ZvnTransfer.h"

#include <condition_variable>
#include <mutex>
#include <stop_token>
#include <system_error>

#include "acquisition/zvn/ZvnBuffer.h"
#include "acquisition/zvn/ZvnBufferMemory_impl.h"
#include "acquisition/zvn/ZvnClock.h"
#include "acquisition/zvn/ZvnXferNode.h"

namespace {
constexpr ZvnClock::Duration kStopTime{200};
}

/// What the transfer and its thread share; the thread holds it until it ends, however late.
struct ZvnTransfer::State {
    std::shared_ptr<ZvnSource> source;
    std::shared_ptr<ZvnBufferMemory> buffers;
    Callback callback = nullptr;
    void* context = nullptr;

    std::mutex lock;
    std::condition_variable changed;
    int wanted = 0;         // frames that were asked for and have not come
    bool isAtWork = false;  // on one of them
    bool autoEmpty = true;
    bool isClosed = false;
    bool hasEnded = false;
    std::stop_source stop;  // of what was asked for last

    std::mutex callbackLock;  // held while the callback runs
    bool isSilent = false;

    void Call(bool isTrash) {
        const std::scoped_lock held(callbackLock);
        ZvnXferCallbackInfo info(context, isTrash);
        if (callback && !isSilent) callback(&info);
    }

    void TransferOne(const std::stop_token& token) {
        const auto index = buffers->WaitForEmpty(token);
        if (!index) return;
        const ZvnGrab grabbed = source->Grab(buffers->Pixels(*index), token);
        bool emptyNow;
        {
            const std::scoped_lock held(lock);
            if (token.stop_requested()) return;  // the request is gone, and so is a frame that came too late
            wanted = grabbed == ZvnGrab::None ? 0 : wanted - 1;
            emptyNow = autoEmpty;
        }
        if (grabbed == ZvnGrab::None) return;
        if (grabbed == ZvnGrab::Frame) buffers->Fill(*index);
        Call(grabbed == ZvnGrab::Trash);
        if (emptyNow) buffers->Empty(*index);
    }

    /// Takes back what was asked for. @return with `until` true, or after the time to stop
    template <class Until>
    bool StopUntil(Until until) {
        std::unique_lock held(lock);
        wanted = 0;
        stop.request_stop();
        changed.notify_all();
        return ZvnClock::Get().Wait(changed, held, kStopTime, until);
    }
};

ZvnTransfer::ZvnTransfer(Callback callback, void* context, const ZvnLocation&)
    : callback_(callback), context_(context) {}

ZvnTransfer::~ZvnTransfer() { Destroy(); }

bool ZvnTransfer::AddPair(const ZvnXferPair& pair) {
    if (pair_) return false;
    pair_ = pair;
    return true;
}

bool ZvnTransfer::Create() {
    Destroy();
    if (!pair_) return false;
    const auto& source = pair_->source->source_;
    const ZvnBuffer& buffer = *pair_->destination;
    if (!source || !buffer.memory_ || buffer.frame_ != source->GetFrameFormat() || !source->PrepareTransfer()) {
        return false;
    }
    const auto state = std::make_shared<State>();
    state->source = source;
    state->buffers = buffer.memory_;
    if (pair_->callback) state->callback = callback_;
    state->context = context_;
    state->autoEmpty = autoEmpty_;
    try {
        thread_ = std::thread(Run, state);
    } catch (const std::system_error&) {
        return false;
    }
    state_ = state;
    return true;
}

void ZvnTransfer::Destroy() {
    if (!state_) return;
    {
        const std::scoped_lock held(state_->lock);
        state_->isClosed = true;
    }
    const bool ended = state_->StopUntil([this] { return state_->hasEnded; });
    {
        const std::scoped_lock held(state_->callbackLock);
        state_->isSilent = true;
    }
    if (ended) {
        thread_.join();
    } else {
        thread_.detach();
    }
    state_.reset();
}

void ZvnTransfer::SetAutoEmpty(bool enable) {
    autoEmpty_ = enable;
    if (!state_) return;
    const std::scoped_lock held(state_->lock);
    state_->autoEmpty = enable;
}

bool ZvnTransfer::Snap(int count) {
    if (!state_) return false;
    const std::scoped_lock held(state_->lock);
    if (state_->stop.stop_requested()) state_->stop = std::stop_source();
    state_->wanted += count;
    state_->changed.notify_all();
    return true;
}

bool ZvnTransfer::Abort() {
    return state_ && state_->StopUntil([this] { return !state_->isAtWork; });
}

bool ZvnTransfer::Wait(int timeoutMs) {
    if (!state_) return true;
    std::unique_lock held(state_->lock);
    return ZvnClock::Get().Wait(state_->changed, held, ZvnClock::Duration(timeoutMs),
                                [this] { return state_->wanted == 0 && !state_->isAtWork; });
}

int ZvnTransfer::GetExposureMs() const { return state_ ? state_->source->GetExposureMs() : 0; }

void ZvnTransfer::Run(const std::shared_ptr<State>& state) {
    std::unique_lock held(state->lock);
    for (;;) {
        state->changed.wait(held, [&] { return state->isClosed || state->wanted > 0; });
        if (state->isClosed) break;
        state->isAtWork = true;
        const std::stop_token token = state->stop.get_token();
        held.unlock();
        state->TransferOne(token);
        held.lock();
        state->isAtWork = false;
        state->changed.notify_all();
    }
    state->hasEnded = true;
    state->changed.notify_all();
}
