#include "imagefile/write_image.h"

#include "foundation/SafeFile.h"
#include "foundation/nur_report.h"
#include "foundation/nur_types.h"
#include "imagefile/CTivImageFileFormat.h"
#include "imagefile/bmp.h"
#include "imagefile/tiff.h"

using namespace tonewright;

namespace {

using D = CTivData;

bool isTaken(D::Format format, int fileFormat) {
    if (nur_is_type(format, {D::FormatByte, D::FormatShort, D::FormatUByte, D::FormatUShort, D::FormatRgb,
                             D::FormatRgb10, D::FormatRgb16})) {
        return true;
    }
    if (format == D::FormatBinary) return fileFormat == ImageFileTiff || fileFormat == ImageFileBmp;
    return fileFormat == ImageFileTiff &&
           nur_is_type(format,
                       {D::FormatInt, D::FormatUInt, D::FormatFloat, D::FormatDouble, D::FormatHsv, D::FormatYuv,
                        D::FormatComplex, D::FormatPoint, D::FormatFPoint, D::FormatLab, D::FormatColorFloat,
                        D::FormatCoord3dC16, D::FormatCoord3dAC16, D::FormatCoord3dCR16, D::FormatCoord3dACRW16});
}

}  // namespace

int writeImage(const NurImage* record, const char* path, int fileFormat) {
    if (!isTaken(record->format, fileFormat)) {
        return nur_refuse_format("writeImage: cannot convert input image type %s to the specified format.\n",
                                 nur_display_name(record->format));
    }
    int answer = 0;
    if (fileFormat == ImageFileBmp) {
        answer = writeBMP(path, record);
    } else if (fileFormat == ImageFileTiff) {
        // Tries the path first, and drops what that made.
        if (!SafeOutputFile(path).IsOpen()) {
            return nur_refuse_format("writeImage: cannot write to file %s\n", path);
        }
        answer = writeTIFFFile(path, record);
    } else {
        return nur_refuse_format("writeImage: Unknown image file format %d", fileFormat);
    }
    return answer == 0 ? 0 : nur_refuse("writeImage: failed\n");
}

int writeImageToStream(const ImageParameters& parameters, const void* data, int bytes, int fileFormat,
                       CTivOutputStream* stream) {
    NurImage record;
    record.format = parameters.format.Value();
    record.width = parameters.width.Value();
    record.height = parameters.height.Value();
    record.roi = parameters.roi.IsPresent() ? parameters.roi.Value() : CTivRect{0, 0, record.width, record.height};
    record.data = const_cast<void*>(data);  // read only
    if (fileFormat != ImageFileTiff) {
        return nur_refuse("writeImageToStream: file format not supported\n");
    }
    const CTivRect& roi = record.roi;
    const bool isInside = roi.x >= 0 && roi.y >= 0 && roi.width >= 0 && roi.height >= 0 &&
                          roi.width <= record.width - roi.x && roi.height <= record.height - roi.y;
    if (!isInside || record.Pitch() * record.height > bytes) {
        return nur_refuse("writeImageToStream: image data does not fit its parameters\n");
    }
    return WriteTiffToStream(&record, &parameters, stream);
}
