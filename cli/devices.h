#pragma once

#include "acquisition/devices.h"

namespace CLI {
class App;
}

/// Adds --device, and --config where it is asked for.
void AddDeviceOptions(CLI::App& command, tonewright::DeviceChoice& choice, bool withConfig);
