#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>

#include "cli/command.h"
#include "cli/json_values.h"
#include "cli/output_set.h"
#include "cli/signals.h"
#include "foundation/CTivManager.h"
#include "foundation/library_texts.h"
#include "foundation/version.h"

using namespace tonewright;

namespace {

// A line a file of commands, in the order of the help.
constexpr void (*kCommands[])(CLI::App&, Work&) = {
    AddDetectCommand, AddCalibrateCommand, AddVerifyCommand,  AddApplyCommand,
    AddInfoCommand,   AddConvertCommand,   AddDeviceCommands,
};

int fail(int status, const std::string& text) {
    Tell(text);
    return status;
}

bool print(const Json& document) {
    Print(std::cout, document);
    std::cout << std::endl;
    return static_cast<bool>(std::cout);
}

/// An empty word most often comes from a script's variable that nobody set. Taken for an option that was not given it
/// would write nothing, or choose another device.
void refuseEmptyWords(CLI::App& tool) {
    for (CLI::App* command : tool.get_subcommands({})) {
        for (CLI::Option* option : command->get_options()) {
            if (option->get_items_expected_max() == 0) continue;  // a flag
            option->check([](const std::string& word) { return std::string(word.empty() ? "is empty" : ""); });
        }
    }
}

int run(const Work& work) {
    int status = kDone;
    const auto failure = WhyFailed([&] {
        const Outcome outcome = work();
        status = outcome.status;
        if (outcome.document.is_null()) return;
        const std::shared_ptr<OutputSet> outputs = outcome.outputs ? outcome.outputs : std::make_shared<OutputSet>();
        outputs->Commit([&] { return print(outcome.document); });
    });
    return failure ? fail(failure->status, failure->text) : status;
}

}  // namespace

int main(int argc, char** argv) {
    std::optional<SignalWatch> watch;
    if (const auto failure = WhyFailed([&] { watch.emplace(); })) {
        return fail(failure->status, "cannot watch for signals: " + failure->text);
    }
    CTivManager::Initialize();
    ListenToLibrary();

    CLI::App tool("Calibrates the colors of cameras from pictures of a color chart.", "tonewright");
    tool.set_version_flag("--version", std::string("tonewright ") + GetTonewrightVersion());
    tool.require_subcommand(0, 1);  // none is told below, so that an unknown word is named
    Work work;
    for (const auto add : kCommands) add(tool, work);
    refuseEmptyWords(tool);
    try {
        tool.parse(argc, argv);
    } catch (const CLI::Success& success) {  // help and version
        const int status = tool.exit(success);
        return std::cout.flush() ? status : fail(kWorkFailed, "cannot write to standard output");
    } catch (const CLI::ParseError& error) {
        return fail(kWrongUsage, std::string(error.what()) + "\nRun with --help for more information.");
    } catch (const UsageFailure& failure) {
        return fail(kWrongUsage, failure.what());
    }
    if (!work) return fail(kWrongUsage, "a command is needed\nRun with --help for more information.");
    const int status = run(work);
    SignalWatch::EndIfRequested();
    return status;
}
