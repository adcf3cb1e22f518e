#include "cli/side_by_side.h"

#include <algorithm>
#include <atomic>
#include <system_error>
#include <thread>
#include <vector>

#include "cli/signals.h"
#include "foundation/library_texts.h"

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
