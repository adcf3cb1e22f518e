#include "foundation/cast_rows.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>
#include <type_traits>

#include "primitives/convert_rows.h"
#include "primitives/statistics_rows.h"
#include "primitives/wide.h"

namespace tonewright {

namespace {

using D = CTivData;

template <class T>
using Limits = std::numeric_limits<T>;

template <class T>
constexpr T atLeast(T value, T other) {
    return value > other ? value : other;
}
template <class T>
constexpr T atMost(T value, T other) {
    return value < other ? value : other;
}

// Limits and cuts a float. By the bits of the floats, whose order is that of whole numbers: over selections of floats
// the rows take four times as long.
template <class To>
std::int32_t cutInto(float value) {
    constexpr auto bitsOf = [](To limit) { return std::bit_cast<std::int32_t>(static_cast<float>(limit)); };
    std::int32_t bits = std::bit_cast<std::int32_t>(value) & -static_cast<std::int32_t>(value == value);
    bits = atMost(bits, bitsOf(Limits<To>::max()));
    if constexpr (std::is_signed_v<To>) {  // of negative ones the largest has the largest magnitude
        bits = static_cast<std::int32_t>(
            atMost(static_cast<std::uint32_t>(bits), static_cast<std::uint32_t>(bitsOf(Limits<To>::lowest()))));
    } else {
        bits = atLeast(bits, 0);
    }
    return static_cast<std::int32_t>(std::bit_cast<float>(bits));
}

template <class From, class To>
struct Clip {
    static To Convert(From value, const CastScale&) {
        if constexpr (std::is_floating_point_v<To>) {
            return static_cast<To>(value);
        } else if constexpr (std::is_floating_point_v<From>) {
            return static_cast<To>(cutInto<To>(value));
        } else {  // in the source's own width, where both limits have a place
            constexpr auto kLowest = static_cast<From>(std::max<int>(Limits<To>::lowest(), Limits<From>::lowest()));
            constexpr auto kHighest = static_cast<From>(std::min<int>(Limits<To>::max(), Limits<From>::max()));
            return static_cast<To>(atMost(atLeast(value, kLowest), kHighest));
        }
    }
};

template <class From, class To>
struct Offset {
    static To Convert(From value, const CastScale&) {
        constexpr int kHalf = 1 << (8 * sizeof(To) - 1);
        return static_cast<To>(value + (std::is_signed_v<From> ? kHalf : -kHalf));
    }
};

// In float32: a 16-bit source's product with 255 stays below 2^24, and no quotient below a whole number rounds up to
// it, so whole numbers come out as by whole division.
template <class From, class To>
struct Stretch {
    static To Convert(From value, const CastScale& scale) {
        const float stretched = (static_cast<float>(value) - scale.least) * scale.span / scale.reach;
        if constexpr (std::is_floating_point_v<To>) {
            return stretched;
        } else {
            using Above = std::make_unsigned_t<To>;  // what lies above the lowest
            return static_cast<To>(Limits<To>::lowest() + cutInto<Above>(stretched));
        }
    }
};

template <class From, class To, class Kind>
TONEWRIGHT_BODY void castRow(const void* source, void* destination, std::size_t count, const CastScale& scale) {
    const auto* from = static_cast<const char*>(source);
    auto* to = static_cast<char*>(destination);
    const CastScale local = scale;
    for (std::size_t i = 0; i < count; ++i) {
        From in;
        std::memcpy(&in, from + i * sizeof in, sizeof in);
        const To out = Kind::Convert(in, local);
        std::memcpy(to + i * sizeof out, &out, sizeof out);
    }
}
template <class From, class To, class Kind>
void plainRow(const void* source, void* destination, std::size_t count, const CastScale& scale) {
    castRow<From, To, Kind>(source, destination, count, scale);
}
template <class From, class To, class Kind>
TONEWRIGHT_WIDE void wideRow(const void* source, void* destination, std::size_t count, const CastScale& scale) {
    castRow<From, To, Kind>(source, destination, count, scale);
}

// From floats to bytes, which images are shown by.
template <auto row>
void floatToByte(const void* source, void* destination, std::size_t count, const CastScale& scale) {
    row(static_cast<const float*>(source), static_cast<std::uint8_t*>(destination), count,
        {scale.least, scale.span, scale.reach});
}

template <class From, class To>
CastRow pick(CastKind kind, bool wide) {
    if constexpr (std::is_integral_v<From> && std::is_integral_v<To>) {
        if (kind == CastKind::Offset) {
            return wide ? wideRow<From, To, Offset<From, To>> : plainRow<From, To, Offset<From, To>>;
        }
    }
    if constexpr (std::is_same_v<From, float> && std::is_same_v<To, std::uint8_t>) {
        return wide ? floatToByte<FloatToByteRowWide> : floatToByte<FloatToByteRowPlain>;
    }
    if (kind == CastKind::Stretch) {
        return wide ? wideRow<From, To, Stretch<From, To>> : plainRow<From, To, Stretch<From, To>>;
    }
    return wide ? wideRow<From, To, Clip<From, To>> : plainRow<From, To, Clip<From, To>>;
}

template <class T>
TONEWRIGHT_BODY void rangeOfRow(const T* row, std::size_t count, T& least, T& most) {
    T lowest = least, highest = most;
    for (std::size_t i = 0; i < count; ++i) {
        lowest = atMost(row[i], lowest);
        highest = atLeast(row[i], highest);
    }
    least = lowest;
    most = highest;
}
template <class T>
void rangeRowPlain(const T* row, std::size_t count, T& least, T& most) {
    rangeOfRow(row, count, least, most);
}
template <class T>
TONEWRIGHT_WIDE void rangeRowWide(const T* row, std::size_t count, T& least, T& most) {
    rangeOfRow(row, count, least, most);
}

template <class T>
auto rangeRow(bool wide) {
    if constexpr (std::is_same_v<T, float>) {
        return wide ? FloatRangeRowWide : FloatRangeRowPlain;
    } else {
        return wide ? rangeRowWide<T> : rangeRowPlain<T>;
    }
}

}  // namespace

CastRow GetCastRow(CTivData::Format from, CTivData::Format to, CastKind kind, bool wide) {
    return WithNumber(from, CastRow{}, [&]<class From>(From) {
        return WithNumber(to, CastRow{}, [&]<class To>(To) { return pick<From, To>(kind, wide); });
    });
}

CastRange GetCastRange(const NurImage& image, bool wide) {
    if (!image.data || image.roi.width <= 0 || image.roi.height <= 0) return {};
    return WithNumber(image.format, CastRange{}, [&]<class T>(T) {
        const auto row = rangeRow<T>(wide);
        constexpr bool kHasEnds = Limits<T>::has_infinity;  // a first pixel that is no number says nothing
        T least = kHasEnds ? Limits<T>::infinity() : Limits<T>::max();
        T most = kHasEnds ? -Limits<T>::infinity() : Limits<T>::lowest();
        for (int y = 0; y < image.roi.height; ++y) {
            row(image.RoiRow<const T>(y), static_cast<std::size_t>(image.roi.width), least, most);
        }
        return CastRange{static_cast<float>(least), static_cast<float>(most)};
    });
}

}  // namespace tonewright
