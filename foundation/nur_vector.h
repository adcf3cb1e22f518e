#pragma once

#include "foundation/CTivData.h"

/// The lower layer's vector record: elements without padding; FormatBinary packs 8 a byte, bit 0 first.
struct NurVector {
    CTivData::Format format = CTivData::FormatNone;
    void* data = nullptr;
    std::int32_t size = 0;  ///< elements
};

/// Allocates zeroed elements into an empty record; element bits come from the object-type table and FormatBinary sizes
/// round up to 8. A byte count below 1 gives null data and is no failure.
/// @param isPromise as nur_alloc has it
/// @return 0; -2 for a negative format or size, -1 without memory
int nur_vector_alloc(NurVector* vector, CTivData::Format format, std::int32_t size, bool isPromise = false);

/// Frees the data and empties the record. @return 0; -1 for a format outside the object-type table
int nur_vector_free(NurVector* vector);

/// As nur_output_image of nur_image.h, for vectors: "%s: incompatible output vector type: %s\n", "%s: output vector
/// size too small\n" or the memory text.
int nur_output_vector(NurVector* vector, CTivData::Format format, std::int32_t size, const char* caller);
