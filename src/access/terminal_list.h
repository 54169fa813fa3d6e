// The devices that a service of the firmware has seen, one a line of /tmp/terminal_list. What other
// subsystems need of it, too.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace zelto::terminals {

// A line's fields; those that a short line lacks are empty. The name may hold blanks.
struct Terminal {
  std::string_view ip;
  std::string_view mac;
  std::string_view seconds;  // connected
  std::string_view down_rate;
  std::string_view up_rate;
  std::string_view interface;
  std::string_view name;
  std::string_view down_total;
  std::string_view up_total;
};

Terminal parse(std::string_view line);

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

}  // namespace zelto::terminals
