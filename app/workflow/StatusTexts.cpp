#include "app/workflow/StatusTexts.h"

#include <cmath>

#include "app/StringTable.h"
#include "chart/patch_names.h"

using namespace tonewright;

namespace status_texts {

namespace {

QString label(int id) { return LoadStudioString(id); }

struct Channels {
    unsigned red, green, blue;
};

Channels channelsOf(const CTivData& value) {
    if (value.GetFormat() == CTivData::FormatRgb10) {
        const std::uint32_t word = value.AsRgb10();
        return {word >> 20 & 0x3FF, word >> 10 & 0x3FF, word & 0x3FF};
    }
    const auto word = static_cast<std::uint32_t>(value.GetPayload());
    return {word >> 16 & 0xFF, word >> 8 & 0xFF, word & 0xFF};
}

}  // namespace

QString BufferAtStart() { return label(string_id::kBufferInformation) + " is not available yet. Load an image first."; }

QString BufferAfterReset() { return label(string_id::kBufferInformation); }

QString Buffer(int width, int height, int bits, const QString& formatName, int bufferCount) {
    return QString::asprintf("%d x %d x %d-bit, %s, %d cycling buffer(s)", width, height, bits,
                             formatName.toUtf8().constData(), bufferCount);
}

QString PixelNotAvailable() { return label(string_id::kPixelData) + " is not available."; }

QString Pixel(long x, long y, const CTivData& value) {
    const CTivData::Format format = value.GetFormat();
    if (CTivData::IsColor(format)) {
        if (CTivData::GetFormatBits(format) != 32) return {};
        const Channels channels = channelsOf(value);
        return QString::asprintf("Pos %04ld,%04ld | Val %04X,%04X,%04X", x, y, channels.red, channels.green,
                                 channels.blue);
    }
    const float number = value.AsFloat();
    if (CTivData::IsInteger(format)) {
        constexpr float kBeyond = 9223372036854775808.0f;
        const auto whole = std::abs(number) < kBeyond ? static_cast<unsigned>(static_cast<long long>(number)) : 0u;
        return QString::asprintf("Pos %04ld,%04ld | Val %04X", x, y, whole);
    }
    return QString::asprintf("Pos %04ld,%04ld | Val %f", x, y, static_cast<double>(number));
}

QString Roi(const ViewRect& roi) {
    return QString::asprintf("ROI s:(%04ld,%04ld), w:%04ld, h:%04ld", static_cast<long>(roi.left),
                             static_cast<long>(roi.top), static_cast<long>(roi.right - roi.left),
                             static_cast<long>(roi.bottom - roi.top));
}

QString Zoom(float zoom) { return QString::asprintf("Zoom %07.2fx", static_cast<double>(zoom * 100.0f)); }

QString NextPatch(std::size_t picked, const ChartSize& chart) {
    constexpr int kNamedRows = 4, kNamedColumns = 6;
    const auto patches = static_cast<std::size_t>(chart.Width) * static_cast<std::size_t>(chart.Height);
    if (picked >= patches) return QString("picked: %1 of %2").arg(picked).arg(patches);
    QString next = QString::number(picked + 1);
    if (chart.Width == kNamedColumns && chart.Height == kNamedRows) next += QString(" ") + kPatchNames[picked];
    return QString("next: %1 (%2 of %3)").arg(next).arg(picked).arg(patches);
}

}  // namespace status_texts
