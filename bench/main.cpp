#include <benchmark/benchmark.h>

#include "board/board.h"
#include "router.h"

// Runs the benchmarks on one virtual router.
int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  return board::run({.programs = {BENCH_PROGRAMS}}, [] {
    zelto_bench::reset();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
  });
}
