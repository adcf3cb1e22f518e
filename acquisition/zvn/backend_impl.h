#pragma once

#include <string>

#include "acquisition/zvn/ZvnBackend.h"

/// The backend in force, null where the machine has none.
ZvnBackend* FindZvnBackend();

ZvnBackend& GetSimulatedBackend();
/// Null in a build without it.
ZvnBackend* GetCameraBackend();

/// Tells a person what went wrong, as the display status mode says.
void TellZvnStatus(const std::string& text);
