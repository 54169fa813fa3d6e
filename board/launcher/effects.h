// What requests do, as the launcher shows it.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace launcher {

// Prints a line of the journal on standard output.
void print_effect(const std::string& effect);

// The lines that come into a growing file from the making of this on.
class Follower {
 public:
  explicit Follower(const char* path);

  // Those that came since the last call.
  std::vector<std::string> new_lines();

 private:
  size_t size() const;
  std::string unread();

  const char* path_;
  size_t position_;
  std::string incomplete_;  // a line whose end is not there yet
};

// Prints the journal, and what the page's gateway logs: the changes it was asked for with their
// outcome, and complaints of the library.
class Reporter {
 public:
  Reporter();
  void print_new();

 private:
  Follower journal_;
  Follower log_;
};

}  // namespace launcher
