#include "tests/support/places.h"

std::string sourceFile(const std::string& name) { return TONEWRIGHT_SOURCE_FOLDER "/" + name; }
std::string testData(const std::string& name) { return sourceFile("tests/data/" + name); }
std::string sampleFile(const std::string& name) { return sourceFile("samples/" + name); }
std::string buildFile(const std::string& name) { return TONEWRIGHT_BUILD_FOLDER "/" + name; }
