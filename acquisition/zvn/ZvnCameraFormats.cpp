#include "acquisition/zvn/ZvnCameraFormats.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "acquisition/zvn/zvn_formats.h"
#include "primitives/demosaic.h"
#include "primitives/sample_rows.h"

using namespace tonewright;

namespace {

enum class Kind { Mono, Bayer, Color, LumaChroma };

/// What the samples of a frame are.
struct Layout {
    Kind kind;
    int samples;  // a pixel
    BayerPhase phase{};
    ChannelOrder order{};
    bool lumaFirst = false;
};

constexpr Layout kMono{Kind::Mono, 1};
constexpr Layout kBayerRg{Kind::Bayer, 1, {0, 0}};
constexpr Layout kBayerGr{Kind::Bayer, 1, {1, 0}};
constexpr Layout kBayerGb{Kind::Bayer, 1, {0, 1}};
constexpr Layout kBayerBg{Kind::Bayer, 1, {1, 1}};
constexpr Layout kRgb{Kind::Color, 3, {}, {true, 3}};
constexpr Layout kBgr{Kind::Color, 3, {}, {false, 3}};
constexpr Layout kRgba{Kind::Color, 4, {}, {true, 4}};
constexpr Layout kBgra{Kind::Color, 4, {}, {false, 4}};
constexpr Layout kYuyv{Kind::LumaChroma, 2, {}, {}, true};
constexpr Layout kUyvy{Kind::LumaChroma, 2, {}, {}, false};

using enum SamplePacking;

}  // namespace

struct ZvnCameraFormat {
    const char* name;
    std::uint32_t code;
    SamplePacking packing;
    int bits;  // of a sample
    Layout layout;
};

