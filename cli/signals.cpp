#include "cli/signals.h"

#include <unistd.h>

#include <atomic>

#include "foundation/StagedFile.h"

using namespace tonewright;

namespace {

constexpr int kEndSignals[] = {SIGINT, SIGTERM, SIGHUP};
constexpr int kFailedWriteSignals[] = {SIGXFSZ, SIGPIPE};
constexpr int kStopWatching = SIGUSR1;

std::atomic<bool> takesRequests{false};
std::atomic<int> requested{0};

bool isIgnored(int signal) {
    struct sigaction action {};
    return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

[[noreturn]] void endBy(int signal) {
    StagedFile::DropAll();
    std::signal(signal, SIG_DFL);
    sigset_t alone;
    sigemptyset(&alone);
    sigaddset(&alone, signal);
    ::pthread_sigmask(SIG_UNBLOCK, &alone, nullptr);
    ::raise(signal);
    ::_exit(128 + signal);
}

}  // namespace

SignalWatch::SignalWatch() {
    for (const int signal : kFailedWriteSignals) std::signal(signal, SIG_IGN);
    sigemptyset(&watched_);
    sigaddset(&watched_, kStopWatching);
    for (const int signal : kEndSignals) {
        if (!isIgnored(signal)) sigaddset(&watched_, signal);
    }
    ::pthread_sigmask(SIG_BLOCK, &watched_, nullptr);
    thread_ = std::thread(&SignalWatch::Run, this);
}

SignalWatch::~SignalWatch() {
    ::pthread_kill(thread_.native_handle(), kStopWatching);
    thread_.join();
}

void SignalWatch::Run() {
    for (int signal = 0; ::sigwait(&watched_, &signal) == 0 && signal != kStopWatching;) {
        int none = 0;
        if (!takesRequests || !requested.compare_exchange_strong(none, signal)) endBy(signal);
    }
}

void SignalWatch::TakeRequests() { takesRequests = true; }

bool SignalWatch::IsEndRequested() { return requested != 0; }

void SignalWatch::EndIfRequested() {
    if (requested != 0) endBy(requested);
}
