#ifdef TONEWRIGHT_HAVE_ARAVIS

#include "acquisition/zvn/camera_source_impl.h"

#include <algorithm>
#include <chrono>
#include <future>
#include <system_error>
#include <thread>

#include "acquisition/zvn/backend_impl.h"
#include "acquisition/zvn/camera_features_impl.h"
#include "acquisition/zvn/camera_files_impl.h"
#include "acquisition/zvn/camera_notes_impl.h"
#include "acquisition/zvn/color_features.h"
#include "acquisition/zvn/ini_impl.h"

namespace {

constexpr std::chrono::milliseconds kCloseTime{300};
constexpr std::uint64_t kPopMicroseconds = 20'000;
constexpr const char* kDeliveredBits = "DeliveredBits";  // the one line of a configuration that is no feature

constexpr const char* kCoefficientFile = "ColorCorrectionMatrix";
constexpr double kLongestExposureMs = 60'000;

ZvnGrab fail(ArvErrors& errors) {
    TellZvnStatus(errors.HasNone() ? "the camera gives no stream" : errors.Text());
    return ZvnGrab::None;
}

}  // namespace

CameraSource::~CameraSource() {
    auto closed = std::make_shared<std::promise<void>>();
    auto done = closed->get_future();
    try {
        std::thread([closed, camera = std::move(camera_)]() mutable {
            camera.reset();
            closed->set_value();
        }).detach();
        done.wait_for(kCloseTime);
    } catch (const std::system_error&) {  // no thread: the camera was closed with the closure
    }
}

std::string CameraSource::Apply(const std::string& name, const std::string& value) {
    if (name != kDeliveredBits) return CameraFeatures(Device()).Apply(name, value);
    if (value != "8" && value != "10") return std::string(kDeliveredBits) + " is 8 or 10";
    deliveredBits_ = value == "10" ? 10 : 8;
    return {};
}

std::string CameraSource::Configure(const std::string& configFile) {
    RestoreColorFeatures();
    arv_camera_set_acquisition_mode(camera_.get(), ARV_ACQUISITION_MODE_CONTINUOUS, nullptr);
    if (!configFile.empty()) {
        const std::string wrong = ReadIni(configFile, [this](const std::string&, const std::string& name,
                                                             const std::string& value) { return Apply(name, value); });
        if (!wrong.empty()) return wrong;
    }
    ArvErrors errors;
    int x = 0, y = 0;
    arv_camera_get_region(camera_.get(), &x, &y, &frame_.width, &frame_.height, errors.Next());
    pixelFormat_ = arv_camera_get_pixel_format(camera_.get(), errors.Next());
    payload_ = arv_camera_get_payload(camera_.get(), errors.Next());
    if (!errors.HasNone()) return errors.Text();
    format_ = FindZvnCameraFormat(pixelFormat_);
    if (format_) {
        frame_.format = GetZvnBufferFormat(*format_, deliveredBits_);
    } else {
        // A code that the session refuses, with the right number of bits.
        frame_.format = static_cast<std::uint32_t>(ARV_PIXEL_FORMAT_BIT_PER_PIXEL(pixelFormat_)) << 8;
        TellRefusedFormat();
    }
    LookAtTrigger();
    LookAtExposure();
    CameraFeatures features(Device());
    notes_ = FindZvnNotes(features);
    for (const ZvnNote& note : notes_) TellZvnStatus(note.text, ZvnStatus::Note);
    return {};
}

/// A camera in trigger mode sends nothing by itself.
void CameraSource::LookAtTrigger() {
    CameraFeatures features(Device());
    try {
        isTriggered_ = false;
        if (!features.Has("TriggerMode") || features.GetChoice("TriggerMode") != "On") return;
        const std::string source = features.Has("TriggerSource") ? features.GetChoice("TriggerSource") : "Software";
        isTriggered_ = source == "Software" && features.Has("TriggerSoftware");
        if (isTriggered_) return;
        TellZvnStatus("the camera waits for a trigger from " + source +
                          "; the line \"TriggerSource = Software\" has each "
                          "grab trigger its frame, \"TriggerMode = Off\" lets frames run freely",
                      ZvnStatus::Note);
    } catch (const ZvnFeatureFailure& failure) {
        TellZvnStatus(failure.what());
    }
}

void CameraSource::LookAtExposure() {
    ArvErrors errors;
    const double microseconds = arv_camera_get_exposure_time(camera_.get(), errors.Next());
    const bool isKnown = errors.HasNone() && microseconds > 0;
    exposureMs_ = isKnown ? static_cast<int>(std::min(microseconds / 1000, kLongestExposureMs)) : 0;
}

/// By name, and with those of the camera's formats that would do.
void CameraSource::TellRefusedFormat() const {
    ArvErrors errors;
    const char* name = arv_camera_get_pixel_format_as_string(camera_.get(), errors.Next());
    std::string text = std::string("pixel format ") + (name ? name : "without a name") + " cannot be used";
    guint count = 0;
    gint64* codes = arv_camera_dup_available_pixel_formats(camera_.get(), &count, errors.Next());
    const char* joint = "; set PixelFormat to ";
    for (guint i = 0; codes && i < count; ++i) {
        const ZvnCameraFormat* other = FindZvnCameraFormat(static_cast<std::uint32_t>(codes[i]));
        if (!other) continue;
        text.append(joint).append(GetZvnFormatName(*other));
        joint = ", ";
    }
    g_free(codes);
    TellZvnStatus(text);
}