namespace {

constexpr ZvnCameraFormat kFormats[] = {
    {"Mono8", 0x01080001, Bytes, 8, kMono},
    {"Mono10", 0x01100003, Words, 10, kMono},
    {"Mono10p", 0x010A0046, Lsb10, 10, kMono},
    {"Mono10Packed", 0x010C0004, Pairs10, 10, kMono},
    {"Mono12", 0x01100005, Words, 12, kMono},
    {"Mono12p", 0x010C0047, Lsb12, 12, kMono},
    {"Mono12Packed", 0x010C0006, Pairs12, 12, kMono},
    {"Mono14", 0x01100025, Words, 14, kMono},
    {"Mono16", 0x01100007, Words, 16, kMono},

    {"BayerGR8", 0x01080008, Bytes, 8, kBayerGr},
    {"BayerRG8", 0x01080009, Bytes, 8, kBayerRg},
    {"BayerGB8", 0x0108000A, Bytes, 8, kBayerGb},
    {"BayerBG8", 0x0108000B, Bytes, 8, kBayerBg},
    {"BayerGR10", 0x0110000C, Words, 10, kBayerGr},
    {"BayerRG10", 0x0110000D, Words, 10, kBayerRg},
    {"BayerGB10", 0x0110000E, Words, 10, kBayerGb},
    {"BayerBG10", 0x0110000F, Words, 10, kBayerBg},
    {"BayerGR10p", 0x010A0056, Lsb10, 10, kBayerGr},
    {"BayerRG10p", 0x010A0058, Lsb10, 10, kBayerRg},
    {"BayerGB10p", 0x010A0054, Lsb10, 10, kBayerGb},
    {"BayerBG10p", 0x010A0052, Lsb10, 10, kBayerBg},
    {"BayerGR10Packed", 0x010C0026, Pairs10, 10, kBayerGr},
    {"BayerRG10Packed", 0x010C0027, Pairs10, 10, kBayerRg},
    {"BayerGB10Packed", 0x010C0028, Pairs10, 10, kBayerGb},
    {"BayerBG10Packed", 0x010C0029, Pairs10, 10, kBayerBg},
    {"BayerGR12", 0x01100010, Words, 12, kBayerGr},
    {"BayerRG12", 0x01100011, Words, 12, kBayerRg},
    {"BayerGB12", 0x01100012, Words, 12, kBayerGb},
    {"BayerBG12", 0x01100013, Words, 12, kBayerBg},
    {"BayerGR12p", 0x010C0057, Lsb12, 12, kBayerGr},
    {"BayerRG12p", 0x010C0059, Lsb12, 12, kBayerRg},
    {"BayerGB12p", 0x010C0055, Lsb12, 12, kBayerGb},
    {"BayerBG12p", 0x010C0053, Lsb12, 12, kBayerBg},
    {"BayerGR12Packed", 0x010C002A, Pairs12, 12, kBayerGr},
    {"BayerRG12Packed", 0x010C002B, Pairs12, 12, kBayerRg},
    {"BayerGB12Packed", 0x010C002C, Pairs12, 12, kBayerGb},
    {"BayerBG12Packed", 0x010C002D, Pairs12, 12, kBayerBg},
    {"BayerGR16", 0x0110002E, Words, 16, kBayerGr},
    {"BayerRG16", 0x0110002F, Words, 16, kBayerRg},
    {"BayerGB16", 0x01100030, Words, 16, kBayerGb},
    {"BayerBG16", 0x01100031, Words, 16, kBayerBg},

    {"RGB8", 0x02180014, Bytes, 8, kRgb},
    {"BGR8", 0x02180015, Bytes, 8, kBgr},
    {"RGBa8", 0x02200016, Bytes, 8, kRgba},
    {"BGRa8", 0x02200017, Bytes, 8, kBgra},
    {"RGB10", 0x02300018, Words, 10, kRgb},
    {"BGR10", 0x02300019, Words, 10, kBgr},
    {"RGB12", 0x0230001A, Words, 12, kRgb},
    {"BGR12", 0x0230001B, Words, 12, kBgr},
    {"RGB16", 0x02300033, Words, 16, kRgb},
    {"BGR16", 0x0230004B, Words, 16, kBgr},
    {"RGB10p32", 0x0220001D, Triples, 10, kRgb},
    {"RGB10p", 0x021E005C, Lsb10, 10, kRgb},
    {"BGR10p", 0x021E0048, Lsb10, 10, kBgr},
    {"RGB12p", 0x0224005D, Lsb12, 12, kRgb},
    {"BGR12p", 0x02240049, Lsb12, 12, kBgr},

    {"YUV422_8", 0x02100032, Bytes, 8, kYuyv},
    {"YUV422_8_UYVY", 0x0210001F, Bytes, 8, kUyvy},
    {"YCbCr422_8", 0x0210003B, Bytes, 8, kYuyv},
    {"YCbCr422_8_CbYCrY", 0x02100043, Bytes, 8, kUyvy},
};

constexpr int kWorkBits = 10;  // deeper samples are worked on with their ten highest bits

bool isDelivered10(const ZvnCameraFormat& format, int deliveredBits) {
    return deliveredBits == 10 && format.bits >= 10;
}

/// The samples of a frame, row by row.
class SampleRows {
public:
    SampleRows(const ZvnCameraFormat& format, const ZvnFrameFormat& frame, std::span<const std::byte> sent, int padding)
        : packing_(format.packing),
          count_(static_cast<std::size_t>(frame.width) * static_cast<std::size_t>(format.layout.samples)),
          bytes_(reinterpret_cast<const std::uint8_t*>(sent.data())) {
        const auto height = static_cast<std::uint64_t>(frame.height);
        const std::uint64_t row = GetPackedBytes(packing_, count_);
        pitch_ = row + static_cast<std::uint64_t>(std::max(padding, 0));
        isWhole_ = sent.size() >= pitch_ * (height - 1) + row;
        if (isWhole_ || padding > 0) return;
        runsOn_ = isWhole_ = sent.size() >= GetPackedBytes(packing_, count_ * height);
    }

    bool IsWhole() const { return isWhole_; }
    std::size_t GetCount() const { return count_; }

