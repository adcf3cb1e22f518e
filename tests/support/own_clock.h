#pragma once

#include "acquisition/zvn/ZvnClock.h"

/// A clock in force as long as it lives.
struct OwnClock : ZvnClock {
    OwnClock() { Set(this); }
    OwnClock(const OwnClock&) = delete;
    OwnClock& operator=(const OwnClock&) = delete;
    ~OwnClock() override { Set(nullptr); }
};

/// Counts the waits that ended without what they waited for.
struct WatchedClock : OwnClock {
    bool Wait(std::condition_variable& changed, std::unique_lock<std::mutex>& held, Duration time,
              const std::function<bool()>& until) override {
        const bool has = ZvnClock::Wait(changed, held, time, until);
        if (!has) ++runOut;
        return has;
    }
    int runOut = 0;
};
