#pragma once

#include <vector>

#include "acquisition/zvn/ZvnBackend.h"
#include "acquisition/zvn/ZvnFeatures.h"

/// What a camera does by itself that spoils a calibration, as it is set now.
std::vector<ZvnNote> FindZvnNotes(ZvnFeatures& features);
