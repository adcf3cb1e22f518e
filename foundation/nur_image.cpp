#include "foundation/nur_image.h"

#include "foundation/nur_memory.h"
#include "foundation/nur_report.h"
#include "foundation/nur_types.h"

namespace {

std::int64_t storedWidth(CTivData::Format format, std::int64_t width) {
    return format == CTivData::FormatBinary ? (width + 7) & ~std::int64_t{7} : width;
}

}  // namespace

std::int64_t nur_image_bytes(CTivData::Format format, std::int32_t width, std::int32_t height) {
    const std::int64_t row = (nur_element_bits(format) * storedWidth(format, width) + 7) / 8;
    std::int64_t bytes = 0;
    return __builtin_mul_overflow(row, std::int64_t{height}, &bytes) ? -1 : bytes;
}

int nur_image_alloc(NurImage* image, CTivData::Format format, std::int32_t width, std::int32_t height, bool isPromise) {
    if (format < 0 || width < 0 || height < 0) return -2;
    if (width > 0x7FFFFFF8) return -1;
    const std::int64_t bytes = nur_image_bytes(format, width, height);
    if (bytes < 0) return -1;
    void* data = nullptr;
    if (bytes > 0) {
        data = nur_alloc((static_cast<std::uint64_t>(bytes) + 7) / 8 * 8, isPromise);
        if (!data) return -1;
    }
    width = static_cast<std::int32_t>(storedWidth(format, width));
    *image = {format, data, width, height, {0, 0, width, height}};
    return 0;
}

int nur_image_free(NurImage* image) {
    if (!nur_type_info(image->format)) return -1;
    nur_free(image->data);
    *image = {};
    return 0;
}

int nur_output_image(NurImage* image, CTivData::Format format, std::int32_t width, std::int32_t height,
                     const char* caller, bool isPromise) {
    if (!image->data) {
        if (nur_image_alloc(image, format, width, height, isPromise) == 0) return 0;
        return nur_report(1, NUR_REPORT_MEMORY, caller, static_cast<int>(nur_image_bytes(format, width, height)));
    }
    if (image->format != format && !nur_same_but_sign(image->format, format)) {
        return nur_refuse_format("%s: incompatible output image type: %s\n", caller, nur_type_name(image->format));
    }
    if (image->roi.width < width || image->roi.height < height) {
        return nur_refuse_format("%s: output image size too small\n", caller);
    }
    image->format = format;
    return 0;
}
