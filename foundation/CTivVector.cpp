#include "foundation/CTivVector.h"

#include <cstring>
#include <stdexcept>

#include "foundation/native_record_impl.h"
#include "foundation/nur_vector.h"

class ImplVector : public CTivManager {
public:
    NurVector record_;
    bool external_ = false;

    ~ImplVector() override {
        if (!external_ && record_.data && nur_vector_free(&record_) != 0) {
            ReportError("CTivVector::Free => Cannot free vector data");
        }
    }
};

namespace {
constexpr const char* kRecordName = "CTivVector";
constexpr const char* kBinarySize = "CTivVector::Set => Size of binary vectors must be multiple of 8";
constexpr const char* kCannotAllocate = "CTivVector::Set => Cannot allocate vector data";

bool isUnevenBinary(CTivData::Format format, int size) { return format == CTivData::FormatBinary && size % 8 != 0; }

std::uint64_t dataBytes(const NurVector& record) {
    return record.size > 0 ? CTivData::GetByteCount(record.format, static_cast<std::uint64_t>(record.size)) : 0;
}
}  // namespace

CTivVector::CTivVector() : impl_(std::make_unique<ImplVector>()) {}

CTivVector::CTivVector(const CTivVector& source) : CTivManager(source), impl_(std::make_unique<ImplVector>()) {
    *this = source;
}

CTivVector::CTivVector(int size, CTivData::Format format, void* data, bool copy) : CTivVector() {
    Set(size, format, data, copy);
}

CTivVector& CTivVector::operator=(const CTivVector& source) {
    if (this == &source || !source.impl_) return *this;
    impl_ = std::make_unique<ImplVector>();
    const NurVector& record = source.impl_->record_;
    if (record.format != CTivData::FormatNone) Set(record.size, record.format, record.data, true);
    return *this;
}

CTivVector::~CTivVector() = default;

bool CTivVector::Set(int size, CTivData::Format format, void* data, bool copy) {
    if (!impl_) return false;
    if (isUnevenBinary(format, size)) return Refuse(kBinarySize);
    if (!Free()) return false;
    if (data && !copy) {
        impl_->record_ = {format, data, size};
        impl_->external_ = true;
        return true;
    }
    if (nur_vector_alloc(&impl_->record_, format, size) != 0) return Refuse(kCannotAllocate);
    if (data && impl_->record_.data) std::memcpy(impl_->record_.data, data, dataBytes(impl_->record_));
    return true;
}

bool CTivVector::Free() {
    if (!impl_) return false;
    if (impl_->record_.data && !impl_->external_ && nur_vector_free(&impl_->record_) != 0) {
        return Refuse("CTivVector::Free => Cannot free vector data");
    }
    impl_->record_ = {};
    impl_->external_ = false;
    return true;
}

CTivData CTivVector::GetData(int index) const {
    if (!IsAllocated()) {
        ReportError("CTivVector::GetData => vector not allocated");
        return {};
    }
    if (index < 0 || index >= impl_->record_.size) {
        ReportError("CTivVector::GetData => Index out of range");
        return {};
    }
    return CTivData::ReadElement(impl_->record_.format, impl_->record_.data, static_cast<std::uint64_t>(index));
}

bool CTivVector::SetData(int index, const CTivData& value) {
    if (!IsAllocated()) return Refuse("CTivVector::SetData => vector not allocated");
    if (index < 0 || index >= impl_->record_.size) return Refuse("CTivVector::SetData => Index out of range");
    if (value.GetFormat() == CTivData::FormatNone) {
        return Refuse("CTivVector::SetData => unknown format in <data> argument");
    }
    CTivData::WriteElement(impl_->record_.format, impl_->record_.data, static_cast<std::uint64_t>(index), value);
    return true;
}

CTivData::Format CTivVector::GetFormat() const { return impl_ ? impl_->record_.format : CTivData::FormatNone; }
int CTivVector::GetSize() const { return impl_ ? impl_->record_.size : -1; }
bool CTivVector::IsAllocated() const { return impl_ && impl_->record_.data; }
void* CTivVector::GetDataPointer() const { return impl_ ? impl_->record_.data : nullptr; }
const NurVector* CTivVector::GetRecord() const { return impl_ ? &impl_->record_ : nullptr; }
NurVector* CTivVector::GetRecord() { return impl_ ? &impl_->record_ : nullptr; }

bool CTivVector::WriteFile(std::ostream& stream) const {
    if (!impl_) return false;
    const NurVector& record = impl_->record_;
    writeRecordHead(stream, kRecordName);
    stream.write(reinterpret_cast<const char*>(&record.size), sizeof record.size);
    stream.write(reinterpret_cast<const char*>(&record.format), sizeof record.format);
    if (record.data) {
        stream.write(static_cast<const char*>(record.data), static_cast<std::streamsize>(dataBytes(record)));
    }
    return true;
}

namespace {

struct VectorHead {
    std::int32_t size = 0;
    CTivData::Format format = CTivData::FormatGeneric;
};

VectorHead readHead(std::istream& stream) {
    if (!readRecordHead(stream, kRecordName)) throw std::runtime_error("incompatible file");
    VectorHead head;
    readOrZero(stream, &head.size, sizeof head.size);
    readOrZero(stream, &head.format, sizeof head.format);
    return head;
}

// Reads head and elements by `read`; the reason of a failure becomes the report.
template <class Read>
bool reportingRead(Read read) {
    try {
        return read();
    } catch (const std::runtime_error& failure) {
        return CTivManager::Refuse(std::string("CTivVector::ReadFile => ") + failure.what());
    }
}

}  // namespace

bool CTivVector::ReadFile(std::istream& stream) {
    if (!impl_) return false;
    return reportingRead([&] {
        const VectorHead head = readHead(stream);
        if (head.size == 0 || head.format == CTivData::FormatNone) return Free();
        bool ready = !isUnevenBinary(head.format, head.size) || Refuse(kBinarySize);
        ready = ready && Free();
        // Elements without a size would be as many as the file likes to say.
        if (ready && CTivData::GetFormatBits(head.format) == 0) ready = Refuse(kCannotAllocate);
        if (ready && nur_vector_alloc(&impl_->record_, head.format, head.size, true) != 0)
            ready = Refuse(kCannotAllocate);
        if (!ready) throw std::runtime_error("failed to reallocate");
        if (impl_->record_.data) readIntoZeros(stream, impl_->record_.data, dataBytes(impl_->record_));
        return true;
    });
}

bool CTivVector::ReadFileInPlace(std::istream& stream) {
    if (!impl_) return false;
    return reportingRead([&] {
        const VectorHead head = readHead(stream);
        const NurVector& record = impl_->record_;
        if (head.format != record.format) throw std::runtime_error("source and destination formats must be the same");
        if (record.size < head.size) throw std::runtime_error("preallocated source size not large enough");
        if (record.data && head.size > 0) {
            readOrZero(stream, record.data,
                       CTivData::GetByteCount(record.format, static_cast<std::uint64_t>(head.size)));
        }
        return true;
    });
}
