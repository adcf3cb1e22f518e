#pragma once

/// What kind of message stands in the log. Any other number shows as "Unknown", without an icon.
enum LogType : int { LogError = 0, LogWarning = 1, LogInformation = 2 };
