#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <vector>

#include "acquisition/zvn/ZvnBackend.h"

/// What can go wrong with a simulated server.
enum class SimulatedFault {
    Create,      ///< it does not open
    Buffer,      ///< no buffers
    Transfer,    ///< no transfer
    Conversion,  ///< no plain buffers, as conversion needs them
    Matrix,      ///< no plain buffers that belong to no server, as an image filter needs them
    NoFrame,     ///< never delivers
    LateFrame,   ///< delivers after 1100 ms, whether somebody still waits or not
    Trash,       ///< every second frame is trash
    Hang,        ///< gives no answer for the hang time when asked for a frame, and none after it
    Read,        ///< device files cannot be read
    Write,       ///< device files cannot be written
    Filter       ///< takes no image filter
};

/// A simulated server as its section of the INI file describes it.
struct SimulatedServer {
    std::string name;
    ZvnResourceType type = kZvnAcqDevice;
    bool isCameraLink = false;
    ZvnFrameFormat frame;            ///< width and height 0: those of the first picture
    std::filesystem::path pictures;  ///< folder of what it delivers, or one file; empty for a ramp
    std::filesystem::path files;     ///< folder of its device files, empty for none
    int noise = 0;                   ///< largest deviation of a channel, 0 to 255
    int delayMs = 0;                 ///< from asking to a frame
    int hangMs = 3000;
    std::set<SimulatedFault> faults;

    bool Has(SimulatedFault fault) const { return faults.contains(fault); }
};

/// Reads the description of all servers, in the order of the file.
/// @return why the file is wrong, empty where it is not
std::string ReadSimulation(const std::string& path, std::vector<SimulatedServer>& servers);

/// Lays the settings of a configuration file over a server; all but its kind can be set.
/// @return why the file is wrong, empty where it is not
std::string ApplyConfiguration(const std::string& path, SimulatedServer& server);
