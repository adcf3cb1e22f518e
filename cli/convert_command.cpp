#include <CLI/CLI.hpp>
#include <memory>

#include "cli/arguments.h"
#include "cli/command.h"
#include "cli/json_values.h"
#include "cli/output_set.h"
#include "imagefile/CTivImageFileFormat.h"
#include "imagefile/picture_file.h"

using namespace tonewright;

namespace {

struct ConvertOptions {
    std::string input;
    std::string output;
    int fileFormat = -1;
    CTivData::Format format = CTivData::FormatNone;  ///< none: the image stays as it is
    int mode = 0;
};

CTivImage converted(const CTivImage& source, const ConvertOptions& options) {
    CTivImage result;
    Require(
        [&] {
            return result.Set(source.GetWidth(), source.GetHeight(), options.format, nullptr, true) &&
                   result.ConvertFormat(source, options.mode);
        },
        options.input, "cannot convert the image");
    return result;
}

Outcome convert(const ConvertOptions& options) {
    CTivImage image = LoadImage(options.input);
    if (options.format != CTivData::FormatNone) image = converted(image, options);
    const auto outputs = std::make_shared<OutputSet>();
    outputs->Add(options.output, [&](const std::string& name) { SaveImage(image, name, options.fileFormat); });
    return {{{"input", options.input},
             {"output", options.output},
             {"format", FormatName(image.GetFormat())},
             {"width", image.GetWidth()},
             {"height", image.GetHeight()}},
            kDone,
            outputs};
}

std::optional<CTivData::Format> parseFormat(const std::string& name) {
    const CTivData::Format format = CTivData::FindFormat(name.c_str());
    return format == CTivData::FormatNone ? std::nullopt : std::optional(format);
}

std::optional<int> parseMode(const std::string& text) {
    const auto mode = ParseInteger(text);
    return mode && *mode >= 0 && *mode <= 2 ? mode : std::nullopt;
}

}  // namespace

void AddConvertCommand(CLI::App& tool, Work& work) {
    CLI::App* command = AddCommand(tool, "convert", "Saves an image in another kind of file or another format.");
    const auto options = std::make_shared<ConvertOptions>();
    command->add_option("INPUT", options->input, "An image of any kind")->required();
    AddTextOption(
        *command, "OUTPUT",
        [options](const std::string& path) {
            options->output = path;
            options->fileFormat = FindFileFormat(path);
            return options->fileFormat >= 0;
        },
        "a name that ends in .bmp, .tif, .zvk or .crc", "The file to write: .bmp, .tif, .zvk or .crc")
        ->required();
    AddParsed(*command, "--format", options->format, parseFormat, "the name of a format, such as FormatRgb16",
              "The format to convert to, such as FormatRgb16 (default: stays as it is)")
        ->type_name("NAME");
    AddParsed(*command, "--mode", options->mode, parseMode, "0, 1 or 2",
              "0 clips or keeps the low bits, 1 fits the range, 2 scales by shifts (default: 0)")
        ->type_name("0|1|2");
    command->callback([options, &work] { work = [options] { return convert(*options); }; });
}
