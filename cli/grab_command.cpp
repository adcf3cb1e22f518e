#include <CLI/CLI.hpp>
#include <filesystem>
#include <memory>

#include "acquisition/FrameGrabber.h"
#include "cli/arguments.h"
#include "cli/devices.h"
#include "cli/json_values.h"
#include "cli/output_set.h"
#include "imagefile/picture_file.h"

using namespace tonewright;

namespace {

constexpr int kMostFrames = 100'000;

struct GrabOptions {
    DeviceChoice choice;
    std::string file;
    int fileFormat = -1;
    int count = 1;
    int average = 1;
    std::string dark;
    std::string flat;
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

Outcome grab(const GrabOptions& options) {
    FrameCorrection correction;
    if (!options.dark.empty()) correction.dark = LoadImage(options.dark);
    if (!options.flat.empty()) correction.flat = LoadImage(options.flat);
    FrameGrabber grabber(options.choice);
    const auto outputs = std::make_shared<OutputSet>();
    CTivImage picture;
    for (int number = 1; number <= options.count; ++number) {
        picture = grabber.GrabMean(options.average, correction);
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

void check(const GrabOptions& options) {
    std::vector<std::string> pictures;
    for (int number = 1; number <= options.count; ++number) {
        pictures.push_back(numbered(options.file, number, options.count));
    }
    RequireDifferentPlaces(pictures, {options.dark, options.flat});
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
    command->callback([options, &work] {
        check(*options);
        work = [options] { return BackendWords(Tell).Explain([&] { return grab(*options); }); };
    });
}
