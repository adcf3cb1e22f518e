#include "cli/side_by_side.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <atomic>
#include <system_error>
#include <thread>
#include <vector>

#include "cli/arguments.h"
#include "cli/signals.h"
#include "foundation/library_texts.h"

using namespace tonewright;

namespace {

constexpr int kMostJobs = 1000;

std::optional<int> parseJobs(const std::string& text) {
    const auto jobs = ParseInteger(text);
    return jobs && *jobs >= 1 && *jobs <= kMostJobs ? jobs : std::nullopt;
}

}  // namespace

std::size_t DoSideBySide(std::size_t pieces, int workers,
                         const std::function<void(std::size_t piece, std::size_t worker)>& work) {
    std::atomic<std::size_t> next{0};
    const auto run = [&](std::size_t worker) {
        while (!SignalWatch::IsEndRequested()) {
            const std::size_t piece = next++;
            if (piece >= pieces) break;
            work(piece, worker);
        }
    };
    {
        std::vector<std::jthread> others;
        const std::size_t wanted = std::min(pieces, static_cast<std::size_t>(std::max(workers, 1)));
        try {
            for (std::size_t worker = 1; worker < wanted; ++worker) {
                others.emplace_back([&run, worker] {
                    const LibraryThread thread;
                    run(worker);
                });
            }
        } catch (const std::system_error&) {  // those that are there do it all
        }
        run(0);
    }
    return std::min(next.load(), pieces);
}

int CountProcessors() { return static_cast<int>(std::max(std::thread::hardware_concurrency(), 1u)); }

void AddJobsOption(CLI::App& command, int& jobs, const std::string& what) {
    AddParsed(command, "--jobs", jobs, parseJobs, "a number from 1 to " + std::to_string(kMostJobs),
              "How many " + what + " are worked on at a time (default: the number of processors)")
        ->type_name("N");
}
