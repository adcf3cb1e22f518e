#pragma once

#include <ext/stdio_filebuf.h>

#include <ostream>
#include <string>

#include "foundation/StagedFile.h"

namespace tonewright {

/// A file being written that takes its name only once it is whole and on the disk: a save that fails halfway, or a
/// process that dies in it, leaves the earlier file as it was. StagedFile tells how, and which targets are written in
/// place instead or refused.
class SafeOutputFile {
public:
    /// Opens for binary output. Fails where `path` itself (UTF-8, as given) could not be opened for writing, and where
    /// StagedFile refuses it.
    explicit SafeOutputFile(const std::string& path);
    SafeOutputFile(const SafeOutputFile&) = delete;
    SafeOutputFile& operator=(const SafeOutputFile&) = delete;
    /// Without a Commit before it, drops what was written.
    ~SafeOutputFile() = default;

    bool IsOpen() const { return buffer_.is_open(); }
    /// Seekable, unless the target is a pipe.
    std::ostream& Stream() { return stream_; }
    /// Ends the writing and puts the file in its place; once.
    /// @return false, the earlier file kept and the new one dropped, where anything was not written or opening failed
    bool Commit();

private:
    StagedFile staged_;
    __gnu_cxx::stdio_filebuf<char> buffer_;  // over the descriptor: a name could be somebody else's file by now
    std::ostream stream_{&buffer_};
};

}  // namespace tonewright
