#pragma once

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "foundation/library_texts.h"

namespace CLI {
class App;
}

using Json = nlohmann::ordered_json;

/// The exit statuses.
enum ExitStatus : int {
    kDone = 0,
    kWorkFailed = 1,  ///< what the command was to do failed, or failed for some of its files
    kWrongUsage = 2,  ///< the command line is wrong
    kLimitBroken = 3  ///< all was done, and a calibration does not keep the limits that it was held against
};

/// The command line is wrong in a way that shows only later than parsing; the text says which argument and why.
class UsageFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class OutputSet;

/// What a command ends with.
struct Outcome {
    Json document;  ///< for standard output
    int status = kDone;
    std::shared_ptr<OutputSet> outputs = nullptr;  ///< files that stay only if the document could be told
};

/// The work of the command that was chosen.
using Work = std::function<Outcome()>;

/// Each adds its commands to the tool. A command's callback, run once its arguments are parsed, puts the work into
/// `work`; the work itself may throw the two failures above, or whatever the library throws.
void AddDetectCommand(CLI::App& tool, Work& work);
void AddCalibrateCommand(CLI::App& tool, Work& work);
void AddVerifyCommand(CLI::App& tool, Work& work);
void AddApplyCommand(CLI::App& tool, Work& work);
void AddInfoCommand(CLI::App& tool, Work& work);
void AddConvertCommand(CLI::App& tool, Work& work);
void AddDeviceCommands(CLI::App& tool, Work& work);  ///< devices, grab, send, receive
void AddGrabCommand(CLI::App& tool, Work& work);

/// Writes a line for a person to standard error.
void Tell(const std::string& text);

/// Adds a subcommand with what all share: --help and --version, and that nothing unknown is taken.
CLI::App* AddCommand(CLI::App& tool, const std::string& name, const std::string& description);
