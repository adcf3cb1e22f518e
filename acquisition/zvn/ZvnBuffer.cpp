#include "acquisition/zvn/ZvnBuffer.h"

#include <cstring>
#include <fstream>

#include "acquisition/zvn/ZvnBufferMemory_impl.h"
#include "acquisition/zvn/ZvnBufferWithTrash.h"
#include "acquisition/zvn/backend_impl.h"
#include "acquisition/zvn/zvn_formats.h"
#include "calibration/coefficient_file.h"

using namespace tonewright;

namespace {

/// Spreads pixels of three bytes over words of four, the reserved byte 0.
template <int kBlue, int kGreen, int kRed>
void spread(const std::byte* __restrict source, std::byte* __restrict destination, std::size_t pixels) {
    for (std::size_t i = 0; i < pixels; ++i) {
        destination[4 * i] = source[3 * i + kBlue];
        destination[4 * i + 1] = source[3 * i + kGreen];
        destination[4 * i + 2] = source[3 * i + kRed];
        destination[4 * i + 3] = std::byte{0};
    }
}

/// @return false, reported, for anything but a whole coefficient file of four terms
bool readMatrix(const char* path, std::span<std::byte> matrix) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) return false;
    const std::string tooShort = CheckCoefficientLength(stream);
    stream.clear();
    stream.seekg(0);
    CoefficientHead head;
    CTivVector transform;
    if (!tooShort.empty() || !ReadCoefficients(stream, head, transform)) return false;
    if (head.terms != 4 || transform.GetFormat() != CTivData::FormatFloat || transform.GetSize() != 12) {
        TellZvnStatus(std::string(path) + ": an image filter takes coefficients of 4 terms");
        return false;
    }
    std::memcpy(matrix.data(), transform.GetDataPointer(), matrix.size());
    return true;
}

}  // namespace

ZvnBuffer::ZvnBuffer(int count, int width, int height, std::uint32_t format, int, const ZvnLocation& location)
    : count_(count), frame_{width, height, format}, location_(location) {}

ZvnBuffer::~ZvnBuffer() = default;

bool ZvnBuffer::Create() {
    ZvnBackend* backend = FindZvnBackend();
    if (backend && !backend->AllowBuffers(location_)) return false;
    return Allocate();
}

bool ZvnBuffer::Allocate() {
    Destroy();
    const std::uint64_t bytes = ZvnFrameBytes(frame_.width, frame_.height, frame_.format);
    if (count_ > 0 && bytes > 0) memory_ = ZvnBufferMemory::Take(count_, bytes);
    return IsCreated();
}

void ZvnBuffer::Destroy() { memory_.reset(); }

int ZvnBuffer::GetIndex() const { return memory_ ? memory_->GetIndex() : 0; }

bool ZvnBuffer::GetAddress(int index, void** address) const {
    if (!memory_ || !memory_->Holds(index)) return false;
    *address = memory_->Pixels(index).data();
    return true;
}

bool ZvnBuffer::Copy(const ZvnBuffer& source, int sourceIndex, int index) {
    if (!memory_ || !source.memory_ || !memory_->Holds(index) || !source.memory_->Holds(sourceIndex)) return false;
    if (frame_.width != source.frame_.width || frame_.height != source.frame_.height) return false;
    const auto from = source.memory_->Pixels(sourceIndex);
    const auto to = memory_->Pixels(index);
    const std::size_t pixels = static_cast<std::size_t>(frame_.width) * static_cast<std::size_t>(frame_.height);
    if (source.frame_.format == frame_.format) {
        std::memcpy(to.data(), from.data(), from.size());
    } else if (frame_.format == kZvnRgb32 && source.frame_.format == kZvnRgb24) {
        spread<0, 1, 2>(from.data(), to.data(), pixels);
    } else if (frame_.format == kZvnRgb32 && source.frame_.format == kZvnRgbr24) {
        spread<2, 1, 0>(from.data(), to.data(), pixels);
    } else {
        return false;
    }
    return true;
}

bool ZvnBuffer::Empty(int index) {
    if (!memory_ || !memory_->Holds(index)) return false;
    memory_->Empty(index);
    return true;
}

bool ZvnBuffer::Load(const char* path, int index, int, int, const char* options) {
    const bool takesMatrix = frame_ == ZvnFrameFormat{4, 3, kZvnFloat};
    if (!memory_ || !memory_->Holds(index) || !takesMatrix || std::strcmp(options, "-format auto") != 0) return false;
    return readMatrix(path, memory_->Pixels(index));
}

ZvnBufferWithTrash::ZvnBufferWithTrash(int count, const ZvnXferNode& source, int type, const ZvnLocation& location)
    : ZvnBuffer(count, 0, 0, 0, type, location), source_(&source) {}

bool ZvnBufferWithTrash::Create() {
    const auto& source = source_->source_;
    if (!source || !source->PrepareBuffers(count_)) return false;
    frame_ = source->GetFrameFormat();
    return Allocate();
}
