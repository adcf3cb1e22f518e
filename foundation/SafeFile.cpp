#include "foundation/SafeFile.h"

#include <fcntl.h>
#include <unistd.h>

namespace tonewright {

namespace {

/// Opens what is to be written; a negative answer where that fails.
int OpenFor(const StagedFile& staged) {
    if (staged.GetError()) return -1;
    const int create = O_CREAT | O_TRUNC;
    return ::open(staged.GetName().c_str(), O_WRONLY | O_CLOEXEC | (staged.IsBeside() ? O_NOFOLLOW : create), 0666);
}

}  // namespace

SafeOutputFile::SafeOutputFile(const std::string& path)
    : staged_(path), buffer_(OpenFor(staged_), std::ios::out | std::ios::binary) {
    if (!IsOpen()) stream_.setstate(std::ios::failbit);
}

bool SafeOutputFile::Commit() {
    if (!IsOpen()) return false;
    const bool written = static_cast<bool>(stream_.flush());
    const bool closed = buffer_.close() != nullptr;
    return written && closed && !staged_.Commit();
}

}  // namespace tonewright
