#pragma once

#include <fstream>
#include <string>

#include "foundation/CTivVector.h"

namespace tonewright {

// The library reads a file that breaks off as one with zeros at its end. These hold it against the length that its own
// head asks for, and throw a WorkFailure (foundation/library_texts.h) that names the file.

/// Refuses what gives its bytes only once, or without end, or has none: pipes, devices, folders. Files are read more
/// than once. What is not there passes: the reader tells.
/// @throw WorkFailure
void RequireFile(const std::string& path);

/// The same for a text of numbers, which also has a megabyte at most. @throw WorkFailure
void RequireText(const std::string& path);

/// @throw WorkFailure with the system's reason for a file that does not open
std::ifstream OpenFile(const std::string& path);

/// @param reason why the file is refused; empty for one that is not
/// @throw WorkFailure
void RequireNoReason(const std::string& path, const std::string& reason);

/// From the first byte on again.
void Rewind(std::ifstream& file);

/// @throw WorkFailure for a native image record that is shorter than its head says
void RequireWholeImage(const std::string& path);

/// @throw WorkFailure for a native vector that is shorter than its head says, or that the library refuses
CTivVector ReadWholeVector(const std::string& path);

}  // namespace tonewright
