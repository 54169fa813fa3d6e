#include <benchmark/benchmark.h>

#include "board/board.h"
#include "ratios.h"

// Runs every benchmark on one virtual router and prints the ratios; exit status 1 when one is over
// its budget.
int main(int argc, char** argv) {
  benchmark::Initialize(&argc, argv);
  return board::run({.programs = {BENCH_PROGRAMS}}, [] {
    // The shell that a router has, without the program before it that notes commands.
    board::quiet({"ln", "-sf", "/bin/busybox", "/bin/sh"});
    zelto_bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return reporter.print_ratios() ? 0 : 1;
  });
}
