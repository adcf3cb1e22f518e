#include <CLI/CLI.hpp>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <memory>
#include <mutex>

#include "acquisition/CTonewrightAcq.h"
#include "acquisition/zvn/CAcqConfigDlg.h"
#include "acquisition/zvn/ZvnManager.h"
#include "calibration/usable_transform.h"
#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/files.h"
#include "cli/json_values.h"
#include "cli/output_set.h"
#include "cli/whole_files.h"

namespace {

constexpr int kMostFrames = 100'000;
constexpr std::chrono::milliseconds kFrameTime{1000};

struct DeviceOptions {
    std::string device;  ///< empty: the first one
    std::string config;
    std::string file;  ///< written by grab, read by send
    int fileFormat = -1;
    int count = 1;
};

const char* kindWord(int deviceKind) {
    switch (deviceKind) {
        case DeviceKindFrameGrabber:
            return "frame grabber";
        case DeviceKindCameraLink:
            return "Camera Link camera";
        default:
            return "other";
    }
}

/// The names of all servers that the session can use.
std::vector<std::string> listDevices() {
    std::vector<std::string> names;
    const int count = ZvnManager::GetServerCount();
    for (int server = 0; server < count; ++server) {
        char name[64];
        if (!ZvnManager::GetServerName(server, name, sizeof name)) continue;
        if (CTonewrightAcq::Classify(ZvnLocation(name)).category != 0) names.emplace_back(name);
    }
    return names;
}

Outcome devices() {
    Json list = Json::array();
    for (const std::string& name : listDevices()) {
        const ZvnLocation location(name);
        list.push_back({{"name", name},
                        {"kind", kindWord(CTonewrightAcq::Classify(location).deviceKind)},
                        {"acquisitionResources", ZvnManager::GetResourceCount(location, 0)},
                        {"acquisitionDevices", ZvnManager::GetResourceCount(location, 8)}});
    }
    return {list};
}

/// Frames on their way from the session's thread to the main one.
class FrameBox {
public:
    CTonewrightAcq* session = nullptr;

    static void Receive(void* context, int bufferIndex) {
        auto& self = *static_cast<FrameBox*>(context);
        const std::scoped_lock held(self.lock_);
        self.frames_.push_back(*self.session->GetImage(bufferIndex));  // empty where the memory is short
        self.arrived_.notify_all();
    }

