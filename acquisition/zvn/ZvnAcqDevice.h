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

    /// @return whether the device itself holds a file of this name; its features may stand in for one
    bool HoldsFile(const char* name);
    /// @return whether a transform of 4 terms can be written to features of the device
    bool HasColorFeatures();
    /// Saves the transform in the device's features as a coefficient file.
    bool ReadColorFeatures(const char* localPath);
    /// Writes a coefficient file of 4 terms to them, puts it in force and reads it back.
    bool WriteColorFeatures(const char* localPath);

    /// What spoils a calibration, as the device was when it was opened.
    std::vector<ZvnNote> GetNotes();
};
