// Times of what can be measured a few hundred times at most.
#pragma once

#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

namespace zelto_bench {

template <typename Work>
double seconds_of(const Work& work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
  return elapsed.count();
}

// The processor's time alone, for what does not wait.
template <typename Work>
double processor_seconds_of(const Work& work) {
  constexpr double kNanosecond = 1e-9;
  timespec begin{};
  timespec end{};
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &begin);
  work();
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &end);
  return static_cast<double>(end.tv_sec - begin.tv_sec) +
         kNanosecond * static_cast<double>(end.tv_nsec - begin.tv_nsec);
}

// Other work on the machine makes any number of turns slower, on a busy one more than half of them,
// and none faster. So this is what a turn takes by itself, and less a matter of luck than the
// fastest.
inline double lower_quartile(std::vector<double> seconds) {
  const auto quartile = seconds.begin() + static_cast<std::ptrdiff_t>(seconds.size() / 4);
  std::nth_element(seconds.begin(), quartile, seconds.end());
  return *quartile;
}

}  // namespace zelto_bench
