// The devices that a service of the firmware has seen, one a line of /tmp/terminal_list. What other
// subsystems need of it, too.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zelto::terminals {

enum class Outcome {
  kRead,
  kNoList,      // the list cannot be opened
  kNotLocked,   // the lock was refused
  kNoLockFile,  // the lock file cannot be opened
};

struct Lines {
  Outcome outcome;
  std::vector<std::string> lines;  // without line ends, empty ones left out
};

// Reads the list while holding the lock that its writer takes.
Lines read();

// The n-th blank-separated field of a line, from 1; empty when it has fewer.
std::string_view field(std::string_view line, int n);

}  // namespace zelto::terminals
