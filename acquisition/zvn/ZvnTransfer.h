#pragma once

#include <memory>
#include <optional>
#include <thread>

#include "acquisition/zvn/ZvnLocation.h"
#include "acquisition/zvn/ZvnXferCallbackInfo.h"
#include "acquisition/zvn/ZvnXferPair.h"

/// Brings frames from a source into buffers, in a thread of its own, from Create to Destroy.
///
/// Each frame goes into the next buffer that is empty, in turn; the buffer is then full and the current one, and the
/// callback runs in the transfer's thread. While no buffer is empty the transfer waits: no frame is lost.
/// The other calls belong to one thread, which is not the transfer's.
class ZvnTransfer {
public:
    using Callback = void (*)(ZvnXferCallbackInfo* info);

    /// @param callback must be quick and must not call this object
    ZvnTransfer(Callback callback, void* context, const ZvnLocation& location);
    ZvnTransfer(const ZvnTransfer&) = delete;
    ZvnTransfer& operator=(const ZvnTransfer&) = delete;
    ~ZvnTransfer();

    /// One pair is served. @return false for a second one
    bool AddPair(const ZvnXferPair& pair);
    /// @return false without a pair of created ends that fit, or where the source refuses or no thread can be had
    bool Create();
    /// Stops what runs and ends the thread. Once this returns the callback does not run, now or later. A source that
    /// does not stop within 200 ms is left to its thread, which holds what it needs and ends when the source does.
    void Destroy();
    bool IsCreated() const { return state_ != nullptr; }

    /// @param enable whether a buffer is empty again once the callback has returned (as at the start), or only after
    ///        ZvnBuffer::Empty
    void SetAutoEmpty(bool enable);
    /// Asks for `count` frames and returns at once. @return false when not created
    bool Snap(int count);
    /// Takes back what was asked for and has not come; waits at most 200 ms until the source has stopped.
    bool Abort();
    /// @return whether all that was asked for has come (or none was), within `timeoutMs`
    bool Wait(int timeoutMs);
    /// How long the source gathers light for a frame, in milliseconds, which a wait has to allow for; 0 where unknown.
    int GetExposureMs() const;

private:
    struct State;
    static void Run(const std::shared_ptr<State>& state);

    Callback callback_;
    void* context_;
    bool autoEmpty_ = true;
    std::optional<ZvnXferPair> pair_;
    std::shared_ptr<State> state_;
    std::thread thread_;
};