ZvnGrab CameraSource::Grab(std::span<std::byte> destination, std::stop_token stop) {
    ArvErrors errors;
    // The stream ends before this returns, so that nothing writes to the destination afterwards.
    const ArvStreamHandle stream(arv_camera_create_stream(camera_.get(), nullptr, nullptr, errors.Next()));
    if (!errors.HasNone() || !stream) return fail(errors);
    // Frames land where they belong, unless they have to be unpacked or the camera sends more than the picture.
    const bool isDirect = format_ && IsZvnFrameCopied(*format_, deliveredBits_) && payload_ == destination.size();
    arv_stream_push_buffer(stream.get(),
                           isDirect ? arv_buffer_new(payload_, destination.data()) : arv_buffer_new_allocate(payload_));
    arv_camera_start_acquisition(camera_.get(), errors.Next());
    if (isTriggered_) arv_camera_software_trigger(camera_.get(), errors.Next());
    if (!errors.HasNone()) return fail(errors);
    ZvnGrab result = ZvnGrab::None;
    while (result == ZvnGrab::None && !stop.stop_requested()) {
        ArvBufferHandle buffer(arv_stream_timeout_pop_buffer(stream.get(), kPopMicroseconds));
        if (!buffer) continue;
        if (TakePicture(buffer.get(), isDirect, destination)) {
            result = ZvnGrab::Frame;
        } else {
            arv_stream_push_buffer(stream.get(), buffer.release());  // came in damaged: the next one
            if (isTriggered_) arv_camera_software_trigger(camera_.get(), errors.Next());
        }
    }
    arv_camera_stop_acquisition(camera_.get(), errors.Next());
    if (!errors.HasNone()) TellZvnStatus(errors.Text());
    return result;
}

bool CameraSource::TakePicture(ArvBuffer* buffer, bool isDirect, std::span<std::byte> destination) const {
    if (!format_ || arv_buffer_get_status(buffer) != ARV_BUFFER_STATUS_SUCCESS) return false;
    if (arv_buffer_get_image_pixel_format(buffer) != pixelFormat_ ||
        arv_buffer_get_image_width(buffer) != frame_.width || arv_buffer_get_image_height(buffer) != frame_.height) {
        return false;
    }
    if (isDirect) return true;
    std::size_t size = 0;
    const void* data = arv_buffer_get_image_data(buffer, &size);
    int padding = 0, rowsBehind = 0;
    arv_buffer_get_image_padding(buffer, &padding, &rowsBehind);
    return data && UnpackZvnFrame(*format_, deliveredBits_, frame_, {static_cast<const std::byte*>(data), size},
                                  padding, destination);
}

// Where the camera has no file for coefficients, its color transformation features stand in for one.

bool CameraSource::HoldsFile(const std::string& name) { return FindCameraFile(Device(), name).has_value(); }

std::optional<int> CameraSource::FindFile(const std::string& name) {
    const auto index = FindCameraFile(Device(), name);
    return !index && name == kCoefficientFile && HasColorFeatures() ? 0 : index;
}

std::optional<std::vector<char>> CameraSource::ReadFile(const std::string& name) {
    if (HoldsFile(name) || name != kCoefficientFile || !HasColorFeatures()) return ReadCameraFile(Device(), name);
    const auto matrix = ReadColorFeatures();
    return matrix ? std::optional(MakeZvnCoefficients(*matrix)) : std::nullopt;
}

bool CameraSource::WriteFile(const std::string& name, std::span<const char> content) {
    if (HoldsFile(name) || name != kCoefficientFile || !HasColorFeatures()) {
        return WriteCameraFile(Device(), name, content);
    }
    ZvnColorMatrix matrix{};
    const std::string wrong = ReadZvnCoefficients(content, matrix);
    if (wrong.empty()) return WriteColorFeatures(matrix);
    TellZvnStatus("writing the color transformation: " + wrong);
    return false;
}

/// The greatest count of a channel inside the camera, which offsets are counted in.
double CameraSource::GetFullScale() {
    CameraFeatures features(Device());
    try {
        const double most = features.Has("PixelDynamicRangeMax") ? features.GetNumber("PixelDynamicRangeMax") : 0;
        if (most > 0) return most;
    } catch (const ZvnFeatureFailure&) {  // the pixel format says it, too
    }
    return (1 << (format_ ? GetZvnSampleBits(*format_) : 8)) - 1;
}

bool CameraSource::HasColorFeatures() {
    CameraFeatures features(Device());
    return HasZvnColorFeatures(features);
}

/// Before the configuration, which may switch the transformation on.
void CameraSource::RestoreColorFeatures() {
    CameraFeatures features(Device());
    ZvnColorJournal journal(FindZvnJournalFolder(), key_);
    const ZvnColorRecovery recovery = RestoreZvnColorFeatures(features, journal);
    if (!recovery.text.empty()) TellZvnStatus(recovery.text, recovery.isGood ? ZvnStatus::Note : ZvnStatus::Error);
}

std::optional<std::array<float, 12>> CameraSource::ReadColorFeatures() {
    CameraFeatures features(Device());
    try {
        return ReadZvnColorFeatures(features, GetFullScale());
    } catch (const ZvnFeatureFailure& failure) {
        TellZvnStatus(std::string("reading the color transformation: ") + failure.what());
        return std::nullopt;
    }
}

bool CameraSource::WriteColorFeatures(std::span<const float, 12> matrix) {
    CameraFeatures features(Device());
    ZvnColorMatrix values{};
    std::ranges::copy(matrix, values.begin());
    try {
        ZvnColorJournal journal(FindZvnJournalFolder(), key_);
        const std::string note = WriteZvnColorFeatures(features, GetFullScale(), values, journal);
        if (!note.empty()) TellZvnStatus(note, ZvnStatus::Note);
        return true;
    } catch (const ZvnFeatureFailure& failure) {
        TellZvnStatus(std::string("writing the color transformation: ") + failure.what());
        return false;
    }
}

#endif
