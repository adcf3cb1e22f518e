#pragma once

#include <bit>
#include <cstdint>
#include <vector>

#include "foundation/nur_image.h"
#include "primitives/foreground_words.h"

/// The runs of one row, ascending: run k is from edges[2 k] to edges[2 k + 1], exclusive, in pixels of the image.
struct RowRuns {
    const std::int32_t* edges = nullptr;
    const std::int32_t* values = nullptr;  ///< one a run, or null where all have the foreground's value
    std::size_t count = 0;
};

/// Reads the runs of foreground of an image's rows. Each thread has a reader of its own.
class ForegroundRows {
public:
    /// @param image FormatUByte, UShort or Binary
    /// @param background 0: foreground is what isn't 0; any other value: what is 0
    ForegroundRows(const NurImage& image, std::uint16_t background);

    RowRuns Read(std::int32_t rowOfRoi);

private:
    void ToWords(std::int32_t rowOfRoi);

    NurImage image_;
    bool zeros_;
    tonewright::ForegroundRow8 toWords8_;
    tonewright::ForegroundRow16 toWords16_;
    tonewright::ForegroundRow8 toWords1_;
    std::vector<std::uint64_t> words_;
    std::vector<std::int32_t> edges_;
};

/// Reads the stretches of equal value other than the background, of a FormatUByte or FormatUShort image.
template <class T>
class ValueRows {
public:
    ValueRows(const NurImage& image, std::uint16_t background);

    RowRuns Read(std::int32_t rowOfRoi);

private:
    NurImage image_;
    std::uint16_t background_;
    std::vector<std::int32_t> edges_;
    std::vector<std::int32_t> values_;
};

/// Reads the runs of an image that came run-length coded, as BlobConfig::inputType tells.
class CodedRows {
public:
    enum Form { kWhole, kBroken, kBinary };

    /// @return kBroken where a row isn't there or isn't as wide as the head says, kBinary where a run has no value
    static Form Check(const NurImage& buffer);
    /// The rectangle of the coded image. @param buffer one of the form kWhole, below too
    static CTivRect Size(const NurImage& buffer);
    CodedRows(const NurImage& buffer, std::uint16_t background);

    /// The next row; its number is not looked at.
    RowRuns Read(std::int32_t row);

private:
    const std::uint32_t* next_;
    std::uint16_t background_;
    std::vector<std::int32_t> edges_;
    std::vector<std::int32_t> values_;
};

/// Room that a row's runs take at most, one of which ends a list.
inline std::size_t foregroundListSize(std::int32_t width) { return static_cast<std::size_t>(width) / 2 + 2; }
inline std::size_t valueListSize(std::int32_t width) { return static_cast<std::size_t>(width) + 2; }
