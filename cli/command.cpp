#include "cli/command.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <new>

namespace {

thread_local KeptWords* keptWords = nullptr;

void say(const std::string& line) {
    if (keptWords) return keptWords->Keep(line);
    std::cerr << line;
}

}  // namespace

void Tell(const std::string& text) { say("tonewright: " + text.substr(0, text.find_last_not_of('\n') + 1) + "\n"); }

void TellOfFile(const std::string& line) { say((keptWords ? keptWords->GetFile() + ": " : "") + line + "\n"); }

KeptWords::KeptWords(std::string file) : file_(std::move(file)) { keptWords = this; }

KeptWords::~KeptWords() { keptWords = nullptr; }

std::optional<Failure> WhyFailed(const std::function<void()>& work) {
    try {
        work();
        return std::nullopt;
    } catch (const UsageFailure& failure) {
        return Failure{kWrongUsage, failure.what()};
    } catch (const std::bad_alloc&) {
        return Failure{kWorkFailed, "not enough memory"};
    } catch (const std::exception& failure) {
        return Failure{kWorkFailed, failure.what()};
    } catch (const char* text) {  // the fit throws plain text
        return Failure{kWorkFailed, text};
    } catch (...) {
        return Failure{kWorkFailed, "unknown error"};
    }
}

CLI::App* AddCommand(CLI::App& tool, const std::string& name, const std::string& description) {
    CLI::App* command = tool.add_subcommand(name, description);
    command->set_version_flag("--version", tool.version());
    return command;
}