    /// @throw WorkFailure where none comes, or there was no memory for it
    CTivImage Take(const std::string& device) {
        std::unique_lock held(lock_);
        if (!arrived_.wait_for(held, kFrameTime, [this] { return !frames_.empty(); })) {
            throw WorkFailure(device + ": no frame came within " + std::to_string(kFrameTime.count()) + " ms");
        }
        CTivImage frame = std::move(frames_.front());
        frames_.pop_front();
        if (!frame.IsAllocated()) throw WorkFailure(device + ": not enough memory for a frame");
        return frame;
    }

private:
    std::mutex lock_;
    std::condition_variable arrived_;
    std::deque<CTivImage> frames_;
};

/// Connects the session with the device that the options name. @return the device's name
std::string connect(CTonewrightAcq& session, const DeviceOptions& options) {
    const std::vector<std::string> names = listDevices();
    std::string device = options.device;
    if (device.empty() && !names.empty()) device = names.front();
    if (!names.empty() && std::ranges::find(names, device) == names.end()) {
        std::string known;
        for (const auto& name : names) known += "\n  " + name;
        throw WorkFailure("there is no device " + device + ", but" + known);
    }
    CAcqConfigDlg::SetAsk([&](void*) { return CAcqConfigDlg::Choice{ZvnLocation(device), options.config}; });
    const std::unique_ptr<void, void (*)(void*)> asking(&device, [](void*) { CAcqConfigDlg::SetAsk(nullptr); });
    Require([&] { return session.Configure(); }, device, "cannot be configured");
    return device;
}

/// "frame.bmp" becomes "frame-07.bmp" among 12 frames.
std::string numbered(const std::string& path, int number, int count) {
    if (count == 1) return path;
    const std::filesystem::path whole(path);
    std::string digits = std::to_string(number);
    digits.insert(0, std::to_string(count).size() - digits.size(), '0');
    std::string name = whole.stem().native();
    name.append("-").append(digits).append(whole.extension().native());
    return (whole.parent_path() / name).native();
}

Outcome grab(const DeviceOptions& options) {
    FrameBox box;  // outlives the session, whose thread fills it
    CTonewrightAcq session(FrameBox::Receive, &box, nullptr);
    box.session = &session;
    const std::string device = connect(session, options);
    const auto outputs = std::make_shared<OutputSet>();
    CTivImage frame;
    for (int number = 1; number <= options.count; ++number) {
        Require([&] { return session.Snap(); }, device, "cannot grab");
        frame = box.Take(device);
        outputs->Add(numbered(options.file, number, options.count),
                     [&](const std::string& name) { SaveImage(frame, name, options.fileFormat); });
    }
    return {{{"device", device},
             {"kind", kindWord(session.GetDeviceKind())},
             {"format", FormatName(frame.GetFormat())},
             {"width", frame.GetWidth()},
             {"height", frame.GetHeight()},
             {"written", outputs->GetPaths()}},
            kDone,
            outputs};
}

Outcome send(const DeviceOptions& options) {
    const CoefficientFile file = ReadWholeCoefficients(options.file);
    const std::string reason = WhyUnusableTransform(file.transform, file.head.terms);
    if (!reason.empty()) throw WorkFailure(options.file + ": " + reason);
    CTonewrightAcq session([](void*, int) {}, nullptr, nullptr);
    const std::string device = connect(session, options);
    Require([&] { return session.TransferFile(options.file.c_str(), true); }, device, "cannot be written to");
    return {{{"file", options.file}, {"device", device}, {"kind", kindWord(session.GetDeviceKind())}, {"sent", true}}};
}

std::optional<int> parseCount(const std::string& text) {
    const auto count = ParseInteger(text);
    return count && *count >= 1 && *count <= kMostFrames ? count : std::nullopt;
}

void addDeviceOption(CLI::App& command, DeviceOptions& options) {
    command.add_option("--device", options.device, "The device's name, as devices lists it (default: the first)")
        ->type_name("NAME");
}

void addGrab(CLI::App& tool, Work& work) {
    CLI::App* command = AddCommand(tool, "grab", "Grabs frames from a device and saves them.");
    const auto options = std::make_shared<DeviceOptions>();
    AddTextOption(
        *command, "OUTPUT",
        [options](const std::string& path) {
            options->file = path;
            options->fileFormat = FindFileFormat(path);
            return options->fileFormat >= 0;
        },
        "a name that ends in .bmp, .tif, .zvk or .crc",
        "The file to write: .bmp, .tif, .zvk or .crc; with several frames a number goes before the extension")
        ->required();
    addDeviceOption(*command, *options);
    command->add_option("--config", options->config, "A text of lines \"feature = value\", applied on opening")
        ->type_name("FILE");
    AddParsed(*command, "--count", options->count, parseCount, "a number from 1 to " + std::to_string(kMostFrames),
              "How many frames to grab (default: 1)")
        ->type_name("N");
    command->callback([options, &work] { work = [options] { return grab(*options); }; });
}

void addSend(CLI::App& tool, Work& work) {
    CLI::App* command = AddCommand(tool, "send", "Writes a coefficient file to a device.");
    const auto options = std::make_shared<DeviceOptions>();
    command->add_option("FILE", options->file, "A coefficient file (.ccor)")->required();
    addDeviceOption(*command, *options);
    command->callback([options, &work] { work = [options] { return send(*options); }; });
}

}  // namespace

void AddDeviceCommands(CLI::App& tool, Work& work) {
    AddCommand(tool, "devices", "Lists the cameras and frame grabbers of the machine.")->callback([&work] {
        work = devices;
    });
    addGrab(tool, work);
    addSend(tool, work);
}
