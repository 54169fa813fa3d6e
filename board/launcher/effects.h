// The effects of requests, as the launcher shows them.
#pragma once

#include <cstddef>
#include <string>

namespace launcher {

// Prints a line of the journal on standard output.
void print_effect(const std::string& effect);

// Prints what comes into the journal from the making of this on.
class EffectFollower {
 public:
  EffectFollower();
  void print_new();

 private:
  std::string unread();

  size_t position_ = 0;
  std::string incomplete_;  // a line whose end is not there yet
};

}  // namespace launcher
