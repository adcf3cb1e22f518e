#pragma once

#include <cstdint>

/// A run of pixels of one row, as it is kept among the intermediate results: 20 bytes, the element NUR_OBJ_BLOB.
struct BlobRun {
    std::int32_t blob = -1;   ///< index of its blob, -1 until it is known
    std::int32_t firstX = 0;  ///< pixels of the image
    std::int32_t lastX = 0;   ///< included
    std::int32_t y = 0;
    std::int32_t value = 0;  ///< of its pixels
};
static_assert(sizeof(BlobRun) == 20);
