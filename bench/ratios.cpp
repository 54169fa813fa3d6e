#include "ratios.h"

#include <cstdio>

namespace zelto_bench {
namespace {

struct Ratio {
  const char* what;
  const char* measured;
  const char* against;
  double budget;  // 0: none
};

constexpr Ratio kRatios[] = {
    {"dispatch of getheartbeat : two parses and one print", "getheartbeat", "parse_parse_print",
     1.5},
    {"warm option read : stat", "option_read", "stat", 3.0},
    {"zelto_system at 8 MB : vfork and exec", "start_8MB", "vfork_exec", 2.0},
    {"zelto_system at 64 MB : at 8 MB", "start_64MB", "start_8MB", 1.2},
    {"getlancfg : its five option reads", "getlancfg", "five_option_reads", 0},
    {"getwancfg : its two option reads", "getwancfg", "two_option_reads", 0},
    {"survey of 510 networks : reading its lines", "survey_510", "survey_lines", 40},
};

}  // namespace

bool RatioReporter::ReportContext(const Context& /*context*/) {
  return true;
}

void RatioReporter::ReportRuns(const std::vector<Run>& runs) {
  for (const auto& run : runs) {
    if (run.aggregate_name != "median") continue;
    const auto name = run.run_name.function_name;
    medians_[name] = run.GetAdjustedRealTime() / 1000.0;
    std::printf("%-20s %10.3f us", name.c_str(), medians_[name]);
    for (const auto& [counter, value] : run.counters) {
      std::printf("  %s %.1f", counter.c_str(), value.value);
    }
    std::printf("\n");
  }
}

bool RatioReporter::print_ratios() const {
  bool within_budget = true;
  std::printf("\n%-55s %7s %7s\n", "ratio", "here", "budget");
  for (const auto& ratio : kRatios) {
    const auto measured = medians_.find(ratio.measured);
    const auto against = medians_.find(ratio.against);
    if (measured == medians_.end() || against == medians_.end()) {
      std::printf("%-55s missing\n", ratio.what);
      within_budget = false;
      continue;
    }
    const double value = measured->second / against->second;
    const bool fits = ratio.budget == 0 || value <= ratio.budget;
    within_budget = within_budget && fits;
    std::printf("%-55s %7.2f", ratio.what, value);
    if (ratio.budget != 0) std::printf(" %7.2f%s", ratio.budget, fits ? "" : "  OVER");
    std::printf("\n");
  }
  return within_budget;
}

}  // namespace zelto_bench
