#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "acquisition/CTonewrightAcq.h"
#include "cli/command.h"

// What the commands about devices share.

/// Which device, and how it is opened.
struct DeviceChoice {
    std::string device;  ///< empty: the first one
    std::string config;  ///< a configuration file; empty: the device stays as it is
};

/// Adds --device, and --config where it is asked for.
void AddDeviceOptions(CLI::App& command, DeviceChoice& choice, bool withConfig);

/// A device kind for documents and for a person.
const char* GetDeviceWord(int deviceKind);

/// The names of all servers that the session can use.
std::vector<std::string> ListDevices();

/// @return the device's name: the one that was chosen, or the first. @throw WorkFailure for one that is not there
std::string FindDevice(const std::string& chosen);

/// Connects the session with a device. @return the device's name @throw WorkFailure
std::string Connect(CTonewrightAcq& session, const DeviceChoice& choice);

/// Keeps what the devices' backend tells while a command runs, and puts it where it belongs: notes go to standard error
/// at once, and what went wrong goes behind the message of the failure that it explains, else out as a warning.
class BackendWords {
public:
    BackendWords();
    BackendWords(const BackendWords&) = delete;
    BackendWords& operator=(const BackendWords&) = delete;
    ~BackendWords();

    template <class Call>
    auto Explain(Call call) {
        try {
            auto result = call();
            for (const std::string& text : Take()) Tell("warning: " + text);
            return result;
        } catch (const WorkFailure& failure) {
            std::string whole = failure.what();
            for (const std::string& text : Take()) whole.append("\n").append(text);
            throw WorkFailure(whole);
        }
    }

private:
    std::vector<std::string> Take();

    std::mutex lock_;
    std::vector<std::string> errors_;
};
