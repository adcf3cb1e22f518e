#include "imagefile/read_image.h"

#include <fstream>

#include "imagefile/bmp.h"
#include "imagefile/tiff.h"

int ctiv_readImageFromFile(NurImage* record, const char* path, ImageParameters* metadata) {
    if (!std::ifstream(path, std::ios::binary)) return 100;
    if (metadata) metadata->ClearOptional();
    int answer = 1;
    if (isBMP(path)) {
        answer = readBMP(path, record);
    } else if (isTIFF(path)) {
        answer = readTIFFFile(path, record, metadata);
    }
    if (answer != 0) return 1;
    if (metadata) {
        *metadata->width.Set() = record->width;
        *metadata->height.Set() = record->height;
        *metadata->format.Set() = record->format;
        *metadata->roi.Set() = record->roi;
    }
    return 0;
}
