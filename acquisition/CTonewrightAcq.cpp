#include "acquisition/CTonewrightAcq.h"

#include <algorithm>
#include <new>
#include <system_error>

#include "acquisition/CTonewrightAcq_impl.h"
#include "acquisition/zvn/CAbortDlg.h"
#include "acquisition/zvn/CAcqConfigDlg.h"
#include "acquisition/zvn/ZvnAcqDevice.h"
#include "acquisition/zvn/ZvnAcquisition.h"
#include "acquisition/zvn/ZvnManager.h"
#include "acquisition/zvn/ZvnTransfer.h"
#include "acquisition/zvn/zvn_formats.h"

namespace {

constexpr int kWaitMs = 1000;

struct BufferFormat {
    std::uint32_t code;
    bool needsConversion;  // into a buffer of kZvnRgb32
    CTivData::Format imageFormat;
};

constexpr BufferFormat kBufferFormats[] = {
    {kZvnMono8, false, CTivData::FormatUByte},  {kZvnMono16, false, CTivData::FormatUShort},
    {kZvnMono1, false, CTivData::FormatBinary}, {kZvnRgb32, false, CTivData::FormatRgb},
    {kZvnRgb10, false, CTivData::FormatRgb10},  {kZvnRgb24, true, CTivData::FormatRgb},
    {kZvnRgbr24, true, CTivData::FormatRgb},
};

const BufferFormat* findFormat(std::uint32_t code) {
    const auto found = std::ranges::find(kBufferFormats, code, &BufferFormat::code);
    return found == std::end(kBufferFormats) ? nullptr : found;
}

bool hasDevice() {
    const int count = ZvnManager::GetServerCount();
    for (int server = 0; server < count; ++server) {
        if (ZvnManager::GetResourceCount(server, kZvnAcquisition) > 0) return true;
        if (ZvnManager::GetResourceCount(server, kZvnAcqDevice) > 0) return true;
    }
    return false;
}

}  // namespace

CTonewrightAcq::CTonewrightAcq(FrameCallback callback, void* context, void* parentWindow)
    : parentWindow_(parentWindow) {
    try {
        worker_ = std::make_shared<Worker>(callback, context);
    } catch (const std::bad_alloc&) {
        ReportError("CTonewrightAcq => unable to create processing event");
        return;
    }
    try {
        thread_ = std::thread(ProcessingThread, worker_);
    } catch (const std::system_error&) {
        worker_.reset();
        ReportError("CTonewrightAcq => unable to create processing thread");
    }
}

CTonewrightAcq::~CTonewrightAcq() {
    StopThread();
    DestroyObjects();
}

bool CTonewrightAcq::Configure() {
    if (!hasDevice()) return Refuse("Configure => no acquisition device found");
    CAcqConfigDlg dialog(parentWindow_, 0);
    if (setup_.category != 0) dialog.SetInForce({setup_.location, setup_.configFile});
    if (dialog.DoModal() != kZvnDialogOk) return false;
    const ZvnLocation location = dialog.GetLocation();
    const ServerClass server = Classify(location);
    const int earlierKind = deviceKind_;
    deviceKind_ = server.deviceKind;
    if (server.category == 0) return Refuse("Configure => unknown server category");
    const std::string configFile = dialog.GetConfigFile(server.category);
    if (!acquisition_) return CreateObjects(location, configFile, server.category);

    const Setup earlier = setup_;
    DestroyObjects();
    if (CreateObjects(location, configFile, server.category)) return true;
    // What worked comes back. The text of the failure stays the last one, unless this fails too.
    deviceKind_ = earlierKind;
    CreateObjects(earlier.location, earlier.configFile, earlier.category);
    setup_ = earlier;
    return false;
}

CTonewrightAcq::ServerClass CTonewrightAcq::Classify(const ZvnLocation& location) {
    if (ZvnManager::GetResourceCount(location, kZvnAcquisition) > 0) return {1, DeviceKindFrameGrabber};
    if (ZvnManager::GetResourceCount(location, kZvnAcqDevice) == 0) return {0, DeviceKindNone};
    char name[30] = "";
    ZvnManager::GetServerName(location, name, sizeof name);
    const bool isCameraLink = std::string(name).find("Camera_Link") != std::string::npos;
    return {2, isCameraLink ? DeviceKindCameraLink : DeviceKindOther};
}

