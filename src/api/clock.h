// Waiting inside a request.
#pragma once

namespace zelto::clock {

void pause(int seconds);

// Asks `done` at once and then every `interval` seconds, at most `attempts` times more. True as
// soon as it says so, false when it never did.
template <typename Done>
bool wait_until(int interval, int attempts, const Done& done) {
  for (; !done(); --attempts) {
    if (attempts <= 0) return false;
    pause(interval);
  }
  return true;
}

}  // namespace zelto::clock
