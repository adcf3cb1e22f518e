#pragma once

#include "acquisition/zvn/ZvnXferNode.h"

/// A camera, with the files that it holds.
class ZvnAcqDevice : public ZvnXferNode {
public:
    /// @param configFile null or empty for none
    ZvnAcqDevice(const ZvnLocation& location, const char* configFile);

    /// @return whether the device holds a file of this name
    bool GetFileIndexByName(const char* name, int* index);
    /// Copies a file of the device into a local one, which is replaced only by a whole one.
    bool ReadFile(const char* deviceFileName, const char* localPath);
    /// Copies a local file, at most 16 MiB, into one of the device.
    bool WriteFile(const char* localPath, const char* deviceFileName);
};
