#include "foundation/library_texts.h"

#include <algorithm>
#include <mutex>

#include "foundation/CTivManager.h"

namespace tonewright {

namespace {

// What the library reported since the last call began; a session's thread reports, too.
std::mutex libraryMutex;
std::vector<std::string> libraryTexts;
thread_local std::vector<std::string>* ownTexts = nullptr;  ///< a LibraryThread's

std::vector<std::string>& textsOfThread() { return ownTexts ? *ownTexts : libraryTexts; }

void keepLibraryText(const char* text) {
    std::string line = text;
    line.erase(line.find_last_not_of('\n') + 1);
    const std::lock_guard lock(libraryMutex);
    std::vector<std::string>& texts = textsOfThread();
    // A reader that is tried twice fails twice.
    if (std::find(texts.begin(), texts.end(), line) == texts.end()) texts.push_back(line);
}

}  // namespace

void ListenToLibrary() {
    nur_set_user_callback(keepLibraryText);
    CTivManager::SetErrorMode(ErrorModeUser);
}

LibraryThread::LibraryThread() { ownTexts = &texts_; }

LibraryThread::~LibraryThread() { ownTexts = nullptr; }

void ForgetLibraryTexts() {
    const std::lock_guard lock(libraryMutex);
    textsOfThread().clear();
}

void FailWithLibraryTexts(const std::string& subject, const std::string& otherwise) {
    const std::lock_guard lock(libraryMutex);
    std::string text;
    for (const std::string& line : textsOfThread()) text.append(text.empty() ? "" : "\n").append(line);
    if (text.empty()) text = otherwise;
    const bool isNamed = text.substr(0, text.find('\n')).find(subject) != std::string::npos;
    throw WorkFailure(isNamed ? text : subject + ": " + text);
}

}  // namespace tonewright
