#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "acquisition/CTonewrightAcq.h"
#include "acquisition/zvn/CAbortDlg.h"
#include "acquisition/zvn/CAcqConfigDlg.h"
#include "tests/support/library.h"

using Clock = std::chrono::steady_clock;

inline double millisecondsSince(Clock::time_point start) {
    return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
}

/// A folder of its own with the INI file of simulated servers, in force as long as it lives; answers the session's two
/// dialogs.
class Simulation {
public:
    explicit Simulation(const std::string& ini) {
        std::string pattern = (std::filesystem::temp_directory_path() / "acquisition.XXXXXX").string();
        folder_ = mkdtemp(pattern.data());
        Describe(ini);
        setenv("ZVN_SIMULATION", (folder_ / "simulation.ini").c_str(), 1);
        CAcqConfigDlg::SetAsk([this](void*, const CAcqConfigDlg::Choice*) {
            ++questions;
            return choice;
        });
        WaitAtMost(10'000);  // frames come at once, but the machine may be busy
        ClearLastError();
    }
    Simulation(const Simulation&) = delete;
    Simulation& operator=(const Simulation&) = delete;
    ~Simulation() {
        CAcqConfigDlg::SetAsk(nullptr);
        CAbortDlg::SetWaitFor(nullptr);
        unsetenv("ZVN_SIMULATION");
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    void Describe(const std::string& ini) const { Write("simulation.ini", ini); }
    void Pick(const std::string& server, const std::string& configFile = "") {
        choice = CAcqConfigDlg::Choice{ZvnLocation(server), configFile};
    }

    std::string Path(const std::string& name) const { return (folder_ / name).string(); }
    void Write(const std::string& name, const std::string& content) const {
        std::filesystem::create_directories((folder_ / name).parent_path());
        std::ofstream(folder_ / name, std::ios::binary) << content;
    }
    std::string Read(const std::string& name) const {
        std::ifstream file(folder_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    /// How long Snap waits for a frame, in the place of its second.
    static void WaitAtMost(int ms) {
        CAbortDlg::SetWaitFor([ms](void*, ZvnTransfer& transfer, int) { return transfer.Wait(ms); });
    }

    std::optional<CAcqConfigDlg::Choice> choice;  ///< empty: the user cancels
    int questions = 0;

private:
    std::filesystem::path folder_;
};

/// A gate that callbacks wait at.
class Gate {
public:
    void Open() {
        const std::scoped_lock held(lock_);
        isOpen_ = true;
        changed_.notify_all();
    }
    void Pass() {
        std::unique_lock held(lock_);
        changed_.wait(held, [this] { return isOpen_; });
    }

private:
    std::mutex lock_;
    std::condition_variable changed_;
    bool isOpen_ = false;
};

/// A session whose frames are noted in the order in which the callback gets them.
class RecordedSession {
public:
    struct Frame {
        int index;
        std::uint32_t color;  ///< of pixel (0, 0), as RGB
        bool operator==(const Frame&) const = default;
    };

    /// @param inCallback runs in the processing thread, after the frame was noted
    explicit RecordedSession(std::function<void()> inCallback = {})
        : inCallback_(std::move(inCallback)), session(Receive, this, nullptr) {}

    /// Waits, for some seconds at most, until as many frames have come.
    std::vector<Frame> WaitForFrames(std::size_t count) {
        std::unique_lock held(lock_);
        arrived_.wait_for(held, std::chrono::seconds(5), [&] { return frames_.size() >= count; });
        return frames_;
    }
    std::vector<Frame> GetFrames() { return WaitForFrames(0); }

private:
    static void Receive(void* context, int index) {
        auto& self = *static_cast<RecordedSession*>(context);
        const CTivImage& image = *self.session.GetImage(index);
        {
            const std::scoped_lock held(self.lock_);
            self.frames_.push_back({index, image.GetData(0, 0).AsRgb()});
            self.arrived_.notify_all();
        }
        if (self.inCallback_) self.inCallback_();
    }

    std::function<void()> inCallback_;
    std::mutex lock_;
    std::condition_variable arrived_;
    std::vector<Frame> frames_;

public:
    CTonewrightAcq session;
};
