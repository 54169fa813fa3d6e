// What understanding a survey costs beside reading it.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <sstream>
#include <string>

#include <zelto/network.h>

#include "network/site_survey.h"

namespace {

constexpr int kSignals = 101;  // percentages
constexpr int kStride = 37;    // mixes them

// A block of flats, as the drivers print it: as many networks a band as a list takes.
std::string crowd(const char* heading, const char* number) {
  std::string survey = heading;
  for (int i = 0; i < ZELTO_SCAN_LIMIT; ++i) {
    char line[160] = "";
    std::snprintf(line, sizeof line, "%s%-4d%-33s%-20s%-23s%-9d%-9s%-7s%-3s%-3s\n", number,
                  i % 13 + 1, ("Flat " + std::to_string(i)).c_str(), "02:bb:00:00:00:01",
                  "WPA2PSK/AES", i * kStride % kSignals, "11b/g/n", "ABOVE", "In", "NO");
    survey += line;
  }
  return survey;
}

const std::string& survey_2g() {
  static const std::string text = crowd("\nCh  SSID\n", "");
  return text;
}
const std::string& survey_5g() {
  static const std::string text = crowd("\nTotal=255\nNo  Ch  SSID\n", "0   ");
  return text;
}

void survey_510(benchmark::State& state) {
  const auto networks = std::make_unique<ScanList>();
  int count = 0;
  for (auto _ : state) {
    count = 0;
    for (const auto& [text, columns] : {std::pair(&survey_2g(), &zelto::survey::k2G),
                                        std::pair(&survey_5g(), &zelto::survey::k5G)}) {
      zelto::survey::parse(*text, *columns, *networks);
      sort_scan_list(networks.get());
      count += networks->count;
    }
    benchmark::DoNotOptimize(networks->records[0]);
  }
  if (count != 2 * ZELTO_SCAN_LIMIT) state.SkipWithError("the surveys were not understood");
}

void survey_lines(benchmark::State& state) {
  for (auto _ : state) {
    for (const auto* text : {&survey_2g(), &survey_5g()}) {
      std::istringstream stream(*text);
      for (std::string line; std::getline(stream, line);) benchmark::DoNotOptimize(line.data());
    }
  }
}

BENCHMARK(survey_510);
BENCHMARK(survey_lines);

}  // namespace
