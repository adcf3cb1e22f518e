#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cli/command.h"
#include "foundation/StagedFile.h"

/// Files that are written all or not at all: each goes beside its name first, and only Commit puts them in their
/// places. Devices and pipes, and what lies in a folder that takes no new file, are written at once.
class OutputSet {
public:
    /// Has `write(name)` write a file that later becomes `path`. A WorkFailure of it that speaks of the name is passed
    /// on with the path, and with the system's reason where that cannot be opened.
    template <class Write>
    void Add(const std::string& path, Write write) {
        const std::string name = Stage(path);
        try {
            write(name);
        } catch (const tonewright::WorkFailure& failure) {
            throw tonewright::WorkFailure(Explained(failure.what(), name, path));
        }
    }

    /// @param tell called once all are in their places: prints what was done. Where it answers false they give the
    ///             places back
    /// @throw WorkFailure where a file cannot take its name, or nothing could be told
    void Commit(const std::function<bool()>& tell);

    /// One name for all the ways to write a path; empty for none.
    static std::string PlaceOf(const std::string& path);

    /// The paths as given, in the order in which they were added.
    const std::vector<std::string>& GetPaths() const { return paths_; }

private:
    std::string Stage(const std::string& path);
    static std::string Explained(std::string text, const std::string& name, const std::string& path);

    std::vector<std::string> paths_;
    std::vector<tonewright::StagedFile> files_;
};

/// Holds what will be written against each other and what is read; empty names don't count.
/// @throw UsageFailure
void RequireDifferentPlaces(const std::vector<std::string>& outputs, const std::vector<std::string>& inputs);
