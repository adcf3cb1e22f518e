#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// A frame as a camera packs it, made bit by bit from what the format's name says (PFNC names tell all of it).
class PackedFrame {
public:
    /// Red, green and blue of a pixel, 0 to 1.
    using Scene = std::function<std::array<double, 3>(int x, int y)>;

    PackedFrame(std::string format, int width, int height) : name_(std::move(format)), width_(width), height_(height) {
        const std::size_t digit = name_.find_first_of("0123456789", name_[0] == 'Y' ? name_.find('_') : 0);
        const std::size_t behind = name_.find_first_not_of("0123456789", digit);
        bits_ = std::stoi(name_.substr(digit, behind - digit));
        suffix_ = behind == std::string::npos ? "" : name_.substr(behind);
    }

    std::vector<std::byte> Pack(const Scene& scene) {
        bytes_.clear();
        for (int y = 0; y < height_; ++y) {
            bytes_.resize((place_ + 7) / 8);
            place_ = 8 * bytes_.size();  // rows begin with a byte of their own
            PackRow(y, scene);
        }
        if (suffix_ == "p32") bytes_.resize((bytes_.size() + 3) / 4 * 4);
        return bytes_;
    }

private:
    void PackRow(int y, const Scene& scene) {
        inRow_ = 0;
        start_ = bytes_.size();
        for (int x = 0; x < width_; ++x) {
            const auto color = scene(x, y);
            if (name_.starts_with("Mono")) {
                Put(color[1]);
            } else if (name_.starts_with("Bayer")) {
                Put(color[std::string("RGB").find(BayerLetter(x, y))]);
            } else if (name_.starts_with("Y")) {
                PutLumaChroma(x, color);
            } else {
                const bool isBgr = name_.starts_with("BGR");
                for (std::size_t i : {0, 1, 2}) Put(color[isBgr ? 2 - i : i]);
                if (suffix_ == "p32") place_ += 2;
                if (name_[3] == 'a') Put(1);
            }
        }
        bytes_.resize((place_ + 7) / 8);
    }

    /// The name has the first row's two letters.
    char BayerLetter(int x, int y) const {
        const std::string first = name_.substr(5, 2);
        const std::string second = first == "RG" ? "GB" : first == "GR" ? "BG" : first == "GB" ? "RG" : "GR";
        return (y % 2 == 0 ? first : second)[static_cast<std::size_t>(x % 2)];
    }

    void PutLumaChroma(int x, const std::array<double, 3>& c) {
        const double y = 0.299 * c[0] + 0.587 * c[1] + 0.114 * c[2];
        const double chroma = 128 / 255.0 + (x % 2 == 0 ? (c[2] - y) / 1.772 : (c[0] - y) / 1.402);
        const bool chromaFirst = name_.ends_with("UYVY") || name_.ends_with("CbYCrY");
        Put(chromaFirst ? chroma : y);
        Put(chromaFirst ? y : chroma);
    }

    void Put(double value) {
        const double full = std::exp2(bits_) - 1;
        const auto sample = static_cast<unsigned>(std::lround(std::fmin(std::fmax(value, 0), 1) * full));
        const int stored = suffix_.empty() || suffix_[0] == '_' ? (bits_ + 7) / 8 * 8 : bits_;
        for (int bit = 0; bit < stored; ++bit) {
            const bool isSet = (sample >> bit & 1) != 0;
            if (suffix_ == "Packed") {
                const std::size_t low = static_cast<std::size_t>(bits_ - 8), b = static_cast<std::size_t>(bit);
                const std::size_t pair = start_ + inRow_ / 2 * 3, second = inRow_ % 2;
                SetBit(b < low ? 8 * (pair + 1) + 4 * second + b : 8 * (pair + 2 * second) + b - low, isSet);
            } else {
                SetBit(place_++, isSet);
            }
        }
        ++inRow_;
        if (suffix_ == "Packed") place_ = 8 * start_ + 12 * inRow_;
    }

    void SetBit(std::size_t at, bool isSet) {
        if (bytes_.size() <= at / 8) bytes_.resize(at / 8 + 1);
        if (isSet) bytes_[at / 8] |= std::byte{1} << at % 8;
    }

    std::string name_;
    int width_;
    int height_;
    int bits_ = 0;
    std::string suffix_;
    std::vector<std::byte> bytes_;
    std::size_t place_ = 0;  // bits written
    std::size_t start_ = 0;  // byte where the row begins
    std::size_t inRow_ = 0;  // samples of the row
};
