#include "acquisition/zvn/ZvnAcqDevice.h"

#include <fstream>

#include "acquisition/zvn/backend_impl.h"
#include "acquisition/zvn/color_features.h"
#include "foundation/SafeFile.h"

using namespace tonewright;

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

bool writeLocalFile(const char* path, std::span<const char> content) {
    SafeOutputFile file(path);
    if (file.IsOpen()) file.Stream().write(content.data(), static_cast<std::streamsize>(content.size()));
    if (file.Commit()) return true;
    TellZvnStatus(std::string(path) + ": cannot be written");
    return false;
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
    return content && writeLocalFile(localPath, *content);
}

bool ZvnAcqDevice::WriteFile(const char* localPath, const char* deviceFileName) {
    if (!IsCreated()) return false;
    const auto content = readLocalFile(localPath);
    return content && GetSource()->WriteFile(deviceFileName, *content);
}

bool ZvnAcqDevice::HoldsFile(const char* name) { return IsCreated() && GetSource()->HoldsFile(name); }
bool ZvnAcqDevice::HasColorFeatures() { return IsCreated() && GetSource()->HasColorFeatures(); }

bool ZvnAcqDevice::ReadColorFeatures(const char* localPath) {
    const auto matrix = IsCreated() ? GetSource()->ReadColorFeatures() : std::nullopt;
    return matrix && writeLocalFile(localPath, MakeZvnCoefficients(*matrix));
}

bool ZvnAcqDevice::WriteColorFeatures(const char* localPath) {
    if (!IsCreated()) return false;
    const auto content = readLocalFile(localPath);
    if (!content) return false;
    ZvnColorMatrix matrix{};
    const std::string wrong = ReadZvnCoefficients(*content, matrix);
    if (wrong.empty()) return GetSource()->WriteColorFeatures(matrix);
    TellZvnStatus(std::string(localPath) + ": " + wrong);
    return false;
}

std::vector<ZvnNote> ZvnAcqDevice::GetNotes() { return IsCreated() ? GetSource()->GetNotes() : std::vector<ZvnNote>(); }
