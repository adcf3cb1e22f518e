#include "cli/devices.h"

#include <CLI/CLI.hpp>

using namespace tonewright;

void AddDeviceOptions(CLI::App& command, DeviceChoice& choice, bool withConfig) {
    command.add_option("--device", choice.device, "The device's name, as devices lists it (default: the first)")
        ->type_name("NAME");
    if (!withConfig) return;
    command.add_option("--config", choice.config, "A text of lines \"feature = value\", applied on opening")
        ->type_name("FILE");
}
