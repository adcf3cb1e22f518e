#pragma once

#include <string>

/// What the library does with an error text besides keeping it for GetLastErrorText.
enum ErrorMode : int {
    ErrorModeNone = 0,        ///< nothing: the caller asks for the text
    ErrorModeMessageBox = 1,  ///< shows it (the mode before anyone sets another)
    ErrorModeException = 2,   ///< throws std::runtime_error with it
    ErrorModeUser = 3         ///< hands it to the user callback
};

/// Base of every library object and of the application classes that use the library; also the library's front door:
/// start and end, error mode, error text. Counts the live instances of the process.
class CTivManager {
public:
    CTivManager();
    CTivManager(const CTivManager&);
    CTivManager& operator=(const CTivManager&) { return *this; }
    virtual ~CTivManager();

    /// Starts the library: configuration, error channel, locks. Once a process; a second call does nothing.
    /// The calling thread becomes the one whose error texts are kept.
    static void Initialize();

    /// Ends the library: runs the exit hooks, drops the thread records, the type table and the locks.
    static void Shutdown();

    /// @param mode an ErrorMode; any other value is accepted and acts as ErrorModeNone
    static void SetErrorMode(int mode);

    /// Reports a failure. The text is formatted by the printf rules to at most 1023 characters, and once more, with no
    /// arguments, on its way into the thread's buffer: there "%%" becomes "%" and any other conversion nothing.
    static void ReportError(const char* format, ...) __attribute__((format(printf, 1, 2)));

    /// Reports a finished text through ReportError and answers false, so that a refusal is one line.
    [[nodiscard]] static bool Refuse(const std::string& text);

    /// @return the text of the calling thread's last failure ("" before the first), valid until its next failure;
    ///         null for any thread but the one that ran Initialize
    static const char* GetLastErrorText();

    /// @return GetLastErrorText() as a string, empty where that is null
    static std::string GetLastErrorString();

    /// @return how many library objects the process holds at the moment
    static long GetInstanceCount();
};
