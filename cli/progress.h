#pragma once

#include <cstddef>
#include <functional>
#include <mutex>
#include <string>

/// How far work on many files is, on one line of a terminal that the next one writes over; and what there is to say of
/// each file, above it.
class Progress {
public:
    /// @param count of files; the line of a single one would be gone at once, so it has none
    /// @param isWanted false where something else writes to the terminal meanwhile
    Progress(std::size_t count, bool isWanted);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// @param tell says what there is to say, to standard error; one thread at a time
    void TellDone(const std::string& name, const std::function<void()>& tell);

private:
    void Clear() const;

    std::mutex gate_;
    std::size_t count_;
    std::size_t done_ = 0;
    bool isShown_;
};
