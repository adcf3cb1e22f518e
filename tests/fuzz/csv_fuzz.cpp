#include <cmath>
#include <stdexcept>

#include "chart/CCSVParser.h"
#include "tests/fuzz/fuzz_file.h"

// Spectrum values: read for charts of several sizes, and what was read is written and read again.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool started = startLibrary();
    static_cast<void>(started);
    const FuzzFile file(data, size);
    CCSVParser parser;
    for (const int patches : {0, 1, 3, 24}) {
        CTivVector values(patches, CTivData::FormatColorFloat, nullptr, true);
        try {
            if (!parser.Read(file.Path(), values)) continue;
        } catch (const std::invalid_argument&) {
            continue;
        } catch (const std::out_of_range&) {
            continue;
        }
        // Six digits give back each finite number but the largest, which round beyond what a float can hold.
        bool isPlain = true;
        for (int i = 0; i < patches; ++i) {
            for (int k = 0; k < 3; ++k) {
                const float value = std::abs(values.GetData(i).AsColorFloat()[k]);
                isPlain = isPlain && (value == 0 || (value > 1e-37f && value < 3e38f));
            }
        }
        const FuzzFile copy(nullptr, 0);
        parser.Write(copy.Path(), values);
        CTivVector again(patches, CTivData::FormatColorFloat, nullptr, true);
        if (isPlain && !parser.Read(copy.Path(), again)) __builtin_trap();
    }
    return 0;
}
