#include "imagefile/tiff_handle_impl.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <limits>
#include <memory>
#include <utility>

#include "foundation/nur_report.h"
#include "imagefile/most_bytes_impl.h"

namespace {

constexpr std::size_t kMessageBytes = 1024;

constexpr TIFFFieldInfo doubleTag(std::uint32_t tag, const char* name) {
    return {tag, 1, 1, TIFF_DOUBLE, FIELD_CUSTOM, 1, 0, const_cast<char*>(name)};
}
constexpr TIFFFieldInfo longTag(std::uint32_t tag, const char* name) {
    return {tag, 1, 1, TIFF_LONG, FIELD_CUSTOM, 1, 0, const_cast<char*>(name)};
}

const TIFFFieldInfo kFields[] = {
    doubleTag(TiffScaleX, "ScaleX"),
    doubleTag(TiffOffsetX, "OffsetX"),
    doubleTag(TiffScaleY, "ScaleY"),
    doubleTag(TiffOffsetY, "OffsetY"),
    doubleTag(TiffScaleZ, "ScaleZ"),
    doubleTag(TiffOffsetZ, "OffsetZ"),
    doubleTag(TiffInvalidZ, "InvalidZ"),
    longTag(TiffScan3dVersion, "Scan3D_Version"),
    longTag(TiffScan3dInvalidDataFlag, "Scan3D_Invalid_Data_Flag_C"),
    longTag(TiffScan3dDistanceUnit, "Scan3D_Distance_Unit"),
    longTag(TiffScan3dOutputMode, "Scan3D_Output_Mode"),
    longTag(TiffDeviceScanType, "Device_Scan_Type"),
    longTag(TiffBufferFormat, "Buffer_Format"),
    longTag(TiffSpaceUsed, "Space_Used"),
    {TiffScan3dDistanceUnitStr, TIFF_VARIABLE, TIFF_VARIABLE, TIFF_ASCII, FIELD_CUSTOM, 1, 0,
     const_cast<char*>("Scan3D_Distance_Unit_Str")},
};

TIFFExtendProc earlierExtender = nullptr;

void extendTags(TIFF* tif) {
    TIFFMergeFieldInfo(tif, kFields, static_cast<std::uint32_t>(std::size(kFields)));
    if (earlierExtender) earlierExtender(tif);
}

// libtiff asks for the tags while it opens a file, so they have to be known before the first one is opened.
[[maybe_unused]] const bool kExtenderInstalled = [] {
    earlierExtender = TIFFSetTagExtender(extendTags);
    return true;
}();

}  // namespace

struct TiffHandle::Callbacks {
    static int OnError(TIFF*, void* user, const char* module, const char* format, std::va_list arguments) {
        auto& handle = *static_cast<TiffHandle*>(user);
        if (handle.error_.empty()) handle.error_ = Compose(module, format, arguments);
        return 1;  // nobody else needs to hear of it
    }

    static int OnWarning(TIFF*, void*, const char*, const char*, std::va_list) { return 1; }

    static std::string Compose(const char* module, const char* format, std::va_list arguments) {
        char message[kMessageBytes];
        std::vsnprintf(message, sizeof message, format, arguments);
        char text[kMessageBytes + 64];
        std::snprintf(text, sizeof text, "rdImage: %s%s%s\n", module ? module : "", module ? " - " : "", message);
        return text;
    }

    // Runs a stream operation; an exception must not pass through libtiff.
    template <class Action>
    static bool Guarded(TiffHandle& handle, Action action) {
        try {
            action();
            return true;
        } catch (...) {
            handle.streamFailed_ = true;
            return false;
        }
    }

    static tmsize_t OnRead(thandle_t, void*, tmsize_t) { return 0; }

    static tmsize_t OnWrite(thandle_t client, void* data, tmsize_t bytes) {
        auto& handle = *static_cast<TiffHandle*>(client);
        if (bytes < 0 || bytes > std::numeric_limits<int>::max()) return 0;
        const auto size = static_cast<unsigned>(bytes);
        if (!Guarded(handle, [&] { handle.stream_->Write(static_cast<const char*>(data), size); })) return 0;
        handle.position_ += size;
        handle.size_ = std::max(handle.size_, handle.position_);
        return bytes;
    }

    static toff_t OnSeek(thandle_t client, toff_t offset, int origin) {
        auto& handle = *static_cast<TiffHandle*>(client);
        const std::uint64_t base = origin == SEEK_CUR ? handle.position_ : origin == SEEK_END ? handle.size_ : 0;
        const std::uint64_t target = base + offset;  // a negative offset wraps to what is meant
        if (target > std::numeric_limits<unsigned>::max()) {
            handle.streamFailed_ = true;
            return static_cast<toff_t>(-1);
        }
        // Where this fails libtiff goes on, and tells of the write that fails next rather than of a file too large.
        Guarded(handle, [&] { handle.stream_->Seek(static_cast<unsigned>(target)); });
        handle.position_ = target;
        handle.size_ = std::max(handle.size_, target);
        return target;
    }

    static toff_t OnSize(thandle_t client) { return static_cast<TiffHandle*>(client)->size_; }
    static int OnClose(thandle_t) { return 0; }
    static int OnMap(thandle_t, void**, toff_t*) { return 0; }
    static void OnUnmap(thandle_t, void*, toff_t) {}

    struct OptionsFree {
        void operator()(TIFFOpenOptions* options) const { TIFFOpenOptionsFree(options); }
    };
    using Options = std::unique_ptr<TIFFOpenOptions, OptionsFree>;

    static Options MakeOptions(TiffHandle* handle) {
        Options options(TIFFOpenOptionsAlloc());
        TIFFOpenOptionsSetErrorHandlerExtR(options.get(), OnError, handle);
        TIFFOpenOptionsSetWarningHandlerExtR(options.get(), OnWarning, handle);
        return options;
    }
};

TiffHandle::TiffHandle(const char* path, const char* mode) {
    const Callbacks::Options options = Callbacks::MakeOptions(this);
    struct stat status {};
    const std::int64_t fileBytes = ::stat(path, &status) == 0 ? std::int64_t{status.st_size} : 0;
    mostBytes_ = mostUnpackedBytes(fileBytes);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), mostBytes_);
    tif_ = TIFFOpenExt(path, mode, options.get());
}

TiffHandle::TiffHandle(const char* name, const char* mode, CTivOutputStream& stream) : stream_(&stream) {
    const Callbacks::Options options = Callbacks::MakeOptions(this);
    tif_ =
        TIFFClientOpenExt(name, mode, this, Callbacks::OnRead, Callbacks::OnWrite, Callbacks::OnSeek,
                          Callbacks::OnClose, Callbacks::OnSize, Callbacks::OnMap, Callbacks::OnUnmap, options.get());
}

void TiffHandle::Close() {
    if (tif_) TIFFClose(std::exchange(tif_, nullptr));
}

bool TiffHandle::Failed() {
    if (error_.empty()) return false;
    if (!std::exchange(isReported_, true)) nur_refuse(error_.c_str());
    return true;
}
