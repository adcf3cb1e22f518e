#pragma once

#include "acquisition/zvn/ZvnXferNode.h"

class ZvnBuffer;

/// A frame grabber's input.
class ZvnAcquisition : public ZvnXferNode {
public:
    /// @param configFile null or empty for none @param reserved zeros
    ZvnAcquisition(const ZvnLocation& location, const char* configFile, int reserved = 0, int alsoReserved = 0);

    /// Hands the grabber a color matrix. @param buffer 4 wide, 3 high, 32-bit floats
    /// @return false where the buffer is of another kind, or the grabber refuses
    bool SetImageFilter(int index, const ZvnBuffer& buffer);
};
