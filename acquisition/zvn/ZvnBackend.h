#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

#include "acquisition/zvn/ZvnLocation.h"

/// Kinds of resources that a server can hold.
enum ZvnResourceType : int {
    kZvnAcquisition = 0,  ///< a frame grabber's input
    kZvnAcqDevice = 8     ///< a camera
};

/// Size and format of a source's frames or of buffers. Rows follow each other without padding.
struct ZvnFrameFormat {
    int width = 0;             ///< pixels
    int height = 0;            ///< pixels
    std::uint32_t format = 0;  ///< one of zvn_formats.h, or a code that the session refuses

    bool operator==(const ZvnFrameFormat&) const = default;
};

/// A server as it is found on the machine.
struct ZvnServer {
    std::string name;  ///< unique, at most 29 bytes
    int acquisitions = 0;
    int acqDevices = 0;
};

enum class ZvnGrab {
    Frame,  ///< the destination holds a whole frame
    Trash,  ///< a frame came, but not one to show
    None    ///< no frame: stopped, or the device failed, which takes back the request
};

/// An open resource. Destroying it closes it.
///
/// One thread grabs; the other calls come from the main thread while none grabs. A source outlives its session where
/// a grab does not end in time; it must not need anything of the program then but itself.
class ZvnSource {
public:
    virtual ~ZvnSource() = default;

    virtual ZvnFrameFormat GetFrameFormat() const = 0;
    /// Asked before buffers for this source are taken. @return false if it cannot feed so many
    virtual bool PrepareBuffers(int count) = 0;
    /// Asked when a transfer is set up. @return false if the source cannot deliver
    virtual bool PrepareTransfer() = 0;

    /// Waits for one frame, from now on, and puts it into `destination`, which has exactly the frame's bytes.
    /// Ends soon after a stop was asked for, and should then leave the destination alone.
    virtual ZvnGrab Grab(std::span<std::byte> destination, std::stop_token stop) = 0;

    /// Device files. @return the file's index on the device, nothing where it holds none of this name
    virtual std::optional<int> FindFile(const std::string& name) = 0;
    virtual std::optional<std::vector<char>> ReadFile(const std::string& name) = 0;
    virtual bool WriteFile(const std::string& name, std::span<const char> content) = 0;

    /// Has the device run each color through a matrix: three rows (red, green, blue) of four numbers.
    virtual bool SetImageFilter(int index, std::span<const float, 12> matrix) = 0;
};

/// A family of hardware. What it cannot do it answers with nothing or false, after a word through TellZvnStatus.
class ZvnBackend {
public:
    virtual ~ZvnBackend() = default;

    /// The servers at this moment, in a lasting order.
    virtual std::vector<ZvnServer> ListServers() = 0;
    /// @param configFile what the user picked; empty: the device stays as it is
    /// @return null where there is no such resource or it does not open
    virtual std::shared_ptr<ZvnSource> Open(const ZvnLocation& location, ZvnResourceType type,
                                            const std::string& configFile) = 0;
    /// Asked before plain buffers are taken. @param location the default one for buffers that belong to no server
    virtual bool AllowBuffers(const ZvnLocation& location) = 0;
};

/// Puts a backend of the program's own in the place of the cameras; simulated servers still come first. Main thread
/// only, while nothing is open. @param backend outlives its use; null: the cameras again
void SetZvnBackend(ZvnBackend* backend);
