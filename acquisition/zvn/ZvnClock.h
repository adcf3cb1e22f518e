#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>

/// The time in which devices are waited for. Tests put another in its place, so that what they hold does not depend on
/// how busy the machine is. Any thread may ask it.
class ZvnClock {
public:
    using Time = std::chrono::steady_clock::time_point;
    using Duration = std::chrono::milliseconds;

    virtual ~ZvnClock() = default;
    virtual Time Now() { return std::chrono::steady_clock::now(); }
    virtual void Sleep(Duration time);
    /// Waits for `changed`, and looks whenever it comes. @return with `until` true, or after the time
    virtual bool Wait(std::condition_variable& changed, std::unique_lock<std::mutex>& held, Duration time,
                      const std::function<bool()>& until);

    /// The one in force: the machine's own until another is set.
    static ZvnClock& Get();
    /// @param clock lives until another is set and no device is at work with it; null: the machine's own
    static void Set(ZvnClock* clock);
};
