#pragma once

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>
#include <optional>
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
    Json document;  ///< for standard output; null: all is told already
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

/// Writes a line for a person to standard error, as a message of the tool's.
void Tell(const std::string& text);

/// Writes a line about the one file that is worked on, without a name in front.
void TellOfFile(const std::string& line);

/// While it lives, what the thread that made it tells is kept, with the file's name in front of lines about it.
class KeptWords {
public:
    explicit KeptWords(std::string file);
    KeptWords(const KeptWords&) = delete;
    KeptWords& operator=(const KeptWords&) = delete;
    ~KeptWords();

    void Keep(const std::string& line) { text_ += line; }
    const std::string& GetFile() const { return file_; }
    const std::string& GetText() const { return text_; }

private:
    std::string file_;
    std::string text_;
};

/// Why work ended early, and the exit status for it.
struct Failure {
    int status;
    std::string text;
};

/// Does the work. The last fence: whatever a file makes the library throw ends here.
/// @return nothing where it came to its end
std::optional<Failure> WhyFailed(const std::function<void()>& work);

/// Adds a subcommand with what all share: --help and --version, and that nothing unknown is taken.
CLI::App* AddCommand(CLI::App& tool, const std::string& name, const std::string& description);
