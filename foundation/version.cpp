#include "foundation/version.h"

const char* GetTonewrightVersion() { return TONEWRIGHT_VERSION; }
