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
    {"operator of a SIM by 1752 rows : strstr for each", "sim_operator", "strstr_walk", 1.5},
    {"getlancfg by the gateway : an empty CGI program", "cgi_getlancfg", "cgi_empty", 0},
    {"getlancfg by the gateway : by the library", "cgi_getlancfg", "getlancfg", 0},
    {"getterminallist with 1000 entries : with 10", "getterminallist_1000", "getterminallist_10",
     0},
    {"getclientnum with 1000 entries : with 10", "getclientnum_1000", "getclientnum_10", 0},
    {"getparentalinfo with 1000 entries : with 10", "getparentalinfo_1000", "getparentalinfo_10",
     0},
    {"setparentalinfo with 1000 entries : with 10", "setparentalinfo_1000", "setparentalinfo_10",
     0},
    {"getblacklist with 32 entries : with 10", "getblacklist_32", "getblacklist_10", 0},
    {"setmacblack with 32 entries : with 10", "setmacblack_32", "setmacblack_10", 0},
    {"getforwarding with 1000 entries : with 10", "getforwarding_1000", "getforwarding_10", 0},
    {"setforwarding with 1000 entries : with 10", "setforwarding_1000", "setforwarding_10", 0},
    {"getqos with 1000 entries : with 10", "getqos_1000", "getqos_10", 0},
    {"setqos with 1000 entries : with 10", "setqos_1000", "setqos_10", 0},
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
