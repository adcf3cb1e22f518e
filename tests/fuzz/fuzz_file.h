#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

#include "foundation/CTivManager.h"

/// A fuzzer's input as a file that lives in memory, since the readers take names.
class FuzzFile {
public:
    FuzzFile(const std::uint8_t* data, std::size_t size) : descriptor_(memfd_create("input", 0)) {
        if (write(descriptor_, data, size) != static_cast<ssize_t>(size)) std::perror("fuzz input");
    }
    FuzzFile(const FuzzFile&) = delete;
    ~FuzzFile() { close(descriptor_); }
    std::string Path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    int descriptor_;
};

/// Starts the library for a fuzz target: errors are texts, nothing shows.
inline bool startLibrary() {
    CTivManager::Initialize();
    CTivManager::SetErrorMode(ErrorModeNone);
    return true;
}
