#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <random>
#include <vector>

// What tests of row loops share: lengths around the vector widths, and buffers off every boundary.

using Bytes = std::vector<std::uint8_t>;

inline constexpr std::size_t kRowLengths[] = {0, 1, 7, 8, 9, 31, 33, 1000};

inline Bytes RandomBytes(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    Bytes bytes(count);
    for (auto& byte : bytes) byte = static_cast<std::uint8_t>(random() >> 7);
    return bytes;
}

/// `count` bytes at an address that is `offset` past a boundary, between guards that must survive.
class GuardedBytes {
public:
    GuardedBytes(std::size_t count, std::size_t offset)
        : begin_(kGuard + offset), storage_(count + 2 * kGuard + offset, kFill) {}

    std::uint8_t* Data() { return storage_.data() + begin_; }
    template <class T>
    T* As() {
        return reinterpret_cast<T*>(Data());
    }
    Bytes Content() const { return {At(begin_), At(storage_.size() - kGuard)}; }
    bool GuardsStand() const {
        const auto isWhole = [](std::uint8_t byte) { return byte == kFill; };
        return std::all_of(At(0), At(begin_), isWhole) &&
               std::all_of(At(storage_.size() - kGuard), storage_.end(), isWhole);
    }

private:
    Bytes::const_iterator At(std::size_t index) const { return storage_.begin() + static_cast<std::ptrdiff_t>(index); }
    static constexpr std::size_t kGuard = 64;
    static constexpr std::uint8_t kFill = 0xA5;
    std::size_t begin_;
    Bytes storage_;
};

/// A source of random bytes at such an address.
inline GuardedBytes RandomGuarded(std::size_t count, std::size_t offset, unsigned seed) {
    GuardedBytes buffer(count, offset);
    const Bytes random = RandomBytes(count, seed);
    std::copy(random.begin(), random.end(), buffer.Data());
    return buffer;
}
