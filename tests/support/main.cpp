#include <gmock/gmock.h>

#include "board/board.h"

// Every test program runs whole inside one virtual router, reset before each test.
int main(int argc, char** argv) {
  testing::InitGoogleMock(&argc, argv);
  if (GTEST_FLAG_GET(list_tests)) return RUN_ALL_TESTS();
  return board::run({.programs = {UCI_TOOL, ZELTO_CLIENT}}, [] { return RUN_ALL_TESTS(); });
}