bool CTonewrightAcq::CreateObjects(const ZvnLocation& location, const std::string& configFile, int category) {
    if (category == 1) acquisition_ = std::make_unique<ZvnAcquisition>(location, configFile.c_str());
    if (category == 2) acquisition_ = std::make_unique<ZvnAcqDevice>(location, configFile.c_str());
    if (!acquisition_ || !acquisition_->Create()) return Fail("Configure => cannot create Acquisition object");
    frameCounter_ = 0;
    setup_.location = location;
    setup_.category = category;
    if (deviceKind_ == DeviceKindFileOnly) return true;
    if (!CreateChain(location)) return false;
    setup_.configFile = configFile;
    return true;
}

bool CTonewrightAcq::CreateChain(const ZvnLocation& location) {
    auto buffer = std::make_unique<ZvnBufferWithTrash>(kBufferCount, *acquisition_, -1, location);
    if (!buffer->Create()) return Fail("Configure => cannot create Buffer object");
    chain_ = std::make_shared<Chain>(std::move(buffer));
    const ZvnBuffer& frames = *chain_->buffer;

    transfer_ = std::make_unique<ZvnTransfer>(TransferCallback, this, location);
    transfer_->AddPair(ZvnXferPair(*acquisition_, 0, *chain_->buffer, 0, true));
    if (!transfer_->Create()) return Fail("Configure => cannot create Transfer object");
    transfer_->SetAutoEmpty(false);

    const BufferFormat* format = findFormat(frames.GetFormat());
    if (!format) {
        return Fail(
            "Configure => input data format not supported (must be monochrome 1/8/16-bit or RGB 24/32-bit or RGBR "
            "24-bit)");
    }
    if (format->needsConversion) {
        chain_->conversion =
            std::make_unique<ZvnBuffer>(kBufferCount, frames.GetWidth(), frames.GetHeight(), kZvnRgb32, -1, location);
        if (!chain_->conversion->Create()) return Fail("Configure => cannot create Buffer object for conversion");
    }
    for (int i = 0; i < kBufferCount; ++i) {
        if (!ShowBuffer(i)) return Fail("Configure => cannot obtain Zelvan buffer address");
    }
    if (!worker_) return true;
    const std::scoped_lock held(worker_->lock);
    worker_->chain = chain_;
    return true;
}

bool CTonewrightAcq::Fail(const char* text) {
    ReportError("%s", text);
    DestroyObjects();
    return false;
}

/// Makes an image slot the view of its buffer.
bool CTonewrightAcq::ShowBuffer(int index) {
    const ZvnBuffer& pictures = chain_->Pictures();
    const BufferFormat* format = findFormat(chain_->buffer->GetFormat());
    void* address = nullptr;
    return pictures.GetAddress(index, &address) &&
           images_[static_cast<std::size_t>(index)].Set(pictures.GetWidth(), pictures.GetHeight(), format->imageFormat,
                                                        address, false);
}

void CTonewrightAcq::DestroyObjects() {
    for (auto& image : images_) image.Free();
    transfer_.reset();
    if (worker_) {
        const std::scoped_lock held(worker_->lock);
        worker_->queue.clear();  // frames whose buffers go
        worker_->chain.reset();
    }
    for (auto& flag : hasNewFrame_) flag = false;
    chain_.reset();
    acquisition_.reset();
}

bool CTonewrightAcq::Reconnect() {
    CTivImage picture;
    {
        std::unique_lock<std::mutex> converting;
        if (chain_) converting = std::unique_lock(chain_->converting);
        picture = *GetImage(-1);
    }
    picture.SetRoi({});
    DestroyObjects();
    const Setup setup = setup_;
    if (!CreateObjects(setup.location, setup.configFile, setup.category)) return false;
    return !picture.IsAllocated() || GetImage(-1)->Copy(picture);
}

bool CTonewrightAcq::Snap() {
    if (!transfer_ || !transfer_->IsCreated()) return Refuse("Snap => not initialized");
    transfer_->Snap(1);
    CAbortDlg dialog(parentWindow_, *transfer_, kWaitMs);
    if (dialog.DoModal() != kZvnDialogOk) transfer_->Abort();
    return true;
}

CTivImage* CTonewrightAcq::GetImage(int index) {
    if (index >= kBufferCount) {
        ReportError("GetImage => index out of range");
        index = 0;
    }
    if (index < 0) index = chain_ && chain_->buffer->IsCreated() ? chain_->buffer->GetIndex() : 0;
    const auto slot = static_cast<std::size_t>(index);
    // An image that was loaded into the slot has taken the view's place; a frame that came since takes it back.
    if (hasNewFrame_[slot].exchange(false) && !images_[slot].IsExternal()) ShowBuffer(index);
    return &images_[slot];
}
