// Figures that mean the same on every machine: each benchmark as a multiple of another of the same
// run.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace zelto_bench {

class RatioReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;

  // Prints the table of ratios, each with its budget. False when one is over budget or lacks a
  // figure.
  bool print_ratios() const;

 private:
  std::map<std::string, double> medians_;  // microseconds
};

}  // namespace zelto_bench
