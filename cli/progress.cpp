#include "cli/progress.h"

#include <unistd.h>

#include <iostream>

Progress::Progress(std::size_t count, bool isWanted)
    : count_(count), isShown_(isWanted && count > 1 && ::isatty(STDERR_FILENO)) {}

Progress::~Progress() { Clear(); }

void Progress::TellDone(const std::string& name, const std::function<void()>& tell) {
    const std::lock_guard lock(gate_);
    Clear();
    tell();
    ++done_;
    if (isShown_) std::cerr << "\r\033[K" << done_ << " of " << count_ << "  " << name << std::flush;
}

void Progress::Clear() const {
    if (isShown_) std::cerr << "\r\033[K" << std::flush;
}
