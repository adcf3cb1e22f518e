#include "acquisition/CoefficientTransfer.h"

#include <stdlib.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "acquisition/CTonewrightAcq.h"
#include "acquisition/zvn/ZvnAcqDevice.h"
#include "calibration/calibration_files.h"
#include "calibration/usable_transform.h"

namespace tonewright {

namespace {

constexpr const char* kWayNames[] = {"none", "file", "features", "filter"};
constexpr const char* kDeviceFile = "ColorCorrectionMatrix";

/// A file for what is read back, gone afterwards.
class ScratchFile {
public:
    ScratchFile() {
        std::error_code error;
        path_ = (std::filesystem::temp_directory_path(error) / "coefficients.XXXXXX").string();
        const int file = ::mkstemp(path_.data());
        if (file >= 0) ::close(file);
    }
    ScratchFile(const ScratchFile&) = delete;
    ScratchFile& operator=(const ScratchFile&) = delete;
    ~ScratchFile() { ::unlink(path_.c_str()); }

    const char* GetPath() const { return path_.c_str(); }

private:
    std::string path_;
};

std::string readAll(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool isSame(CTonewrightAcq& session, const std::string& path) {
    const ScratchFile scratch;
    return session.TransferFile(scratch.GetPath(), false) && readAll(scratch.GetPath()) == readAll(path.c_str());
}

bool refuseWay(CoefficientWay wanted) {
    return CTivManager::Refuse(
        wanted == CoefficientWay::File
            ? "The device has no file \"ColorCorrectionMatrix\"."
            : "The device has no color transformation features that a transform could be written to.");
}

}  // namespace

const char* GetWayName(CoefficientWay way) { return kWayNames[static_cast<int>(way)]; }

std::optional<CoefficientWay> ParseCoefficientWay(std::string_view word) {
    if (word == "auto") return CoefficientWay::None;
    if (word == "file") return CoefficientWay::File;
    return word == "features" ? std::optional(CoefficientWay::Features) : std::nullopt;
}

CoefficientWay FindCoefficientWay(CTonewrightAcq& session) {
    if (session.GetDeviceKind() == DeviceKindFrameGrabber) {
        const ScratchFile scratch;
        return session.TransferFile(scratch.GetPath(), false) ? CoefficientWay::File : CoefficientWay::Filter;
    }
    ZvnAcqDevice* camera = session.GetCamera();
    if (!camera) return CoefficientWay::None;
    if (camera->HoldsFile(kDeviceFile)) return CoefficientWay::File;
    return camera->HasColorFeatures() ? CoefficientWay::Features : CoefficientWay::None;
}

std::optional<SentCoefficients> SendCoefficients(CTonewrightAcq& session, const std::string& path, CoefficientWay way,
                                                 const std::string& backup) {
    const auto fail = [](bool) { return std::optional<SentCoefficients>(); };
    const std::string unusable = WhyUnusableCoefficients(path);
    if (!unusable.empty()) return fail(CTivManager::Refuse(path + ": " + unusable));
    std::error_code none;
    if (std::filesystem::equivalent(path, backup, none)) {
        return fail(CTivManager::Refuse(backup + ": is to be sent, so it cannot take the backup"));
    }
    ZvnAcqDevice* camera = session.GetCamera();
    const bool hasFeatures = camera && camera->HasColorFeatures();
    const CoefficientWay found = FindCoefficientWay(session);
    const bool isThere = way == CoefficientWay::Features ? hasFeatures : way == CoefficientWay::None || way == found;
    if (!isThere) return fail(refuseWay(way));
    const bool throughFeatures = way == CoefficientWay::Features;  // also past a file
    if (!backup.empty()) {
        const bool kept =
            throughFeatures ? camera->ReadColorFeatures(backup.c_str()) : session.TransferFile(backup.c_str(), false);
        if (!kept)
            return fail(throughFeatures && CTivManager::Refuse("Cannot read the color transformation of the device."));
    }
    const bool sent =
        throughFeatures ? camera->WriteColorFeatures(path.c_str()) : session.TransferFile(path.c_str(), true);
    if (!sent)
        return fail(throughFeatures && CTivManager::Refuse("Cannot write the color transformation of the device."));
    const CoefficientWay taken = throughFeatures ? way : found;
    // Features have been read back; a file is here.
    return SentCoefficients{
        taken, taken == CoefficientWay::Features || (taken == CoefficientWay::File && isSame(session, path))};
}

std::pair<DeviceTransfer, SentCoefficients> SendToDevice(const DeviceChoice& choice, const std::string& path,
                                                         CoefficientWay way, const std::string& backup) {
    ReadWholeCoefficients(path);
    CTonewrightAcq session([](void*, int) {}, nullptr, nullptr);
    const std::string device = ConnectSession(session, choice);
    std::optional<SentCoefficients> sent;
    Require(
        [&] {
            sent = SendCoefficients(session, path, way, backup);
            return sent.has_value();
        },
        device, "cannot be written to");
    return {{device, GetDeviceWord(session.GetDeviceKind()), sent->way}, *sent};
}

DeviceTransfer ReceiveFromDevice(const DeviceChoice& choice, const std::string& path) {
    CTonewrightAcq session([](void*, int) {}, nullptr, nullptr);
    const std::string device = ConnectSession(session, choice);
    Require([&] { return session.TransferFile(path.c_str(), false); }, device, "cannot be read");
    return {device, GetDeviceWord(session.GetDeviceKind()), FindCoefficientWay(session)};
}

}  // namespace tonewright
