#pragma once

#include <optional>
#include <string>

class CTonewrightAcq;

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

}  // namespace tonewright
