// The router's first process: reaps, collects the log and the console, and ends everything with
// the one program it runs.
#pragma once

#include <atomic>
#include <functional>

#include "board/board.h"
#include "board/files.h"
#include "board/root.h"

namespace board {

// Seen by the router's processes and the caller of run().
struct SharedState {
  // The first process's id outside.
  std::atomic<int> init_process = 0;
  // The service process; it and its session belong to the router.
  std::atomic<int> service_process = 0;
  // Numbers of the last marks that came through log and console.
  std::atomic<unsigned> log_mark = 0;
  std::atomic<unsigned> console_mark = 0;
};

// A message that init counts instead of keeping: what was sent before it has been written.
inline constexpr char kMark = '\x1e';

// Boots and runs `inside`; returns its exit status. `booted` is closed after a byte was written to
// it once the router is up.
int run_init(const Parts& parts, const Options& options, SharedState& state, Descriptor booted,
             const std::function<int()>& inside);

// What a process of the router has around it: search path, home, umask.
void prepare_environment();

// Exit status of a process from what wait gives.
int exit_status(int wait_status);

}  // namespace board
