#include "foundation/nur_vector.h"

#include "foundation/nur_memory.h"
#include "foundation/nur_report.h"
#include "foundation/nur_types.h"

namespace {

std::uint64_t roundUpTo8(std::uint64_t value) { return (value + 7) / 8 * 8; }

}  // namespace

int nur_vector_alloc(NurVector* vector, CTivData::Format format, std::int32_t size, bool isPromise) {
    if (format < 0 || size < 0) return -2;
    std::int64_t elements = size;
    if (format == CTivData::FormatBinary)
        elements = static_cast<std::int64_t>(roundUpTo8(static_cast<std::uint64_t>(size)));
    const auto bits = static_cast<std::uint64_t>(nur_element_bits(format));
    const std::uint64_t bytes = (bits * static_cast<std::uint64_t>(elements) + 7) / 8;
    void* data = nullptr;
    if (bytes > 0) {
        data = nur_alloc(roundUpTo8(bytes), isPromise);
        if (!data) return -1;
    }
    *vector = {format, data, static_cast<std::int32_t>(elements)};
    return 0;
}

int nur_vector_free(NurVector* vector) {
    if (!nur_type_info(vector->format)) return -1;
    nur_free(vector->data);
    *vector = {};
    return 0;
}

int nur_output_vector(NurVector* vector, CTivData::Format format, std::int32_t size, const char* caller) {
    if (!vector->data) {
        if (nur_vector_alloc(vector, format, size) == 0) return 0;
        return nur_report(1, NUR_REPORT_MEMORY, caller,
                          static_cast<int>(CTivData::GetByteCount(format, static_cast<std::uint64_t>(size))));
    }
    if (vector->format != format && !nur_same_but_sign(vector->format, format)) {
        return nur_refuse_format("%s: incompatible output vector type: %s\n", caller, nur_type_name(vector->format));
    }
    if (vector->size < size) return nur_refuse_format("%s: output vector size too small\n", caller);
    vector->format = format;
    return 0;
}
