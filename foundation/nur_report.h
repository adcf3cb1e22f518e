#pragma once

#include <functional>
#include <string>

/// The lower layer's error channel. Every failure of the library ends here.

/// Codes of nur_report's message table.
enum NurReportCode : int {
    NUR_REPORT_MEMORY = 0,     ///< "%s: memory allocation failed (%d bytes)\n"
    NUR_REPORT_TYPE = 1,       ///< "%s: cannot process object type \"%s\"\n"
    NUR_REPORT_CAST = 2,       ///< "%s: cannot cast type \"%s\" to \"%s\"\n"
    NUR_REPORT_SYNTAX = 3,     ///< "%s: syntax error in \"%s\" at position %d\n"
    NUR_REPORT_NO_THREAD = 5,  ///< "Thread not registered with CTivOpStatus\n"
    NUR_REPORT_FORMAT = 100    ///< the first argument is the format, the rest its arguments
};

/// Puts a message into the calling thread's record and hands it to the mode dispatcher.
/// @param level 1, the only level in use
/// @param code a NurReportCode, followed by the arguments of its text
/// @return the level, so that a lower-layer function ends with `return nur_report(1, ...)`
int nur_report(int level, int code, ...);

/// Reports a finished text. @return 1, so that a refusal of the lower layer is one line
int nur_refuse(const char* text);

/// The same for a text with arguments, by the printf rules.
int nur_refuse_format(const char* format, ...) __attribute__((format(printf, 1, 2)));

/// Starts the channel with the function that gets each finished text, registers the calling thread.
void nur_init(void (*callback)(const char* text));

/// Registers a further thread, so that its failures are told in their own words: a thread that is not registered
/// reports "Thread not registered with CTivOpStatus\n" alone. While it lives; for the thread that makes it.
class NurReportingThread {
public:
    NurReportingThread();
    NurReportingThread(const NurReportingThread&) = delete;
    NurReportingThread& operator=(const NurReportingThread&) = delete;
    ~NurReportingThread();
};

/// Runs and clears the exit hooks (at most 64), forgets threads and callback.
void nur_close();

/// What ErrorModeMessageBox does: an application with a window fills it. Unset, title and text go to standard error.
void nur_set_message_box(std::function<void(const std::string& title, const std::string& text)> box);

/// The callback of ErrorModeUser; null by default.
void nur_set_user_callback(void (*callback)(const char* text));

/// Shows a box by the hook above, whatever the error mode.
void nur_message_box(const std::string& title, const std::string& text);
