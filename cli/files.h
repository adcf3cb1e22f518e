#pragma once

#include <string>
#include <vector>

#include "foundation/CTivImage.h"
#include "foundation/nur_report.h"

/// What a file is, by its first bytes.
enum class FileKind { Unknown, Bmp, Tiff, Png, Crc, NativeImage, NativeVector, Parameters, Coefficients };

/// @return the kind's name in the documents of `info`, null for Unknown
const char* GetKindName(FileKind kind);

/// Refuses what gives its bytes only once, or without end, or has none: pipes, devices, folders. Files are read more
/// than once. What is not there passes: the reader tells.
/// @throw WorkFailure
void RequireFile(const std::string& path);

/// The same for a text of numbers, which also has a megabyte at most. @throw WorkFailure
void RequireText(const std::string& path);

/// @return Unknown also for a file that cannot be read
/// @throw WorkFailure for what RequireFile refuses
FileKind FindKind(const std::string& path);

/// @throw WorkFailure for an image of a format that the library has no name for
void RequireKnownFormat(const CTivImage& image, const std::string& path);

/// Loads an image of any kind as its file has it, but for the words of a 16-bit PNG, which the library leaves in the
/// file's order: they are put into the machine's.
/// @throw WorkFailure with the library's message, and for a native record that is shorter than its head says
CTivImage LoadImageWithRoi(const std::string& path);

/// The same, whole: a smaller region in a native file is widened.
CTivImage LoadImage(const std::string& path);

/// @return the file format number for CTivImage::Save by the name's extension (.bmp, .tif, .zvk, .crc, in any case),
///         -1 for another one
int FindFileFormat(const std::string& path);

/// Saves an image. @throw WorkFailure with the library's message, and for a format that a .crc file has no code for:
/// the library writes such a file, but nothing loads it again
void SaveImage(const CTivImage& image, const std::string& path, int fileFormat);

/// Runs a call of the library that answers bool.
/// @param subject the file or option that the call is about
/// @throw WorkFailure where it answers false, with the subject and the texts that the library reported, or `otherwise`
///        if it reported none. The reason often stands in the first, and the last says what failed by it
template <class Call>
void Require(Call&& call, const std::string& subject, const std::string& otherwise);

/// Has the library report to Require; once, after its start.
void ListenToLibrary();

/// Lets a thread of the tool's own call the library: while this lives, what the library reports in the thread goes to
/// the thread's own Require alone. All other threads report to one place.
class LibraryThread {
public:
    LibraryThread();
    LibraryThread(const LibraryThread&) = delete;
    LibraryThread& operator=(const LibraryThread&) = delete;
    ~LibraryThread();

private:
    NurReportingThread registered_;
    std::vector<std::string> texts_;
};

void ForgetLibraryTexts();
[[noreturn]] void FailWithLibraryTexts(const std::string& subject, const std::string& otherwise);

template <class Call>
void Require(Call&& call, const std::string& subject, const std::string& otherwise) {
    ForgetLibraryTexts();
    if (!call()) FailWithLibraryTexts(subject, otherwise);
}
