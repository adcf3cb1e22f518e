#pragma once

#include <algorithm>
#include <cstdint>

/// The most that a packed file may become: its bytes unfolded by the scheme that packs most, which is LZW, and a blank
/// page's worth. A head that declares more is a lie.
inline std::int64_t mostUnpackedBytes(std::int64_t fileBytes) {
    constexpr std::int64_t freeBytes = std::int64_t{64} << 20;
    constexpr std::int64_t bytesAFileByte = 1400;
    constexpr std::int64_t mostFileBytes = std::int64_t{1} << 50;
    return freeBytes + bytesAFileByte * std::min(fileBytes, mostFileBytes);
}
