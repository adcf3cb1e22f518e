#pragma once

#include <cstdint>

/// Memory of images and vectors, zeroed, on a 64-byte boundary. Large blocks come straight from the system, so that
/// pages that nobody touches are never committed, and ask for huge pages, since first touch costs more than the work.
/// @param isPromise the size is what a file or a device declares, and pages count as they are touched; else all of it
///                  is about to be used, and more than the machine has is refused at once
/// @return null where it cannot be had (or for 0 bytes)
void* nur_alloc(std::uint64_t bytes, bool isPromise = false);
void nur_free(void* block);
