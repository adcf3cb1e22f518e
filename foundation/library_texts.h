#pragma once

#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/nur_report.h"

namespace tonewright {

// For programs that work with exceptions: what the library reports becomes the text of one.

/// The work failed; the text is for a person, the library's own where the library refused.
class WorkFailure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Has the library report to Require; once, after CTivManager::Initialize.
void ListenToLibrary();

/// Runs a call of the library that answers bool.
/// @param subject the file or option that the call is about
/// @throw WorkFailure where it answers false, with the subject and the texts that the library reported, or `otherwise`
///        if it reported none. The reason often stands in the first, and the last says what failed by it
template <class Call>
void Require(Call&& call, const std::string& subject, const std::string& otherwise);

/// Lets a thread of the program's own call the library: while this lives, what the library reports in the thread goes
/// to the thread's own Require alone. All other threads report to one place.
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

}  // namespace tonewright
