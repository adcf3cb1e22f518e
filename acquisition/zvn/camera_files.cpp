#ifdef TONEWRIGHT_HAVE_ARAVIS

#include "acquisition/zvn/camera_files_impl.h"

#include <algorithm>
#include <cstring>

#include "acquisition/zvn/backend_impl.h"

namespace {

constexpr std::int64_t kMostFileBytes = 16 << 20;

/// One file, open from construction to destruction.
class CameraFile {
public:
    CameraFile(ArvDevice* device, const std::string& name, const char* mode) : device_(device) {
        SetText("FileSelector", name.c_str());
        SetText("FileOpenMode", mode);
        isOpen_ = Operate("Open");
        ArvGcNode* node = arv_device_get_feature(device_, "FileAccessBuffer");
        const bool hasBuffer = node && ARV_IS_GC_REGISTER(node);
        block_.resize(hasBuffer ? arv_gc_register_get_length(ARV_GC_REGISTER(node), errors_.Next()) : 0);
    }
    CameraFile(const CameraFile&) = delete;
    CameraFile& operator=(const CameraFile&) = delete;
    ~CameraFile() {
        if (isOpen_ && !Close()) TellZvnStatus("closing a device file: " + errors_.Text());
    }

    bool IsReady() { return isOpen_ && !block_.empty() && errors_.HasNone(); }
    std::string Why() { return errors_.HasNone() ? "the camera refuses" : errors_.Text(); }

    std::int64_t GetSize() { return arv_device_get_integer_feature_value(device_, "FileSize", errors_.Next()); }

    /// @return the bytes that came, empty on failure
    std::span<const char> Read(std::int64_t offset, std::int64_t wanted) {
        const std::int64_t length = Aim(offset, wanted);
        if (!Operate("Read")) return {};
        const std::int64_t came = std::min(Number("FileOperationResult"), length);
        auto* node = ARV_GC_REGISTER(arv_device_get_feature(device_, "FileAccessBuffer"));
        arv_gc_register_get(node, block_.data(), block_.size(), errors_.Next());
        if (!errors_.HasNone() || came < 0) return {};
        return {block_.data(), static_cast<std::size_t>(came)};
    }

    /// @return how many bytes were taken, 0 on failure
    std::int64_t Write(std::int64_t offset, std::span<const char> content) {
        const std::int64_t length = Aim(offset, static_cast<std::int64_t>(content.size()));
        std::ranges::fill(block_, '\0');
        std::memcpy(block_.data(), content.data(), static_cast<std::size_t>(length));
        auto* node = ARV_GC_REGISTER(arv_device_get_feature(device_, "FileAccessBuffer"));
        arv_gc_register_set(node, block_.data(), block_.size(), errors_.Next());
        if (!Operate("Write")) return 0;
        const std::int64_t taken = Number("FileOperationResult");
        return errors_.HasNone() ? std::clamp<std::int64_t>(taken, 0, length) : 0;
    }

    bool Close() {
        isOpen_ = false;
        return Operate("Close");
    }

private:
    void SetText(const char* feature, const char* value) {
        if (errors_.HasNone()) arv_device_set_string_feature_value(device_, feature, value, errors_.Next());
    }
    std::int64_t Number(const char* feature) {
        return arv_device_get_integer_feature_value(device_, feature, errors_.Next());
    }

    /// Says which bytes the next operation is about. @return how many, as far as the buffer reaches
    std::int64_t Aim(std::int64_t offset, std::int64_t wanted) {
        const std::int64_t length = std::min(wanted, static_cast<std::int64_t>(block_.size()));
        arv_device_set_integer_feature_value(device_, "FileAccessOffset", offset, errors_.Next());
        arv_device_set_integer_feature_value(device_, "FileAccessLength", length, errors_.Next());
        return length;
    }

    bool Operate(const char* operation) {
        SetText("FileOperationSelector", operation);
        if (errors_.HasNone()) arv_device_execute_command(device_, "FileOperationExecute", errors_.Next());
        if (!errors_.HasNone()) return false;
        const char* status = arv_device_get_string_feature_value(device_, "FileOperationStatus", errors_.Next());
        return errors_.HasNone() && status && std::strcmp(status, "Success") == 0;
    }

    ArvDevice* device_;
    ArvErrors errors_;
    bool isOpen_ = false;
    std::vector<char> block_;
};

}  // namespace

std::optional<int> FindCameraFile(ArvDevice* device, const std::string& name) {
    if (!arv_device_get_feature(device, "FileSelector")) return std::nullopt;
    ArvErrors errors;
    guint count = 0;
    const char** names =
        arv_device_dup_available_enumeration_feature_values_as_strings(device, "FileSelector", &count, errors.Next());
    std::optional<int> found;
    for (guint i = 0; i < count && !found; ++i) {
        if (name == names[i]) found = static_cast<int>(i);
    }
    g_free(names);
    return found;
}

std::optional<std::vector<char>> ReadCameraFile(ArvDevice* device, const std::string& name) {
    CameraFile file(device, name, "Read");
    const std::int64_t size = file.IsReady() ? file.GetSize() : -1;
    std::vector<char> content;
    while (size <= kMostFileBytes && static_cast<std::int64_t>(content.size()) < size) {
        const auto offset = static_cast<std::int64_t>(content.size());
        const auto bytes = file.Read(offset, size - offset);
        if (bytes.empty()) break;
        content.insert(content.end(), bytes.begin(), bytes.end());
    }
    if (size >= 0 && static_cast<std::int64_t>(content.size()) == size && file.IsReady()) return content;
    TellZvnStatus("reading device file " + name + ": " + file.Why());
    return std::nullopt;
}

bool WriteCameraFile(ArvDevice* device, const std::string& name, std::span<const char> content) {
    CameraFile file(device, name, "Write");
    std::int64_t written = 0;
    while (file.IsReady() && written < static_cast<std::int64_t>(content.size())) {
        const std::int64_t taken = file.Write(written, content.subspan(static_cast<std::size_t>(written)));
        if (taken == 0) break;
        written += taken;
    }
    // Some cameras store the file only on closing, so that this is part of the writing.
    if (written == static_cast<std::int64_t>(content.size()) && file.IsReady() && file.Close()) return true;
    TellZvnStatus("writing device file " + name + ": " + file.Why());
    return false;
}

#endif
