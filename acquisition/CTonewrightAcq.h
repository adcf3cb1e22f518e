#pragma once

#include <array>
#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "acquisition/zvn/ZvnLocation.h"
#include "foundation/CTivImage.h"
#include "foundation/CTivManager.h"

class ZvnAcqDevice;
class ZvnTransfer;
class ZvnXferCallbackInfo;
class ZvnXferNode;

/// What a session is connected with.
enum DeviceKind : int {
    DeviceKindNone = 0,          ///< nothing configured
    DeviceKindFrameGrabber = 1,  ///< a server with an acquisition resource
    DeviceKindCameraLink = 2,    ///< an acquisition device whose server name holds "Camera_Link"
    DeviceKindFileOnly = 3,      ///< reserved; nothing assigns it
    DeviceKindOther = 4          ///< any other acquisition device
};

/// The session with the acquisition hardware: lets the user choose a server, grabs frames, and moves coefficients to
/// and from the device. It stands with or without a device; its image slots then serve for images from files.
///
/// Threads. Construction, destruction and every method belong to one thread, the main one. Two more are at work:
/// - the transfer's thread, for whose frames only a buffer index is queued;
/// - the processing thread, which converts each frame where need be, calls the frame callback and then gives the
///   buffer back to the transfer. Frames come in order and none is lost while the callback is slow.
///
/// The frame callback runs on the processing thread. While it runs, its frame's pixels stay as they are. It hands the
/// frame to the main thread by a blocking call, or, where the main thread leaves the image slots alone for that long,
/// reads them itself with GetImage(bufferIndex). It must not call anything else of the session.
///
/// Destruction waits at most 1000 ms for the processing thread (and at most 200 ms more for a source that hangs). A
/// callback that has not returned by then is left to its thread: no further one begins, and that thread touches
/// nothing of the session any more. So a blocking call to the main thread needs a gate that the main thread closes
/// before it destroys the session, and what the callback's context points to must outlive a callback that is late.
class CTonewrightAcq : public CTivManager {
public:
    using FrameCallback = void (*)(void* context, int bufferIndex);

    /// Starts the processing thread. Where that fails ("CTonewrightAcq => unable to create processing event", "... =>
    /// unable to create processing thread"), the session stands, but frames are never handled.
    /// @param parentWindow handed to the dialogs as it stands
    CTonewrightAcq(FrameCallback callback, void* context, void* parentWindow);
    CTonewrightAcq(const CTonewrightAcq&) = delete;
    CTonewrightAcq& operator=(const CTonewrightAcq&) = delete;
    ~CTonewrightAcq() override;

    /// Lets the user choose a server and a configuration (CAcqConfigDlg), and connects with it.
    /// @return false: on cancel, without a report; "Configure => no acquisition device found"; "Configure => unknown
    ///         server category"; or the text of the step that failed, after which an earlier setup is back
    bool Configure();

    /// Grabs one frame; it arrives through the callback. Waits at most 1000 ms (CAbortDlg).
    /// @return false only with "Snap => not initialized"; a time-out or an abort is no failure
    bool Snap();

    /// Closes and opens the device anew with the choices in force; the current image keeps its picture.
    /// @return false, and no objects, where the device does not open; false where the picture does not fit its image
    bool Reconnect();

    /// Writes a coefficient file to the device's file "ColorCorrectionMatrix" (upload), or reads that file into one.
    /// A frame grabber's goes to the last camera of the machine; where that has no such file, to the grabber itself as
    /// an image filter, which can only be written. Blocks until it is done.
    /// @return false, reported: "Cannot create link to device.", "Cannot create color correction buffer object.",
    ///         "Cannot write file to device.", "Cannot read file from device.", "Reading file from device is not
    ///         available for frame grabbers."
    bool TransferFile(const char* path, bool upload);

    /// An image slot: a view on the buffer of this index, or what was last loaded into it.
    /// @param index 0 to 3; negative: the current buffer's, slot 0 without one; 4 or more: slot 0, and "GetImage =>
    ///        index out of range" reported
    /// @return never null; the view ends with the next Configure or Reconnect
    CTivImage* GetImage(int index);

    int GetDeviceKind() const { return deviceKind_; }  ///< a DeviceKind
    ZvnAcqDevice* GetCamera() const;                   ///< null without one; until the next Configure or Reconnect
    int GetBufferCount() const { return kBufferCount; }

    /// What a server is to the session.
    struct ServerClass {
        int category;  ///< 1 a frame grabber, 2 a camera, 0 neither
        int deviceKind;
    };
    static ServerClass Classify(const ZvnLocation& location);

private:
    static constexpr int kBufferCount = 4;
    struct Setup {
        ZvnLocation location;
        std::string configFile;
        int category = 0;
    };
    struct Chain;
    struct Worker;

    static void TransferCallback(ZvnXferCallbackInfo* info);
    static void ProcessingThread(const std::shared_ptr<Worker>& worker);
    void StopThread();
    bool CreateObjects(const ZvnLocation& location, const std::string& configFile, int category);
    bool CreateChain(const ZvnLocation& location);
    bool Fail(const char* text);
    void DestroyObjects();
    bool ShowBuffer(int index);
    bool TransferThroughGrabber(const char* path, bool upload);

    void* parentWindow_;
    int frameCounter_ = 0;  // set to 0 with new objects, and read by nothing, deliberately (C1)
    int deviceKind_ = DeviceKindNone;
    std::unique_ptr<ZvnXferNode> acquisition_;
    Setup setup_;  // the one in force, or the last that was
    std::shared_ptr<Chain> chain_;
    std::unique_ptr<ZvnTransfer> transfer_;
    std::array<CTivImage, kBufferCount> images_;
    std::array<std::atomic<bool>, kBufferCount> hasNewFrame_{};
    std::vector<std::unique_ptr<ZvnAcqDevice>> unopenedDevices_;
    std::shared_ptr<Worker> worker_;
    std::thread thread_;
};
