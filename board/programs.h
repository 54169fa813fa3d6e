// Runs programs of the router.
#pragma once

#include <sys/types.h>

#include <string>
#include <vector>

namespace board {

struct Run {
  std::vector<std::string> arguments;  // the first is looked up in PATH
  // As the firmware's own doing, which the journal does not note.
  bool unnoted = false;
  bool silent = false;     // standard output is discarded
  bool inputless = false;  // standard input is empty
};

// Starts the program and does not wait for it. Throws when it cannot be started.
pid_t start_program(const Run& run);

// Waits for the program; returns its exit status, 128 + signal number when it died of one. Throws
// when it cannot be started.
int run_program(const Run& run);

}  // namespace board