    void Read(int y, std::uint16_t* words, int dropBits) const {
        const auto row = static_cast<std::uint64_t>(y);
        if (runsOn_) return UnpackSamples(packing_, bytes_, row * count_, words, count_, dropBits);
        UnpackSamples(packing_, bytes_ + row * pitch_, 0, words, count_, dropBits);
    }

private:
    SamplePacking packing_;
    std::size_t count_;  // samples of a row
    const std::uint8_t* bytes_;
    std::uint64_t pitch_ = 0;
    bool runsOn_ = false;  // rows do not begin with a byte of their own
    bool isWhole_ = false;
};

void makeColors(const SampleRows& rows, const ZvnCameraFormat& format, const ZvnFrameFormat& frame, int dropBits,
                const PixelDepth& depth, std::uint32_t* pixels) {
    const auto width = static_cast<std::size_t>(frame.width);
    if (format.layout.kind == Kind::Bayer) {
        Demosaicer demosaicer(frame.width, frame.height, format.layout.phase, depth);
        for (int y = 0, given = 0; y < frame.height; ++y, pixels += width) {
            for (; given < frame.height && given <= y + 2; ++given) rows.Read(given, demosaicer.NextRow(), dropBits);
            demosaicer.MakeRow(y, pixels);
        }
        return;
    }
    std::vector<std::uint16_t> words(rows.GetCount());
    for (int y = 0; y < frame.height; ++y, pixels += width) {
        rows.Read(y, words.data(), dropBits);
        if (format.layout.kind == Kind::LumaChroma) {
            PackLumaChroma(words.data(), pixels, width, format.layout.lumaFirst);
        } else {
            PackPixels(words.data(), pixels, width, format.layout.order, depth);
        }
    }
}

}  // namespace

const ZvnCameraFormat* FindZvnCameraFormat(std::uint32_t code) {
    const auto found = std::ranges::find(kFormats, code, &ZvnCameraFormat::code);
    return found == std::end(kFormats) ? nullptr : found;
}

const ZvnCameraFormat* FindZvnCameraFormat(const std::string& name) {
    const auto found = std::ranges::find(kFormats, name, &ZvnCameraFormat::name);
    return found == std::end(kFormats) ? nullptr : found;
}

const char* GetZvnFormatName(const ZvnCameraFormat& format) { return format.name; }
std::uint32_t GetZvnFormatCode(const ZvnCameraFormat& format) { return format.code; }
int GetZvnSampleBits(const ZvnCameraFormat& format) { return format.bits; }

std::uint32_t GetZvnBufferFormat(const ZvnCameraFormat& format, int deliveredBits) {
    const bool isDeep = isDelivered10(format, deliveredBits);
    if (format.layout.kind == Kind::Mono) return isDeep ? kZvnMono16 : kZvnMono8;
    return isDeep ? kZvnRgb10 : kZvnRgb32;
}

bool IsZvnFrameCopied(const ZvnCameraFormat& format, int deliveredBits) {
    if (format.layout.kind != Kind::Mono) return false;
    return format.packing == Bytes || (format.packing == Words && isDelivered10(format, deliveredBits));
}

bool UnpackZvnFrame(const ZvnCameraFormat& format, int deliveredBits, const ZvnFrameFormat& frame,
                    std::span<const std::byte> sent, int padding, std::span<std::byte> destination) {
    const std::uint64_t needed = ZvnFrameBytes(frame.width, frame.height, frame.format);
    if (needed == 0 || destination.size() < needed) return false;
    const SampleRows rows(format, frame, sent, padding);
    if (!rows.IsWhole()) return false;
    const bool isDeep = isDelivered10(format, deliveredBits);
    const int bits = std::min(format.bits, kWorkBits);
    const PixelDepth depth{isDeep ? 0 : bits - 8, isDeep ? 10 : 8};
    if (format.layout.kind != Kind::Mono) {
        makeColors(rows, format, frame, format.bits - bits, depth,
                   reinterpret_cast<std::uint32_t*>(destination.data()));
        return true;
    }
    std::vector<std::uint16_t> words(rows.GetCount());
    for (int y = 0; y < frame.height; ++y) {
        rows.Read(y, words.data(), isDeep ? 0 : format.bits - bits);
        std::byte* row = &destination[static_cast<std::size_t>(y) * words.size() * (isDeep ? 2 : 1)];
        if (isDeep) {
            std::memcpy(row, words.data(), 2 * words.size());
        } else {
            RoundToBytes(words.data(), reinterpret_cast<std::uint8_t*>(row), words.size(), depth.dropBits);
        }
    }
    return true;
}
