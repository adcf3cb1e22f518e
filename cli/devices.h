#pragma once

#include "acquisition/devices.h"

namespace CLI {
class App;
}

/// Adds --device, and --config where it is asked for.
void AddDeviceOptions(CLI::App& command, DeviceChoice& choice, bool withConfig);
