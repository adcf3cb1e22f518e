#pragma once

#include <fstream>
#include <ostream>
#include <string>

/// A file being written that takes its name only once it is whole: a save that fails halfway, or a process that dies
/// in it, leaves the earlier file as it was.
///
/// Writes to a new file in the target's own folder, with the earlier file's permissions, and renames it on Commit. The
/// end of a chain of symbolic links is what is replaced. Where renaming would not do, the target is written in place:
/// devices, pipes, /dev/stdout, and a writable file in a folder that takes no new files.
class SafeOutputFile {
public:
    /// Opens for binary output. Fails exactly where `path` itself (UTF-8, as given) could not be opened for writing.
    explicit SafeOutputFile(const std::string& path);
    SafeOutputFile(const SafeOutputFile&) = delete;
    SafeOutputFile& operator=(const SafeOutputFile&) = delete;
    /// Without a Commit before it, drops what was written.
    ~SafeOutputFile();

    bool IsOpen() const { return stream_.is_open(); }
    /// Seekable, unless the target is a pipe.
    std::ostream& Stream() { return stream_; }
    /// Ends the writing and puts the file in its place; once.
    /// @return false, the earlier file kept and the new one dropped, where anything was not written or opening failed
    bool Commit();

private:
    bool OpenBeside(const std::string& target);

    std::ofstream stream_;
    std::string target_;
    std::string temporary_;  ///< empty while writing in place
};
