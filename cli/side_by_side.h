#pragma once

#include <cstddef>
#include <functional>
#include <string>

namespace CLI {
class App;
}

/// Does pieces of work side by side: calls `work(piece, worker)` for the pieces 0 to `pieces` - 1, each once and begun
/// in this order. Once the tool was asked to end none begins; those begun are finished.
/// @param workers how many run at a time, at least 1; where the system has no more threads, fewer
/// @param work may be called from several threads, whose `worker` from 0 on differs; must not throw. What the library
///             reports meanwhile goes to the Require that it concerns
/// @return how many pieces were begun
std::size_t DoSideBySide(std::size_t pieces, int workers,
                         const std::function<void(std::size_t piece, std::size_t worker)>& work);

/// The processors at hand, at least 1.
int CountProcessors();

/// Adds --jobs. @param what is worked on, for the help
void AddJobsOption(CLI::App& command, int& jobs, const std::string& what);
