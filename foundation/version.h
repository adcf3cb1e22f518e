#pragma once

namespace tonewright {

/// The product's version, such as "1.0.0". It stands in the top CMakeLists.txt and nowhere else.
const char* GetTonewrightVersion();

}  // namespace tonewright
