#include "acquisition/zvn/ZvnClock.h"

#include <atomic>
#include <thread>

namespace {

std::atomic<ZvnClock*> clockInForce{nullptr};

}  // namespace

void ZvnClock::Sleep(Duration time) { std::this_thread::sleep_for(time); }

bool ZvnClock::Wait(std::condition_variable& changed, std::unique_lock<std::mutex>& held, Duration time,
                    const std::function<bool()>& until) {
    return changed.wait_for(held, time, until);
}

ZvnClock& ZvnClock::Get() {
    static ZvnClock ofTheMachine;
    ZvnClock* const clock = clockInForce;
    return clock ? *clock : ofTheMachine;
}

void ZvnClock::Set(ZvnClock* clock) { clockInForce = clock; }
