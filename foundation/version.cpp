#include "foundation/version.h"

namespace tonewright {

const char* GetTonewrightVersion() { return TONEWRIGHT_VERSION; }

}  // namespace tonewright
