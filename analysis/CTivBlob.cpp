#include "analysis/CTivBlob.h"

#include <chrono>
#include <limits>
#include <new>
#include <string>
#include <utility>

#include "analysis/blob_impl.h"
#include "analysis/threshold.h"

namespace {

using D = CTivData;

constexpr std::int32_t kMostWidth = 0x3FFFFFFF;  // run lists end with an x beyond it

struct CodeText {
    int code;
    const char* text;
};
constexpr CodeText kCodeTexts[] = {
    {kBlobNoMemory, "CTivBlob::Execute => Not enough memory - failed blobs extraction"},
    {kBlobTooMany, "CTivBlob::Execute => Too many blobs for the specified blob array size - failed blobs extraction"},
    {kBlobNoRuns, "CTivBlob::Execute => Run lengths not found - failed blob features computation"},
    {kBlobBadImage, "CTivBlob::Execute => Input image invalid - failed blobs extraction"},
    {kBlobBadFormat, "CTivBlob::Execute => Image format invalid - failed blob features computation"},
    {kBlobThresholdRange, "CTivBlob::Execute => Threshold value out of range - failed blobs extraction"},
    {kBlobThresholdOrder,
     "CTivBlob::Execute => Threshold values must be sorted in increasing order - failed blobs extraction"},
    {kBlobNotThresholded, "CTivBlob::Execute => Image not thresholded - failed blobs extraction"},
    {kBlobMixedInput, "CTivBlob::Execute => Can't mix input types (runs/images) for a given continuous frame"},
    {kBlobRunInput, "CTivBlob::Execute => External run-length's binary version not currently supported"},
    {kBlobFrameFeatures,
     "CTivBlob::Execute => Computing of convexity, perimeter and grayscale features not supported in continuous frame "
     "mode"},
    {kBlobFrameConfig,
     "CTivBlob::Execute => Configuration (computed features, intermediate results) shouldn't be changed within a "
     "continuous frame"},
};

const char* textOf(int code) {
    for (const CodeText& row : kCodeTexts) {
        if (row.code == code) return row.text;
    }
    return "CTivBlob::Execute => Failed blobs extraction";
}

// What a feature that was not computed belongs to.
const char* groupName(BlobFeatureGroup group) {
    switch (group) {
        case kBlobBasic:
            return "Basic";
        case kBlobMoment:
            return "Moment";
        case kBlobConvexity:
            return "Convexity";
        case kBlobPerimeter:
            return "Perimeter";
        default:
            return "Gray-scale";
    }
}

/// Takes the time of an Execute, whatever its outcome.
class ExecuteTimer {
public:
    explicit ExecuteTimer(CTivAlgo& algo) : algo_(algo) {}
    ~ExecuteTimer() {
        const std::chrono::duration<float, std::milli> elapsed = std::chrono::steady_clock::now() - start_;
        try {
            algo_.AddTimeSample(algo_.GetName(), elapsed.count());
        } catch (const std::bad_alloc&) {  // a sample less
        }
    }

private:
    CTivAlgo& algo_;
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

template <class Limit>
bool setLimit(ImplBlob* impl, Limit limit, int pixels, const char* method) {
    if (!impl || !impl->config_)
        return CTivManager::Refuse(std::string("CTivBlob::") + method + " => Invalid Blob Object");
    (*impl->config_).*limit = pixels;
    return true;
}

}  // namespace

bool ImplBlob::Execute(CTivImage& image) {
    const ExecuteTimer timer(*this);
    if (!IsComplete()) return Refuse("CTivBlob::Execute => Invalid object");
    try {
        array_->Restore();
    } catch (const std::bad_alloc&) {
        return Refuse("CTivBlob::Execute => Unable to resize blob array");
    }
    array_->Clear();
    int code = kBlobDone;
    try {
        const NurImage* record = image.GetRecord();
        code = record ? Extract(*record) : kBlobBadImage;
    } catch (const std::bad_alloc&) {
        code = kBlobNoMemory;
        array_->Release();
        frame_->Reset();
    }
    if (code != kBlobDone) {
        array_->Clear();
        return Refuse(textOf(code));
    }
    if (config_->inputType == kBlobImage && (config_->intermediateResults & kBlobKeepImage) &&
        !workImage_.IsAllocated())
        KeepBinaryForm(image);
    return true;
}

int ImplBlob::Extract(const NurImage& input) {
    const bool isInFrame = continuous_ && frame_->inputType != VirtualFrame::kNoInput;
    if (isInFrame && frame_->inputType != config_->inputType) return kBlobMixedInput;
    if (config_->inputType == kBlobRuns) return ExtractRuns(input);
    if (config_->inputType != kBlobImage) return kBlobUnknown;
    const bool isServed =
        input.format == D::FormatUByte || input.format == D::FormatUShort || input.format == D::FormatBinary;
    if (!input.data || !isServed || input.width >= kMostWidth) return kBlobBadImage;
    if (!continuous_) frame_->Reset();
    if (const int refused = continuous_ ? CheckFrame(input.roi.height) : kBlobDone) return refused;

    if (input.roi.width <= 0 || input.roi.height <= 0) {
        workImage_.Free();
        array_->computedGroups_ = config_->featureGroups & kBlobAllGroups;
        return kBlobDone;
    }
    const NurImage* view = &input;
    const bool isThresholded = config_->thresholdStage != 0 && input.format != D::FormatBinary;
    if (isThresholded) {
        if (const int failed = Threshold(input)) return failed;
        view = workImage_.GetRecord();
    } else {
        workImage_.Free();
    }
    const bool isPlain = !continuous_ && config_->intermediateResults == 0 && config_->featureGroups >= kBlobBasic &&
                         config_->featureGroups <= (kBlobBasic | kBlobMoment);
    if (isPlain && !(isThresholded && config_->multiLevel)) return extractBinary(*view, *config_, *frame_, *array_);
    return extractGeneral(*view, input, *config_, continuous_, *frame_, *array_);
}

int ImplBlob::ExtractRuns(const NurImage& buffer) {
    const CodedRows::Form form = CodedRows::Check(buffer);
    if (form != CodedRows::kWhole) return form == CodedRows::kBinary ? kBlobRunInput : kBlobBadImage;
    NurImage view;
    view.roi = CodedRows::Size(buffer);
    view.format = D::FormatUByte;
    view.width = view.roi.width;
    view.height = view.roi.height;
    if (!continuous_) frame_->Reset();
    if (const int refused = continuous_ ? CheckFrame(view.height) : kBlobDone) return refused;
    workImage_.Free();
    CodedRows rows(buffer, config_->background);
    return extractGeneral(view, buffer, *config_, continuous_, *frame_, *array_, &rows);
}

int ImplBlob::CheckFrame(std::int32_t height) const {
    if (frame_->lastRow > std::numeric_limits<std::int32_t>::max() - 1 - height) return kBlobUnknown;  // rows run out
    if (config_->featureGroups & ~(kBlobBasic | kBlobMoment)) return kBlobFrameFeatures;
    if (frame_->inputType == VirtualFrame::kNoInput) {
        frame_->inputType = config_->inputType;
        frame_->start = FrameConfig(*config_);
    }
    return frame_->start == FrameConfig(*config_) ? kBlobDone : kBlobFrameConfig;
}

// The work image keeps its memory from one run to the next of the same size.
int ImplBlob::Threshold(const NurImage& input) {
    const bool fits = workImage_.IsAllocated() && workImage_.GetFormat() == D::FormatUByte &&
                      workImage_.GetWidth() == input.width && workImage_.GetHeight() == input.height;
    if (!fits && !workImage_.Set(input.width, input.height, D::FormatUByte, nullptr, false)) return kBlobNoMemory;
    workImage_.GetRecord()->roi = input.roi;
    const int failed = thresholdForBlobs(input, *workImage_.GetRecord(), *config_);
    if (failed) workImage_.Free();
    return failed;
}

// Foreground of the kept image are the values from 1 to 32767, deliberately (C3) also where 16 bits hold more.
void ImplBlob::KeepBinaryForm(CTivImage& image) {
    if (image.GetFormat() == D::FormatBinary) {
        workImage_ = image;
    } else if (workImage_.Set(image.GetWidth(), image.GetHeight(), D::FormatUByte, nullptr, true)) {
        workImage_.GetRecord()->roi = image.GetRoi();
        thresh(image.GetRecord(), workImage_.GetRecord(), 1, 32767, false, false, true);
    }
}

CTivBlob::CTivBlob(int capacity, int growth) {
    try {
        impl_ = std::make_unique<ImplBlob>();
        impl_->config_ = std::make_unique<BlobConfig>();
        impl_->array_ = std::make_unique<BlobArray>(capacity, growth);
    } catch (const std::bad_alloc&) {
        ReportError("CTivBlob::CTivBlob => Unable to create Blob object");
        return;
    }
    try {
        impl_->frame_ = std::make_unique<VirtualFrame>();
    } catch (const std::bad_alloc&) {
        ReportError("CTivBlob::CTivBlob => Unable to allocate virtual frame information");
    }
}

CTivBlob::~CTivBlob() = default;
CTivBlob::CTivBlob(CTivBlob&&) noexcept = default;
CTivBlob& CTivBlob::operator=(CTivBlob&&) noexcept = default;

bool CTivBlob::SetMinWidth(int pixels) { return setLimit(impl_.get(), &BlobConfig::minWidth, pixels, "SetMinWidth"); }
bool CTivBlob::SetMaxWidth(int pixels) { return setLimit(impl_.get(), &BlobConfig::maxWidth, pixels, "SetMaxWidth"); }
bool CTivBlob::SetMinHeight(int pixels) {
    return setLimit(impl_.get(), &BlobConfig::minHeight, pixels, "SetMinHeight");
}
bool CTivBlob::SetMaxHeight(int pixels) {
    return setLimit(impl_.get(), &BlobConfig::maxHeight, pixels, "SetMaxHeight");
}

BlobConfig* CTivBlob::GetConfig() { return impl_ ? impl_->config_.get() : nullptr; }

bool CTivBlob::Execute(CTivImage& image) {
    if (!impl_) return Refuse("CTivBlob::Execute => Invalid object");
    return impl_->Execute(image);
}

bool CTivBlob::SetContinuous(bool continuous) {
    if (!impl_ || !impl_->frame_) return false;
    impl_->continuous_ = continuous;
    impl_->frame_->Reset();
    return true;
}

int CTivBlob::GetNumBlobs() const {
    if (!impl_) return -1;
    return impl_->array_ ? impl_->array_->GetAccepted() : 0;
}

const BlobRecord* CTivBlob::GetBlob(int i) const { return impl_ && impl_->array_ ? impl_->array_->Find(i) : nullptr; }

namespace {

template <class Value>
Value readBlob(const ImplBlob* impl, const BlobRecord* record, Value invalid, Value (*read)(const BlobRecord&)) {
    if (!impl) return invalid;
    return record ? read(*record) : Value{};
}

}  // namespace

int CTivBlob::GetBlobWidth(int i) const {
    return readBlob<int>(impl_.get(), GetBlob(i), -1, [](const BlobRecord& record) { return record.width; });
}
int CTivBlob::GetBlobHeight(int i) const {
    return readBlob<int>(impl_.get(), GetBlob(i), -1, [](const BlobRecord& record) { return record.height; });
}
float CTivBlob::GetCenterX(int i) const {
    return readBlob<float>(impl_.get(), GetBlob(i), -1, findFeature(BlobCenterX)->read);
}
float CTivBlob::GetCenterY(int i) const {
    return readBlob<float>(impl_.get(), GetBlob(i), -1, findFeature(BlobCenterY)->read);
}

float CTivBlob::GetFeature(int feature, int i) const {
    if (!impl_) return -1;
    const FeatureAccessor* accessor = findFeature(feature);
    const BlobRecord* record = GetBlob(i);
    const bool isThere = accessor && record && (accessor->group & (record->computedGroups | kBlobBasic));
    return isThere ? accessor->read(*record) : 0.0f;
}

bool CTivBlob::SortByFeature(int feature, int operation) {
    if (!impl_) return false;
    if (!impl_->IsComplete()) return Refuse("CTivBlob::SortByFeature => Invalid object");
    const FeatureAccessor* accessor = findFeature(feature);
    if (!accessor) return Refuse("CTivBlob::SortByFeature => Feature type out of range");
    if (operation != kBlobAscending && operation != kBlobDescending) {
        return Refuse("CTivBlob::SortByFeature => Sorting operation out of range");
    }
    if ((impl_->array_->computedGroups_ & accessor->group) == 0) {
        return Refuse(std::string("CTivBlob::SortByFeature => Specified feature not calculated. Select the ") +
                      groupName(accessor->group) + " features group to be computed");
    }
    impl_->array_->Sort(accessor->read, operation == kBlobDescending);
    return true;
}

const CTivImage* CTivBlob::GetThresholdedImage() const {
    const bool isKept = impl_ && impl_->array_ && (impl_->array_->keptResults_ & kBlobKeepImage);
    return isKept ? &impl_->workImage_ : nullptr;
}
