#include "calibration/gamma_tables.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <mutex>
#include <utility>

namespace tonewright {

namespace {

template <class Entry, std::size_t size>
void Fill(std::array<Entry, size>& table, float gamma) {
    constexpr auto fullScale = static_cast<float>(size - 1);
    constexpr float step = 1.0f / static_cast<float>(size);
    for (std::size_t i = 0; i < size; ++i) {
        const double base = static_cast<double>(static_cast<float>(i) * step);
        const float value = static_cast<float>(std::pow(base, static_cast<double>(gamma))) * fullScale;
        table[i] = value >= fullScale ? static_cast<Entry>(size - 1)
                   : value > 0.0f     ? static_cast<Entry>(value)
                                      : Entry{0};
    }
}

/// The tables of the gammas asked for last, the latest first.
struct Kept {
    std::mutex lock;
    std::array<std::pair<std::uint32_t, std::shared_ptr<const GammaTables>>, 4> tables;  // by the gamma's bits
};

Kept& KeptTables() {
    // Never freed, since the operator that the application keeps lives to the very end of the process.
    static Kept* const kept = std::make_unique<Kept>().release();
    return *kept;
}

}  // namespace

GammaTables::GammaTables(float gamma) {
    Fill(rgb, gamma);
    Fill(rgb10, gamma);
    Fill(rgb16, gamma);
}

std::shared_ptr<const GammaTables> GetGammaTables(float gamma) {
    const auto bits = std::bit_cast<std::uint32_t>(gamma);
    auto& [lock, tables] = KeptTables();
    const std::scoped_lock held(lock);
    auto place =
        std::find_if(tables.begin(), tables.end(), [&](const auto& kept) { return kept.second && kept.first == bits; });
    if (place == tables.end()) {
        --place;
        *place = {bits, std::make_shared<const GammaTables>(gamma)};
    }
    std::rotate(tables.begin(), place, place + 1);
    return tables.front().second;
}

}  // namespace tonewright
