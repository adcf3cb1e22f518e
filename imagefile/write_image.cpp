#include "imagefile/write_image.h"

#include "foundation/nur_report.h"
#include "foundation/nur_types.h"
#include "imagefile/CTivImageFileFormat.h"
#include "imagefile/bmp.h"

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
        return nur_report(1, NUR_REPORT_FORMAT,
                          "writeImage: cannot convert input image type %s to the specified format.\n",
                          nur_display_name(record->format));
    }
    int answer = 0;
    if (fileFormat == ImageFileBmp) {
        answer = writeBMP(path, record);
    } else {
        return nur_report(1, NUR_REPORT_FORMAT, "writeImage: Unknown image file format %d", fileFormat);
    }
    return answer == 0 ? 0 : nur_report(1, NUR_REPORT_FORMAT, "writeImage: failed\n");
}
