#pragma once

#include <string>
#include <utility>
#include <vector>

#include "cli/command.h"

/// Files that are written all or not at all: each goes beside its name first, and only Commit puts them in their
/// places. Devices and pipes, and what lies in a folder that takes no new file, are written at once.
class OutputSet {
public:
    OutputSet() = default;
    OutputSet(const OutputSet&) = delete;
    OutputSet& operator=(const OutputSet&) = delete;
    /// Without a Commit before it, nothing of what was written stays.
    ~OutputSet();

    /// Has `write(name)` write a file that later becomes `path`. A WorkFailure of it that speaks of the name is passed
    /// on with the path.
    template <class Write>
    void Add(const std::string& path, Write write) {
        const std::string name = Stage(path);
        try {
            write(name);
        } catch (const WorkFailure& failure) {
            throw WorkFailure(Renamed(failure.what(), name, path));
        }
    }

    /// @throw WorkFailure where a file cannot take its name; those that took theirs give it back
    void Commit();

    /// One name for all the ways to write a path; empty for none.
    static std::string PlaceOf(const std::string& path);

    /// The paths as given, in the order in which they were added.
    const std::vector<std::string>& GetPaths() const { return paths_; }

private:
    struct Staged {
        std::string name;
        std::string target;
        std::string earlier;  ///< second name of the file that was replaced; empty where there was none
    };
    static void TakeBack(const Staged& file);

    std::string Stage(const std::string& path);
    static std::string Renamed(std::string text, const std::string& name, const std::string& path);

    std::vector<std::string> paths_;
    std::vector<Staged> staged_;
};
