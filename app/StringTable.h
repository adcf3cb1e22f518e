#pragma once

/// The program's own texts, by number; a command's number gives its tip.
/// @return the text, "" for an unknown number
const char* LoadStudioString(int id);

/// The window's title while no parameter file is in play.
inline constexpr const char* kStudioTitle = "Zelvan Tonewright";

namespace string_id {
inline constexpr int kOleFailed = 100;
inline constexpr int kLoggerPane = 101;
inline constexpr int kSpectrumPane = 102;
inline constexpr int kRawColorPane = 103;
inline constexpr int kRawImage = 104;
inline constexpr int kReferenceImage = 105;
inline constexpr int kCalibrationImage = 106;
inline constexpr int kRoi = 107;
inline constexpr int kRawViewer = 108;
inline constexpr int kReferencePane = 109;
inline constexpr int kCalibratedPane = 110;
inline constexpr int kExecutionTime = 111;
inline constexpr int kPixelData = 112;
inline constexpr int kZoomFactor = 316;
inline constexpr int kBufferInformation = 317;
inline constexpr int kNextPatch = 40800;  // a part of the status bar; it has no text of its own
inline constexpr int kApplicationName = 57344;
}  // namespace string_id
