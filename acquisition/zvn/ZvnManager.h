#pragma once

#include <functional>
#include <string>

#include "acquisition/zvn/ZvnLocation.h"

/// What the layer tells: that something failed, or what is worth knowing about a device that works.
enum class ZvnStatus { Error, Note };

/// What acquisition hardware the machine has. Main thread only.
///
/// Where the environment variable ZVN_SIMULATION names an INI file, the servers are the simulated ones that it
/// describes, and real hardware is not looked for. Otherwise they are the GenICam cameras that are found, in builds
/// that can look for them; looking takes about a second, and what was found counts for some seconds. No server at all
/// is a normal answer.
class ZvnManager {
public:
    /// @return servers on the machine, numbered from 0 in the calls below
    static int GetServerCount();

    /// @param type 0 acquisition resources (frame grabbers), 8 acquisition devices (cameras)
    /// @return 0 for any other type, and for a server that is not there
    static int GetResourceCount(int server, int type);
    static int GetResourceCount(const ZvnLocation& location, int type);

    /// Writes the server's name and a closing zero. @param size of the buffer in bytes; a longer name is cut
    /// @return false, and an empty name, for a server that is not there
    static bool GetServerName(int server, char* buffer, int size);
    static bool GetServerName(const ZvnLocation& location, char* buffer, int size);

    static const char* GetVersion();    ///< of this layer, as in "1.0.0"
    static const char* GetCopyright();  ///< of this layer

    /// How the layer tells what went wrong: 0, as it starts, to the listener; any other mode not at all.
    static int GetDisplayStatusMode();
    static void SetDisplayStatusMode(int mode, int reserved, int alsoReserved);

    /// Hears what the layer tells, on whatever thread that happens, one call at a time; it must not call the layer.
    using StatusListener = std::function<void(ZvnStatus kind, const std::string& text)>;
    /// Sets who hears from now on; unset, a line on standard error says it. Once this returns, the earlier one is not
    /// called any more.
    static void SetStatusListener(StatusListener listener);
};
