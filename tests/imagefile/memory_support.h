#pragma once

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <fstream>

/// Runs `action` in a process of its own.
/// @return by how many bytes its memory grew at the most; -1 if it crashed
template <class Action>
long long memoryTakenBy(Action action) {
    const pid_t child = ::fork();
    if (child == 0) {
        ::alarm(60);  // an endless walk through a declared size ends here
        long long pages = 0, resident = 0;
        std::ifstream("/proc/self/statm") >> pages >> resident;
        const long long before = resident * ::sysconf(_SC_PAGESIZE);
        action();
        rusage usage{};
        ::getrusage(RUSAGE_SELF, &usage);
        const long long growth = usage.ru_maxrss * 1024LL - before;
        ::_exit(static_cast<int>(growth < 0 ? 0 : growth >= 254LL << 20 ? 254 : growth >> 20));  // in MiB
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? static_cast<long long>(WEXITSTATUS(status)) << 20 : -1;
}
