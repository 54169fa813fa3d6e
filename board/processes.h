// The router's processes.
#pragma once

#include <vector>

namespace board {

// Processes that requests have started and that still run: all but init, the caller and its
// ancestors, the session of `service`, and those that are exempt.
std::vector<int> request_processes(int service);

// Ends them, and waits until they are gone.
void end_request_processes(int service);

// Processes alive now do not count from here on.
void exempt_all();

}  // namespace board
