// What it costs to name a SIM's operator by the whole table of access points.

#include <benchmark/benchmark.h>

#include <cstring>
#include <string_view>

#include <zelto/mobile.h>

#include "mobile/apn_lookup.h"

namespace {

// Fits no row, so that every row is looked at.
constexpr std::string_view kForeignSim = "\r\n999991111111111\r\n\r\nOK\r\n";

void sim_operator(benchmark::State& state) {
  for (auto _ : state) {
    const auto name = zelto::mobile::operator_of(kForeignSim);
    if (!name.empty()) state.SkipWithError("a SIM of no network was named");
    benchmark::DoNotOptimize(name);
  }
}

// The C library's search, row by row, without a look at anything else.
void strstr_walk(benchmark::State& state) {
  for (auto _ : state) {
    const ApnEntry* found = nullptr;
    for (const auto& row : apnlist) {
      if (std::strstr(kForeignSim.data(), row.mccmnc) != nullptr) found = &row;
    }
    benchmark::DoNotOptimize(found);
  }
}

BENCHMARK(sim_operator);
BENCHMARK(strstr_walk);

}  // namespace
