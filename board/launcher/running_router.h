// The router that another launcher holds up, found through a file beside the build.
#pragma once

#include <functional>
#include <optional>
#include <string>

namespace launcher {

// Where a router that stays up is written down.
std::string router_file();

// Notes that the router whose first process is `process` is up.
void write_router_file(int process);

// The first process of the router that is up, if there is one.
std::optional<int> find_router();

// Runs `inside` in a process of that router; returns its exit status.
int run_in_router(int process, const std::function<int()>& inside);

}  // namespace launcher
