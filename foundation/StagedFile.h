#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <system_error>

namespace tonewright {

/// A new, empty file that is to take another's place: in the target's own folder, under a name that nobody can guess,
/// created exclusively (a link or a file that somebody put there is never opened), with the target's extension.
///
/// The end of a chain of symbolic links is what is replaced. A link that a stranger put into a folder that everybody
/// may write to is not followed: such a target is refused. Where renaming would not do, the target is written in place:
/// devices, pipes, /dev/stdout, and a writable file in a folder that takes no new files.
///
///     std::vector<StagedFile> files;                  // several files, all or none
///     files.emplace_back(path);                       // per file: GetError, then write to GetName
///     if (const auto failure = StagedFile::CommitAll(files)) ...
class StagedFile {
public:
    /// Which files are on the disk, as a power cut would leave it, before they take their places.
    enum class Waits {
        Always,
        Replacing  ///< those that replace another: a new one can be made again by who lost it
    };

    /// @param path UTF-8, as given
    explicit StagedFile(const std::string& path, Waits waits = Waits::Always);
    StagedFile(StagedFile&& other) noexcept;
    StagedFile& operator=(StagedFile&&) = delete;
    /// Removes the new file where it did not take the target's place.
    ~StagedFile();

    /// Why nothing may be written to this path; no error where GetName is to be written.
    std::error_code GetError() const { return error_; }
    /// Where to write: the new file, or the path as given where it is written in place; empty where it is refused.
    const std::string& GetName() const { return name_; }
    bool IsBeside() const { return !target_.empty(); }
    /// The file that will be replaced, links followed; empty where the path is written in place.
    const std::string& GetTarget() const { return target_; }

    /// CommitAll of this one.
    std::error_code Commit();

    struct Failure {
        std::size_t index;  ///< of the first file that could not take its place
        std::error_code error;
    };
    /// Puts the files into their places, all or none, and lets them reach the disk: each gets the replaced file's owner
    /// and permissions and is synchronised, where it waits, before the first is renamed, each folder once after the
    /// last. Files written in place are left alone.
    /// @param confirm called once all are in their places; its error makes them give the places back
    /// @return nothing, or what failed (at index 0 where that is `confirm`); then those that had taken their places
    /// have
    ///         given them back, and a second call may try again
    static std::optional<Failure> CommitAll(std::span<StagedFile> files,
                                            const std::function<std::error_code()>& confirm = {});

    /// Removes every staged file of the process; from then on each path is refused and each commit fails. For a process
    /// that is about to end, from an ordinary thread: not async-signal-safe. A CommitAll under way ends first.
    static void DropAll();

private:
    std::error_code Prepare();
    std::error_code TakePlace(bool keepEarlier);
    void GiveBack();
    void DropEarlier();
    static std::optional<Failure> TakePlaces(std::span<StagedFile> files, bool keepEarlier);
    static void GiveBackAll(std::span<StagedFile> files);

    std::string name_;
    std::string target_;
    std::string earlier_;  ///< second name of the replaced file while a CommitAll runs
    std::error_code error_;
    bool waits_ = true;  ///< for the disk; a target that is itself a staged file of this process does so by itself
};

}  // namespace tonewright
