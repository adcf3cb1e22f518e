#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <vector>

#include "acquisition/CTonewrightAcq.h"
#include "foundation/library_texts.h"

namespace tonewright {

// Devices for programs without a dialog, which work with exceptions (foundation/library_texts.h).

/// Which device, and how it is opened.
struct DeviceChoice {
    std::string device;  ///< empty: the first one
    std::string config;  ///< a configuration file; empty: the device stays as it is
};

/// A device kind for documents and for a person.
const char* GetDeviceWord(int deviceKind);

/// The names of all servers that the session can use.
std::vector<std::string> ListDevices();

/// @return the device's name: the one that was chosen, or the first. @throw WorkFailure for one that is not there
std::string FindDevice(const std::string& chosen);

/// Connects the session with a device. @return the device's name @throw WorkFailure
std::string ConnectSession(CTonewrightAcq& session, const DeviceChoice& choice);

/// Keeps what the devices' backend tells while it lives, and puts it where it belongs: notes are told at once, and what
/// went wrong goes behind the message of the failure that it explains, else out as a warning. One at a time.
class BackendWords {
public:
    /// @param tell takes a line for a person, on whatever thread that happens
    explicit BackendWords(std::function<void(const std::string& line)> tell);
    BackendWords(const BackendWords&) = delete;
    BackendWords& operator=(const BackendWords&) = delete;
    ~BackendWords();

    template <class Call>
    auto Explain(Call call) {
        try {
            auto result = call();
            for (const std::string& text : Take()) tell_("warning: " + text);
            return result;
        } catch (const tonewright::WorkFailure& failure) {
            std::string whole = failure.what();
            for (const std::string& text : Take()) whole.append("\n").append(text);
            throw tonewright::WorkFailure(whole);
        }
    }

private:
    std::vector<std::string> Take();

    std::function<void(const std::string&)> tell_;
    std::mutex lock_;
    std::vector<std::string> errors_;
};

}  // namespace tonewright
