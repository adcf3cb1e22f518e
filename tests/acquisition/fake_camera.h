#pragma once

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/scratch.h"

extern char** environ;

/// A fake GigE Vision camera of Debian's aravis-tools on the loopback network, as a process of its own. The network
/// port is the machine's only one for such cameras, so that one at a time runs.
class FakeCamera {
public:
    /// @param genicam a file that describes the camera's features, empty for the tool's own
    /// @param lostPackets of a thousand
    explicit FakeCamera(std::string genicam = "", int lostPackets = 0)
        : genicam_(std::move(genicam)), lostPackets_(lostPackets) {
        setenv("XDG_DATA_HOME", scratchFolder().c_str(), 1);  // what is kept of cameras is no user's
        lock_ =
            open((std::filesystem::temp_directory_path() / "fake-gige-camera.lock").c_str(), O_CREAT | O_RDWR, 0666);
        flock(lock_, LOCK_EX);
        Plug();
    }
    FakeCamera(const FakeCamera&) = delete;
    FakeCamera& operator=(const FakeCamera&) = delete;
    ~FakeCamera() {
        Unplug();
        close(lock_);
    }

    /// The tool's path, empty where it is not installed.
    static std::string FindTool() {
        const std::string path = std::getenv("PATH") ? std::getenv("PATH") : "";
        for (std::size_t begin = 0; begin < path.size();) {
            const std::size_t end = std::min(path.find(':', begin), path.size());
            const std::string tool = path.substr(begin, end - begin) + "/arv-fake-gv-camera-0.8";
            if (access(tool.c_str(), X_OK) == 0) return tool;
            begin = end + 1;
        }
        return {};
    }

    void Plug() {
        const std::string tool = FindTool();
        std::vector<std::string> words{tool, "-i", "127.0.0.1", "-s", Serial()};
        if (!genicam_.empty()) words.insert(words.end(), {"-g", genicam_});
        if (lostPackets_ > 0) words.insert(words.end(), {"-r", std::to_string(lostPackets_)});
        std::vector<char*> arguments;
        for (auto& word : words) arguments.push_back(word.data());
        arguments.push_back(nullptr);
        if (posix_spawn(&process_, tool.c_str(), nullptr, nullptr, arguments.data(), environ) != 0) process_ = 0;
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
    }

    void Unplug() {
        if (process_ > 0) {
            kill(process_, SIGKILL);
            waitpid(process_, nullptr, 0);
        }
        process_ = 0;
    }

    bool IsRunning() const { return process_ > 0 && waitpid(process_, nullptr, WNOHANG) == 0; }
    /// The server's name: model and serial number.
    std::string Name() const { return "Fake-" + Serial(); }
    static std::string Serial() { return std::to_string(getpid()); }

private:
    std::string genicam_;
    int lostPackets_;
    int lock_ = -1;
    pid_t process_ = 0;
};
