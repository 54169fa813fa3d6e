#include <gmock/gmock.h>
#include <time.h>

#include "board/board.h"

// The clock of the tests: within a test program a second lasts ten milliseconds, as it does for the
// commands of the virtual router. The library waits by this function, which it takes from here.
extern "C" __attribute__((visibility("default"))) unsigned sleep(unsigned seconds) {
  constexpr long kTenMilliseconds = 10'000'000;
  const timespec second{0, kTenMilliseconds};
  for (; seconds > 0; --seconds) nanosleep(&second, nullptr);
  return 0;
}

// Every test program runs whole inside one virtual router, reset before each test.
int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();
  return board::run({.programs = {UCI_TOOL, ZELTO_CLIENT}}, [] { return RUN_ALL_TESTS(); });
}
