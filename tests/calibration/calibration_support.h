#pragma once

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "calibration/CTivTonewrightDC.h"
#include "foundation/CTivVector.h"
#include "tests/support/library.h"

/// `count` colors drawn from a seed; `least` keeps the channels away from 0.
inline CTivVector RandomColors(int count, CTivData::Format format, unsigned seed, std::uint32_t least = 0) {
    std::mt19937 random(seed);
    const std::uint32_t fullScale = format == CTivData::FormatRgb     ? 255
                                    : format == CTivData::FormatRgb10 ? 1023
                                                                      : 65535;
    CTivVector colors(count, format, nullptr, true);
    for (int i = 0; i < count; ++i) {
        const auto draw = [&] { return least + static_cast<std::uint32_t>(random()) % (fullScale + 1 - least); };
        const std::uint32_t r = draw(), g = draw(), b = draw();
        if (format == CTivData::FormatRgb) {
            colors.SetData(i, {format, r << 16 | g << 8 | b});
        } else if (format == CTivData::FormatRgb10) {
            colors.SetData(i, CTivData::Rgb10(r, g, b));
        } else {
            colors.SetData(i, {format, std::uint64_t{r} << 32 | g << 16 | b});
        }
    }
    return colors;
}

inline CTivVector RgbColors(std::initializer_list<std::array<std::uint8_t, 3>> colors) {
    CTivVector vector(static_cast<int>(colors.size()), CTivData::FormatRgb, nullptr, true);
    int index = 0;
    for (const auto& [r, g, b] : colors) vector.SetData(index++, CTivData::Rgb(r, g, b));
    return vector;
}

inline CTivVector FloatQuads(std::vector<std::array<float, 4>> values) {
    return {static_cast<int>(values.size()), CTivData::FormatColorFloat, values.data(), true};
}

inline std::vector<float> Floats(const CTivVector& vector) {
    const auto* data = static_cast<const float*>(vector.GetDataPointer());
    return data ? std::vector<float>(data, data + vector.GetSize()) : std::vector<float>();
}

/// A folder of its own for each test, gone with it.
class CalibrationFiles : public testing::Test {
protected:
    void SetUp() override {
        std::string name = (std::filesystem::temp_directory_path() / "tonewrightXXXXXX").native();
        ASSERT_NE(::mkdtemp(name.data()), nullptr);
        folder_ = name;
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::string Path(const std::string& name) const { return (folder_ / name).native(); }
    std::string Put(const std::string& name, const std::string& bytes) const {
        std::ofstream(Path(name), std::ios::binary) << bytes;
        return Path(name);
    }
    std::string Get(const std::string& name) const {
        std::ifstream stream(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    std::filesystem::path folder_;
};

/// Bytes of a file put together field by field.
class FileBytes {
public:
    FileBytes& Name(std::string name) {
        name.resize(32);
        bytes_ += name;
        return *this;
    }
    template <class... Fields>
    FileBytes& Add(const Fields&... fields) {
        (bytes_.append(reinterpret_cast<const char*>(&fields), sizeof fields), ...);
        return *this;
    }
    FileBytes& Vector(std::int32_t size, std::int32_t format, const std::string& elements = {}) {
        Name("CTivVector").Add(100, size, format);
        bytes_ += elements;
        return *this;
    }
    FileBytes& Vector(const CTivVector& vector) {
        const auto bytes = CTivData::GetByteCount(vector.GetFormat(), static_cast<std::uint64_t>(vector.GetSize()));
        return Vector(vector.GetSize(), vector.GetFormat(),
                      std::string(static_cast<const char*>(vector.GetDataPointer()), bytes));
    }
    const std::string& Bytes() const { return bytes_; }

private:
    std::string bytes_;
};

/// A coefficient file with `coefficients` as its transform.
inline std::string CoefficientBytes(std::int32_t terms, std::vector<float> coefficients, std::int32_t version = 7300) {
    const CTivVector transform(static_cast<int>(coefficients.size()), CTivData::FormatFloat, coefficients.data(), true);
    return FileBytes().Name("CTivTonewrightDC_XForm").Add(version, terms).Vector(transform).Bytes();
}
