#include <time.h>

// The clock of the tests: within a test program a second lasts ten milliseconds, as it does for the
// commands of the virtual router. The library waits by this function, which it takes from here.
extern "C" __attribute__((visibility("default"))) unsigned sleep(unsigned seconds) {
  constexpr long kTenMilliseconds = 10'000'000;
  const timespec second{0, kTenMilliseconds};
  for (; seconds > 0; --seconds) nanosleep(&second, nullptr);
  return 0;
}
