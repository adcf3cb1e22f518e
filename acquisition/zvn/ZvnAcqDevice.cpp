#include "acquisition/zvn/ZvnAcqDevice.h"

#include <fstream>

#include "acquisition/zvn/backend_impl.h"
#include "foundation/SafeFile.h"

namespace {

constexpr std::size_t kMostFileBytes = 16 << 20;

std::optional<std::vector<char>> readLocalFile(const char* path) {
    std::ifstream file(path, std::ios::binary);
    std::vector<char> content;
    std::vector<char> block(64 << 10);
    while (file.read(block.data(), static_cast<std::streamsize>(block.size())) || file.gcount() > 0) {
        content.insert(content.end(), block.begin(), block.begin() + file.gcount());
        if (content.size() > kMostFileBytes) break;
    }
    if (file.eof() && content.size() <= kMostFileBytes) return content;
    TellZvnStatus(std::string(path) + ": cannot be read, or is longer than a device file can be");
    return std::nullopt;
}

}  // namespace

ZvnAcqDevice::ZvnAcqDevice(const ZvnLocation& location, const char* configFile)
    : ZvnXferNode(kZvnAcqDevice, location, configFile) {}

bool ZvnAcqDevice::GetFileIndexByName(const char* name, int* index) {
    const auto found = IsCreated() ? GetSource()->FindFile(name) : std::nullopt;
    if (found) *index = *found;
    return found.has_value();
}

bool ZvnAcqDevice::ReadFile(const char* deviceFileName, const char* localPath) {
    const auto content = IsCreated() ? GetSource()->ReadFile(deviceFileName) : std::nullopt;
    if (!content) return false;
    SafeOutputFile file(localPath);
    if (file.IsOpen()) file.Stream().write(content->data(), static_cast<std::streamsize>(content->size()));
    if (file.Commit()) return true;
    TellZvnStatus(std::string(localPath) + ": cannot be written");
    return false;
}

bool ZvnAcqDevice::WriteFile(const char* localPath, const char* deviceFileName) {
    if (!IsCreated()) return false;
    const auto content = readLocalFile(localPath);
    return content && GetSource()->WriteFile(deviceFileName, *content);
}
