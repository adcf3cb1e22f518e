#pragma once

#include <string>

namespace tonewright {

/// What a file is, by its first bytes.
enum class FileKind { Unknown, Bmp, Tiff, Png, Crc, NativeImage, NativeVector, Parameters, Coefficients };

/// @return the kind's name for documents, null for Unknown
const char* GetKindName(FileKind kind);

/// @return Unknown also for a file that cannot be read
/// @throw WorkFailure for what is no file: pipes, devices, folders
FileKind FindKind(const std::string& path);

}  // namespace tonewright
