// What it costs to store a setting, beside putting a file of as many bytes in the place of another.

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <string>

#include <platform/easy_uci.h>
#include <platform/wifi_conf.h>

#include "board/board.h"
#include "router.h"

namespace {

constexpr const char* kPackage = "/etc/config/network";
constexpr const char* kProfile = "/etc/wireless/mt7628/mt7628.dat";

// The least that keeps a file whole whenever the power fails.
bool replace(const char* path, const std::string& content) {
  const std::string beside = std::string(path) + ".bench";
  const int file = open(beside.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  const bool written =
      write(file, content.data(), content.size()) == static_cast<ssize_t>(content.size()) &&
      fsync(file) == 0;
  return close(file) == 0 && written && std::rename(beside.c_str(), path) == 0;
}

void replace_file(benchmark::State& state, const char* path) {
  const auto content = board::read_file(path);
  for (auto _ : state) {
    if (!replace(path, content)) state.SkipWithError("not replaced");
  }
  zelto_bench::reset();
}

// `set` stores another value of one length at each turn.
template <typename Set>
void store(benchmark::State& state, const Set& set) {
  bool turn = false;
  for (auto _ : state) {
    turn = !turn;
    if (set(turn) != 0) state.SkipWithError("not stored");
  }
  zelto_bench::reset();
}

void option_set(benchmark::State& state) {
  store(state, [](bool turn) {
    return easy_uci_set_option_string("network", "lan", "ipaddr",
                                      turn ? "192.168.10.2" : "192.168.10.1");
  });
}

void profile_set(benchmark::State& state) {
  store(state, [](bool turn) {
    return lib_conf_set_2G("SSID1", WIFI_CONF_WHOLE_VALUE, turn ? "Home one" : "Home two");
  });
}

void package_replaced(benchmark::State& state) {
  replace_file(state, kPackage);
}

void profile_replaced(benchmark::State& state) {
  replace_file(state, kProfile);
}

BENCHMARK(option_set);
BENCHMARK(package_replaced);
BENCHMARK(profile_set);
BENCHMARK(profile_replaced);

}  // namespace
