#include <algorithm>

#include "calibration/stream_fields_impl.h"
#include "foundation/CTivData.h"
#include "foundation/record_length.h"

namespace tonewright {

std::string CheckLength(std::istream& stream, std::uint64_t length, std::uint64_t before, int records,
                        std::uint64_t behind) {
    constexpr std::uint64_t headBytes = 44;
    std::uint64_t wanted = before;
    for (int i = 0; i < records; ++i) {
        stream.seekg(static_cast<std::streamoff>(wanted));
        wanted += headBytes;
        if (wanted > length) break;
        if (!ReadName(stream, "CTivVector")) return {};
        ReadField<std::int32_t>(stream);  // version
        const auto size = ReadField<std::int32_t>(stream);
        const auto format = ReadField<CTivData::Format>(stream);
        wanted += CTivData::GetByteCount(format, static_cast<std::uint64_t>(std::max(size, 0)));
    }
    return DescribeShortage(length, wanted + behind);
}

}  // namespace tonewright
