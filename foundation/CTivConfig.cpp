#include "foundation/CTivConfig.h"

#include <ini.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "primitives/acceleration.h"

namespace {

constexpr const char* kSection = "Configuration";
constexpr const char* kFileName = "/Brennick Korva/Zelvan Processing.ini";
constexpr int kDefaultLevel = 1;

std::mutex configurationLock;
bool wasRead = false;

using Values = std::map<std::string, std::string>;

std::vector<std::string> candidateFiles() {
    if (const char* named = std::getenv("ZELVAN_PROCESSING_CONFIG")) return {named};
    std::vector<std::string> files;
    const char* config = std::getenv("XDG_CONFIG_HOME");
    const char* home = std::getenv("HOME");
    if (config && *config) {
        files.push_back(config + std::string(kFileName));
    } else if (home) {
        files.push_back(home + std::string("/.config") + kFileName);
    }
    files.push_back(std::string("/etc/xdg") + kFileName);
    return files;
}

int takeEntry(void* user, const char* section, const char* name, const char* value) {
    if (section == std::string(kSection)) static_cast<Values*>(user)->insert_or_assign(name, value);
    return 1;
}

// The first file that can be opened serves, whatever it holds.
Values readValues() {
    Values values;
    for (const std::string& file : candidateFiles()) {
        if (ini_parse(file.c_str(), takeEntry, &values) >= 0) break;
    }
    return values;
}

// A value that cannot be read as an unsigned 32-bit number counts as absent.
std::optional<std::uint32_t> number(const Values& values, const char* name) {
    const auto found = values.find(name);
    if (found == values.end() || found->second.empty() || found->second[0] == '-') return std::nullopt;
    char* end = nullptr;
    const unsigned long long value = std::strtoull(found->second.c_str(), &end, 0);
    if (*end != '\0' || value > UINT32_MAX) return std::nullopt;
    return static_cast<std::uint32_t>(value);
}

int processorCount() { return static_cast<int>(std::max(1L, ::sysconf(_SC_NPROCESSORS_ONLN))); }

int threadCount(std::optional<std::uint32_t> configured) {
    const int processors = processorCount();
    if (!configured) return static_cast<int>(static_cast<float>(processors) * 0.75f);
    if (*configured == 0) return processors;
    return static_cast<int>(std::min(*configured, static_cast<std::uint32_t>(processors)));
}

}  // namespace

CTivConfig::CTivConfig() { EnsureRead(); }

void CTivConfig::EnsureRead() {
    const std::lock_guard guard(configurationLock);
    if (wasRead) return;
    const Values values = readValues();
    ctiv_SetAccelerationLevel(kDefaultLevel);
    if (const auto level = number(values, "Optimization Level"); level && *level <= 2) {
        ctiv_SetAccelerationLevel(static_cast<int>(*level));
    }
    ctiv_SetNumThreads(threadCount(number(values, "CPU Thread Count")));
    // "GPU Coprocessor Acceleration Enabled" and "GPU Coprocessor Default Index" change nothing: with no coprocessor
    // in this system acceleration stays off and the index -1, whatever they say.
    wasRead = true;
}

int CTivConfig::GetCoprocessorDefaultIndex() {
    EnsureRead();
    return -1;
}

bool CTivConfig::IsCoprocessorEnabled() {
    EnsureRead();
    return false;
}

int CTivConfig::GetOptimizationLevel() {
    EnsureRead();
    return ctiv_GetAccelerationLevel();
}

int CTivConfig::GetThreadCount() {
    EnsureRead();
    return ctiv_GetNumThreads();
}

void CTivConfig::SetThreadCount(int count) {
    EnsureRead();
    ctiv_SetNumThreads(count);
}

void CTivConfig::Forget() {
    const std::lock_guard guard(configurationLock);
    wasRead = false;
}
