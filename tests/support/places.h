#pragma once

#include <string>

// Where the tests find what they read. Only places.cpp knows the folders, so that every other object is the same in
// every clone and comes from the compiler cache.

/// A file below tests/data.
std::string testData(const std::string& name);
/// A file below samples.
std::string sampleFile(const std::string& name);
/// A file of the source tree.
std::string sourceFile(const std::string& name);
/// A file that the build made, such as "cli/tonewright".
std::string buildFile(const std::string& name);
