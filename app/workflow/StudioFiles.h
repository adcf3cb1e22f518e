#pragma once

#include <QString>

/// What the file dialogs are asked with and where the profile keeps their last answers.
namespace studio_files {

inline constexpr const char* kImageSection = "ImageFile";
inline constexpr const char* kParameterSection = "ParamFile";
inline constexpr const char* kCoefficientSection = "ColorCorrectionFile";

inline constexpr const char* kLoadName = "LoadName";
inline constexpr const char* kLoadType = "LoadType";
inline constexpr const char* kSaveName = "SaveName";
inline constexpr const char* kSaveType = "SaveType";
inline constexpr const char* kName = "Name";

inline constexpr const char* kOpenImageFilters =
    "BMP Files (*.bmp)|*.bmp|TIFF Files (*.tif)|*.tif|Zelvanpix Files (*.zvk)|*.zvk||";
inline constexpr const char* kSaveImageFilters =
    "BMP Files (*.bmp)|*.bmp|TIF Files (*.tif)|*.tif|Zelvanpix Files (*.zvk)|*.zvk||";
inline constexpr const char* kParameterFilters = "Tonewright Parameters (*.twkp)|*.twkp||";
inline constexpr const char* kCoefficientFilters = "Color Correction (*.ccor)|*.ccor||";

/// Directories under the base directory. Each begins with a separator of its own, so that the path holds two.
QString DefaultPath(const QString& baseDir, const char* directory, const char* name);
inline constexpr const char* kImages = "Images";
inline constexpr const char* kParameters = "Parameters";
inline constexpr const char* kColorCorrection = "ColorCorrection";

/// The number that CTivImage::Save takes for a filter of the save dialog: BMP, TIFF, native. Others stand for
/// themselves.
int SaveFormatOfFilter(int filterIndex);

}  // namespace studio_files
