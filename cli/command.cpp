#include "cli/command.h"

#include <CLI/CLI.hpp>
#include <iostream>

void Tell(const std::string& text) {
    std::cerr << "tonewright: " << text.substr(0, text.find_last_not_of('\n') + 1) << '\n';
}

CLI::App* AddCommand(CLI::App& tool, const std::string& name, const std::string& description) {
    CLI::App* command = tool.add_subcommand(name, description);
    command->set_version_flag("--version", tool.version());
    return command;
}
