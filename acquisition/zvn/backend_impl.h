#pragma once

#include <string>

#include "acquisition/zvn/ZvnBackend.h"
#include "acquisition/zvn/ZvnManager.h"

/// The backend in force, null where the machine has none.
ZvnBackend* FindZvnBackend();

ZvnBackend& GetSimulatedBackend();
/// Null in a build without it.
ZvnBackend* GetCameraBackend();

/// Tells a person what went wrong or is worth knowing, as the display status mode says; from any thread.
void TellZvnStatus(const std::string& text, ZvnStatus kind = ZvnStatus::Error);
