#include "acquisition/zvn/ini_impl.h"

#include <ini.h>

namespace {

struct Run {
    const std::function<std::string(const std::string&, const std::string&, const std::string&)>& take;
    std::string wrong;
};

int takeLine(void* user, const char* section, const char* name, const char* value) {
    auto& run = *static_cast<Run*>(user);
    if (run.wrong.empty()) run.wrong = run.take(section, name, value ? value : "");
    return run.wrong.empty();
}

}  // namespace

std::string ReadIni(
    const std::string& path,
    const std::function<std::string(const std::string&, const std::string&, const std::string&)>& take) {
    Run run{take, {}};
    const int answer = ini_parse(path.c_str(), takeLine, &run);
    if (answer == 0) return {};
    if (answer < 0) return path + ": cannot be read";
    const std::string why = run.wrong.empty() ? "neither a section nor \"name = value\"" : run.wrong;
    return path + ", line " + std::to_string(answer) + ": " + why;
}
