#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "acquisition/devices.h"

namespace tonewright {

/// How coefficients reach a session's device.
enum class CoefficientWay {
    None,      ///< not at all
    File,      ///< the device file "ColorCorrectionMatrix"
    Features,  ///< a camera's standard color transformation features, for 4 terms
    Filter     ///< a frame grabber's image filter, which cannot be read
};

/// @return the word for a person and for documents: "none", "file", "features", "filter"
const char* GetWayName(CoefficientWay way);

/// @return the way of a word that a program may be asked for: "auto" (None: the one that is found), "file", "features"
std::optional<CoefficientWay> ParseCoefficientWay(std::string_view word);

/// The way that CTonewrightAcq::TransferFile takes: the file where there is one, else features or filter.
/// @return None also for a session without a device. A frame grabber is asked by reading, and what fails is reported
CoefficientWay FindCoefficientWay(CTonewrightAcq& session);

/// What sending has done.
struct SentCoefficients {
    CoefficientWay way;
    bool verified;  ///< read back, the device gave the same
};

/// Sends a coefficient file (.ccor) to the session's device.
/// @param way File or Features where it must be that one, None for the one that is found
/// @param backup receives the device's present coefficients before anything is written; empty: they are not kept
/// @return nothing, reported, where the file cannot be a calibration, the backup is that file itself, the device does
///         not have the way, the backup or the transfer fails; but for the last two nothing was written
std::optional<SentCoefficients> SendCoefficients(CTonewrightAcq& session, const std::string& path, CoefficientWay way,
                                                 const std::string& backup);

// For programs without a dialog, which work with exceptions.

/// A transfer that was done.
struct DeviceTransfer {
    std::string device;
    const char* kind;  ///< as GetDeviceWord has it
    CoefficientWay way;
};

/// Connects, and sends as SendCoefficients does. @throw WorkFailure, also for a file that breaks off
std::pair<DeviceTransfer, SentCoefficients> SendToDevice(const DeviceChoice& choice, const std::string& path,
                                                         CoefficientWay way, const std::string& backup);

/// Connects, and writes the device's coefficients into a file. @throw WorkFailure
DeviceTransfer ReceiveFromDevice(const DeviceChoice& choice, const std::string& path);

}  // namespace tonewright
