#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cli/command.h"
#include "cli/side_by_side.h"

/// The pictures that a command works on: one, of which it prints a document, or many, of which it prints a line each.
struct PictureList {
    std::vector<std::string> pictures;
    std::string folder;  ///< where each one's files go, under the picture's own name; empty: nothing is written
    int jobs = CountProcessors();

    bool IsMany() const { return pictures.size() > 1 || !folder.empty(); }
};

/// Adds IMAGE..., --output-folder and --jobs.
/// @param written says what goes into the folder
void AddPictureOptions(CLI::App& command, PictureList& list, const std::string& written);

/// "FOLDER/NAME" + extension, with the picture's name.
std::string PlaceFor(const std::string& folder, const std::string& picture, const std::string& extension);

/// Holds what will be written for the pictures against each other and what is read.
/// @param placesFor the files of a picture; empty ones don't count
/// @param inputs must not be written over
/// @throw UsageFailure
void RequireOwnPlaces(const PictureList& list,
                      const std::function<std::vector<std::string>(const std::string& picture)>& placesFor,
                      const std::vector<std::string>& inputs);

/// @param options names and values of what names a single file
/// @param instead completes "with many pictures ..." @throw UsageFailure where a list of many has one
void RequireNoSingleFile(const std::vector<std::pair<std::string, std::string>>& options, const std::string& instead);

/// Works on many pictures side by side and tells of each in the list's order, as soon as it is its turn: its words to
/// standard error, its files to their places, and to standard output a line {"image", "ok", "error", what is told of it
/// alone}. A picture that fails does not stop the others. Once the call was asked to end, those begun are finished, and
/// the others told as not begun.
/// @param work may be called from several threads
/// @return the worst status
/// @throw WorkFailure where the folder cannot be made, or nothing can be told any more
Outcome WorkOnEach(const PictureList& list, const std::function<Outcome(const std::string& picture)>& work);
