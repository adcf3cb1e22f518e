#include <algorithm>

#include "calibration/stream_fields_impl.h"
#include "foundation/CTivData.h"

std::uint64_t GetStreamLength(std::istream& stream) {
    stream.seekg(0, std::ios::end);
    const std::streamoff end = stream.tellg();
    stream.seekg(0);
    return end > 0 ? static_cast<std::uint64_t>(end) : 0;
}

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
    wanted += behind;
    if (wanted <= length) return {};
    return "the file breaks off: it has " + std::to_string(length) + " bytes of at least " + std::to_string(wanted);
}
