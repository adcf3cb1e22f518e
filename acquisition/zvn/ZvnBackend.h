#pragma once

#include <array>
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

/// Something about a device as it is set that spoils a calibration.
struct ZvnNote {
    std::string feature;
    std::string value;
    std::string line;  ///< for the configuration file, which ends it
    std::string text;  ///< a sentence for a person
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

    /// @return whether the device itself holds a file that FindFile finds; its features may stand in for one
    virtual bool HoldsFile(const std::string& name) { return FindFile(name).has_value(); }
    /// @return whether a transform of 4 terms can be written to features of the device
    virtual bool HasColorFeatures() { return false; }
    /// The transform in the device's features, as its rows red, green, blue of an offset (a fraction of full scale) and
    /// the weights of red, green, blue. @return nothing where there are no such features or reading fails
    virtual std::optional<std::array<float, 12>> ReadColorFeatures() { return std::nullopt; }
    /// Writes them, puts them in force and reads them back. @return false with the earlier ones in force where it can
    /// be
    virtual bool WriteColorFeatures(std::span<const float, 12>) { return false; }

    /// What spoils a calibration, as the device was when it was opened.
    virtual std::vector<ZvnNote> GetNotes() { return {}; }
    /// How long the device gathers light for a frame, in milliseconds; 0 where it doesn't say.
    virtual int GetExposureMs() const { return 0; }

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
