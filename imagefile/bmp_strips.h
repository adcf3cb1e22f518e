#pragma once

#include <functional>
#include <string>

#include "foundation/CTivImage.h"

namespace tonewright {

/// Reads a plain bitmap of 24 bits a pixel, changes it and writes it, strip by strip, so that the pixels stay in the
/// cache and a picture of any size takes the memory of a strip. What is written equals CTivImage's Load, the change of
/// the whole image, and Save as ImageFileBmp.
/// @param from, to  UTF-8; may be the same file
/// @param change makes `changed` of `strip`, both in FormatRgb and of the same size and ROI: whole rows, in the file's
///        order; what lies outside the ROI does not count. Answers false to give up
/// @return false, nothing written, where this is no way to do it: the file is no file or another kind of bitmap, breaks
///         off or cannot be read; the place to write is no file or cannot be replaced; `change` gave up. Load and Save
///         are the way then, and tell what is wrong
bool RewriteBitmap(const std::string& from, const std::string& to,
                   const std::function<bool(const CTivImage& strip, CTivImage& changed)>& change);

}  // namespace tonewright
