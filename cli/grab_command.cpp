#include <CLI/CLI.hpp>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <memory>

#include "cli/arguments.h"
#include "cli/devices.h"
#include "cli/frame_mean.h"
#include "cli/json_values.h"
#include "cli/output_set.h"
#include "imagefile/picture_file.h"

namespace {

constexpr int kMostFrames = 100'000;
constexpr std::chrono::milliseconds kFrameTime{1000};

struct GrabOptions {
    DeviceChoice choice;
    std::string file;
    int fileFormat = -1;
    int count = 1;
    int average = 1;
    std::string dark;
    std::string flat;
};

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

/// A device that frames come from.
class Grabber {
public:
    explicit Grabber(const DeviceChoice& choice) : session_(FrameBox::Receive, &box_, nullptr) {
        box_.session = &session_;
        device_ = Connect(session_, choice);
    }

    const std::string& GetDevice() const { return device_; }
    const char* GetKind() const { return GetDeviceWord(session_.GetDeviceKind()); }

    CTivImage Grab() {
        Require([&] { return session_.Snap(); }, device_, "cannot grab");
        return box_.Take(device_);
    }

private:
    FrameBox box_;  // outlives the session, whose thread fills it
    CTonewrightAcq session_;
    std::string device_;
};

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

/// The mean of as many frames as are asked for, corrected.
CTivImage takePicture(Grabber& grabber, const GrabOptions& options, const FrameCorrection& correction) {
    if (options.average == 1 && correction.IsEmpty()) return grabber.Grab();
    FrameMean mean;
    for (int i = 0; i < options.average; ++i) {
        const std::string wrong = mean.Add(grabber.Grab());
        if (!wrong.empty()) throw WorkFailure(grabber.GetDevice() + ": " + wrong);
    }
    const std::string wrong = mean.Check(correction);
    if (!wrong.empty()) throw WorkFailure(wrong);
    CTivImage picture = mean.Make(correction);
    if (!picture.IsAllocated()) throw WorkFailure(grabber.GetDevice() + ": not enough memory for a frame");
    return picture;
}

Outcome grab(const GrabOptions& options) {
    FrameCorrection correction;
    if (!options.dark.empty()) correction.dark = LoadImage(options.dark);
    if (!options.flat.empty()) correction.flat = LoadImage(options.flat);
    Grabber grabber(options.choice);
    const auto outputs = std::make_shared<OutputSet>();
    CTivImage picture;
    for (int number = 1; number <= options.count; ++number) {
        picture = takePicture(grabber, options, correction);
        outputs->Add(numbered(options.file, number, options.count),
                     [&](const std::string& name) { SaveImage(picture, name, options.fileFormat); });
    }
    return {{{"device", grabber.GetDevice()},
             {"kind", grabber.GetKind()},
             {"format", FormatName(picture.GetFormat())},
             {"width", picture.GetWidth()},
             {"height", picture.GetHeight()},
             {"average", options.average},
             {"written", outputs->GetPaths()}},
            kDone,
            outputs};
}

auto parseUpTo(int most) {
    return [most](const std::string& text) {
        const auto count = ParseInteger(text);
        return count && *count >= 1 && *count <= most ? count : std::nullopt;
    };
}

}  // namespace

void AddGrabCommand(CLI::App& tool, Work& work) {
    CLI::App* command = AddCommand(tool, "grab", "Grabs frames from a device and saves them.");
    const auto options = std::make_shared<GrabOptions>();
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
    AddDeviceOptions(*command, options->choice, true);
    AddParsed(*command, "--count", options->count, parseUpTo(kMostFrames),
              "a number from 1 to " + std::to_string(kMostFrames), "How many pictures to save (default: 1)")
        ->type_name("N");
    AddParsed(*command, "--average", options->average, parseUpTo(kMostAveraged),
              "a number from 1 to " + std::to_string(kMostAveraged),
              "How many frames make a picture, which is their mean (default: 1)")
        ->type_name("N");
    command->add_option("--dark", options->dark, "A picture taken without light, to subtract")->type_name("FILE");
    command->add_option("--flat", options->flat, "A picture of an even surface, to divide by")->type_name("FILE");
    command->callback(
        [options, &work] { work = [options] { return BackendWords().Explain([&] { return grab(*options); }); }; });
}
