#include "acquisition/FrameMean.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "foundation/nur_image.h"

namespace tonewright {

namespace {

using Samples = std::vector<std::uint32_t>;  // channels of a row

struct Depth {
    CTivData::Format format;
    std::size_t channels;
    std::size_t words;  // of a pixel, the last one of four not in use
    std::uint32_t full;
};
constexpr Depth kDepths[] = {{CTivData::FormatUByte, 1, 1, 255},
                             {CTivData::FormatUShort, 1, 1, 65535},
                             {CTivData::FormatRgb, 3, 4, 255},
                             {CTivData::FormatRgb10, 3, 1, 1023},
                             {CTivData::FormatRgb16, 3, 4, 65535}};

const Depth* findDepth(CTivData::Format format) {
    const auto found = std::ranges::find(kDepths, format, &Depth::format);
    return found == std::end(kDepths) ? nullptr : found;
}

template <class Word>
void readWords(const Word* row, const Depth& depth, Samples& samples) {
    for (std::size_t i = 0; i < samples.size(); ++i) {
        samples[i] = row[i / depth.channels * depth.words + i % depth.channels];
    }
}

template <class Word>
void writeWords(const Samples& samples, const Depth& depth, Word* row) {
    for (std::size_t i = 0; i < samples.size(); ++i) {
        row[i / depth.channels * depth.words + i % depth.channels] = static_cast<Word>(samples[i]);
    }
}

void readRow(const CTivImage& image, int y, const Depth& depth, Samples& samples) {
    const NurImage& record = *image.GetRecord();
    samples.resize(static_cast<std::size_t>(record.width) * depth.channels);
    if (depth.full == 255) return readWords(record.Row(y), depth, samples);
    if (depth.full == 65535) return readWords(record.Row<std::uint16_t>(y), depth, samples);
    const auto* row = record.Row<std::uint32_t>(y);
    for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = row[i / 3] >> 10 * (i % 3) & 1023;
}

void writeRow(const Samples& samples, const Depth& depth, int y, CTivImage& image) {
    NurImage& record = *image.GetRecord();
    if (depth.full == 255) return writeWords(samples, depth, record.Row(y));
    if (depth.full == 65535) return writeWords(samples, depth, record.Row<std::uint16_t>(y));
    auto* row = record.Row<std::uint32_t>(y);
    for (std::size_t i = 0; i < samples.size(); i += 3) {
        row[i / 3] = samples[i] | samples[i + 1] << 10 | samples[i + 2] << 20;
    }
}

std::array<double, 3> channelMeans(const CTivImage& image, const Depth& depth) {
    std::array<double, 3> means{};
    Samples row;
    for (int y = 0; y < image.GetHeight(); ++y) {
        readRow(image, y, depth, row);
        for (std::size_t i = 0; i < row.size(); ++i) means[i % depth.channels] += row[i];
    }
    for (double& mean : means) mean /= static_cast<double>(image.GetWidth()) * image.GetHeight();
    return means;
}

std::string describe(CTivData::Format format, int width, int height) {
    const char* name = CTivData::GetFormatName(format);
    return std::string(name ? name : "no format") + " of " + std::to_string(width) + " x " + std::to_string(height);
}

}  // namespace

std::string FrameMean::Add(const CTivImage& frame) {
    const Depth* depth = findDepth(frame.GetFormat());
    if (!depth) return "frames of this format have no average";
    const auto rowSamples = static_cast<std::size_t>(frame.GetWidth()) * depth->channels;
    if (count_ == 0) {
        format_ = frame.GetFormat();
        width_ = frame.GetWidth();
        height_ = frame.GetHeight();
        sums_.assign(rowSamples * static_cast<std::size_t>(height_), 0);
    } else if (frame.GetFormat() != format_ || frame.GetWidth() != width_ || frame.GetHeight() != height_) {
        return "a frame is not as the first one was";
    }
    ++count_;
    Samples row;
    for (int y = 0; y < height_; ++y) {
        readRow(frame, y, *depth, row);
        std::uint32_t* sums = &sums_[static_cast<std::size_t>(y) * rowSamples];
        for (std::size_t i = 0; i < rowSamples; ++i) sums[i] += row[i];
    }
    return {};
}

std::string FrameMean::Check(const FrameCorrection& correction) const {
    for (const auto& [image, name] :
         {std::pair(&correction.dark, "the dark frame"), {&correction.flat, "the flat field"}}) {
        if (!image->IsAllocated()) continue;
        const bool fits = image->GetFormat() == format_ && image->GetWidth() == width_ && image->GetHeight() == height_;
        if (fits) continue;
        return std::string(name) + " is " + describe(image->GetFormat(), image->GetWidth(), image->GetHeight()) +
               ", the frames are " + describe(format_, width_, height_);
    }
    return {};
}

CTivImage FrameMean::Make(const FrameCorrection& correction) const {
    const Depth& depth = *findDepth(format_);
    CTivImage picture(width_, height_, format_, nullptr, true);
    if (!picture.IsAllocated()) return picture;
    const bool hasDark = correction.dark.IsAllocated(), hasFlat = correction.flat.IsAllocated();
    const auto means = hasFlat ? channelMeans(correction.flat, depth) : std::array<double, 3>();
    Samples dark, flat, row(static_cast<std::size_t>(width_) * depth.channels);
    for (int y = 0; y < height_; ++y) {
        if (hasDark) readRow(correction.dark, y, depth, dark);
        if (hasFlat) readRow(correction.flat, y, depth, flat);
        const std::uint32_t* sums = &sums_[static_cast<std::size_t>(y) * row.size()];
        for (std::size_t i = 0; i < row.size(); ++i) {
            double value = static_cast<double>(sums[i]) / count_;
            if (hasDark) value = std::fmax(value - dark[i], 0);
            if (hasFlat && flat[i] > 0) value *= means[i % depth.channels] / flat[i];
            row[i] = static_cast<std::uint32_t>(std::fmin(std::nearbyint(value), depth.full));
        }
        writeRow(row, depth, y, picture);
    }
    return picture;
}

}  // namespace tonewright
