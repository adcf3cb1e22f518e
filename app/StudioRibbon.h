#pragma once

#include "app/toolkit/RibbonLayout.h"

/// The program's ribbon: file menu, the tabs "Home" and "View", help.
const ribbon::Layout& StudioRibbon();
