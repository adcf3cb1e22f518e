#pragma once

#include <csignal>
#include <thread>

/// How the tool takes signals while one of these lives; one a process, made before any other thread.
///
/// A signal that asks it to end (SIGINT, SIGTERM, SIGHUP, unless ignored from the start) first removes the files that
/// are only staged, then ends it as that signal does by itself. A write beyond the limit on file sizes or into a pipe
/// that nobody reads fails and is told, instead of ending the tool without a word.
class SignalWatch {
public:
    SignalWatch();
    SignalWatch(const SignalWatch&) = delete;
    SignalWatch& operator=(const SignalWatch&) = delete;
    ~SignalWatch();

    /// From here on the first such signal is a request that the work asks for (IsEndRequested); the second ends it.
    static void TakeRequests();
    static bool IsEndRequested();
    /// Ends the tool by the signal that was taken as a request; returns where there was none.
    static void EndIfRequested();

private:
    void Run();

    sigset_t watched_{};
    std::thread thread_;
};
