#include <zlib.h>

#include <span>

#include "imagefile/PngImageReader.h"
#include "tests/fuzz/fuzz_file.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t mostBytes);

namespace {

std::uint32_t bigEndian(const std::uint8_t* at) {
    return std::uint32_t{at[0]} << 24 | std::uint32_t{at[1]} << 16 | std::uint32_t{at[2]} << 8 | at[3];
}

// Puts the chunks' check sums right, since a wrong one hides all that a mutation would reach.
void mendCheckSums(std::uint8_t* data, std::size_t size) {
    for (std::size_t at = 8; at + 12 <= size;) {
        const std::size_t bytes = bigEndian(data + at);
        if (bytes > size - at - 12) return;
        const auto sum = static_cast<std::uint32_t>(crc32(0, data + at + 4, static_cast<unsigned>(bytes + 4)));
        for (unsigned k = 0; k < 4; ++k) data[at + 8 + bytes + k] = static_cast<std::uint8_t>(sum >> (24 - 8 * k));
        at += 12 + bytes;
    }
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t mostBytes,
                                               unsigned seed) {
    const std::size_t mutated = LLVMFuzzerMutate(data, size, mostBytes);
    if (seed % 16 != 0) mendCheckSums(data, mutated);
    return mutated;
}

// A PNG from memory is read or thrown out.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool started = startLibrary();
    static_cast<void>(started);
    try {
        ctiv::PngImageReader reader(std::span(data, size));
        std::uint8_t last = 0;
        if (reader.GetDataSize() > 0) reader.ReadData(reader.GetDataSize() - 1, 1, &last);
    } catch (const std::exception&) {
    }
    return 0;
}
