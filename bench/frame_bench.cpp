// What a request costs beside what it cannot do without.

#include <benchmark/benchmark.h>
#include <cjson/cJSON.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <platform/easy_uci.h>
#include <zelto/utilities.h>
#include <zelto/zeltoapi.h>

#include "board/board.h"

namespace {

constexpr const char* kHeartbeat = R"({"type":"getheartbeat"})";
constexpr useconds_t kRest = 3000;  // microseconds until the processors are idle again
constexpr int kTurns = 40;
constexpr int kStartsInTurn = 10;
constexpr int kRewrites = 60;
constexpr std::size_t kMegabyte = 1024 * 1024;

void ask(benchmark::State& state, const char* request) {
  std::array<char, ZELTO_REPLY_SIZE> out{};
  for (auto _ : state) {
    benchmark::DoNotOptimize(share_func(request, out.data()));
  }
}

void getheartbeat(benchmark::State& state) {
  ask(state, kHeartbeat);
}

// The dispatcher and the handler each parse the request, and the reply is printed: the least that
// the contract allows.
void parse_parse_print(benchmark::State& state) {
  cJSON* reply = cJSON_Parse(R"({"type":"getheartbeat","result":9})");
  for (auto _ : state) {
    cJSON* first = cJSON_Parse(kHeartbeat);
    cJSON* second = cJSON_Parse(kHeartbeat);
    char* text = cJSON_PrintUnformatted(reply);
    benchmark::DoNotOptimize(text);
    cJSON_free(text);
    cJSON_Delete(first);
    cJSON_Delete(second);
  }
  cJSON_Delete(reply);
}

struct Option {
  const char* package;
  const char* section;
  const char* name;
};

template <std::size_t kCount>
void read_options(benchmark::State& state, const std::array<Option, kCount>& options) {
  std::array<char, 4096> value{};
  for (auto _ : state) {
    for (const auto& option : options) {
      benchmark::DoNotOptimize(easy_uci_get_option_string(option.package, option.section,
                                                          option.name, value.data(),
                                                          static_cast<int>(value.size() - 1)));
    }
  }
}

void option_read(benchmark::State& state) {
  read_options<1>(state, {{{"network", "lan", "ipaddr"}}});
}

void two_option_reads(benchmark::State& state) {
  read_options<2>(state, {{{"network", "wan", "proto"}, {"network", "wan", "mtu"}}});
}

void five_option_reads(benchmark::State& state) {
  read_options<5>(state, {{{"network", "lan", "ipaddr"},
                           {"network", "lan", "netmask"},
                           {"dhcp", "lan", "ignore"},
                           {"dhcp", "lan", "start"},
                           {"dhcp", "lan", "endip"}}});
}

void stat(benchmark::State& state) {
  struct stat facts {};
  for (auto _ : state) benchmark::DoNotOptimize(::stat("/etc/config/network", &facts));
}

void getlancfg(benchmark::State& state) {
  ask(state, R"({"type":"getlancfg"})");
}

void getwancfg(benchmark::State& state) {
  ask(state, R"({"type":"getwancfg"})");
}

// Counts the files that are put in the place of others below the router's configuration folders.
class RewriteCounter {
 public:
  RewriteCounter() : events_(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    for (const char* folder : {"/etc/config", "/etc/wireless/mt7628", "/etc/wireless/mt7663"}) {
      // The kernel merges equal events in a row; creations keep the renamings apart.
      inotify_add_watch(events_, folder, IN_CREATE | IN_MOVED_TO);
    }
  }
  ~RewriteCounter() { close(events_); }
  RewriteCounter(const RewriteCounter&) = delete;
  RewriteCounter& operator=(const RewriteCounter&) = delete;

  int taken() {
    int count = 0;
    alignas(inotify_event) std::array<char, 4096> buffer;
    for (ssize_t size = 0; (size = read(events_, buffer.data(), buffer.size())) > 0;) {
      for (ssize_t at = 0; at < size;) {
        inotify_event event;
        std::memcpy(&event, buffer.data() + at, sizeof event);
        at += static_cast<ssize_t>(sizeof event + event.len);
        if ((event.mask & IN_MOVED_TO) != 0) ++count;
      }
    }
    return count;
  }

 private:
  int events_;
};

// All nine members, every value another than before.
void setwlancfgall(benchmark::State& state) {
  constexpr const char* kRequests[] = {
      R"({"type":"setwlancfgall","dualSwitch":"0","wlanssid":"a","wlanpsw":"password","power":0,)"
      R"("wlanpswmode":"wpa3","wlanssid_5":"b","wlanpsw_5":"password","power_5":0,)"
      R"("wlanpswmode_5":"wpa3"})",
      R"({"type":"setwlancfgall","dualSwitch":"2","wlanssid":"c","wlanpsw":"drowssap","power":2,)"
      R"("wlanpswmode":"open","wlanssid_5":"d","wlanpsw_5":"drowssap","power_5":2,)"
      R"("wlanpswmode_5":"open"})"};
  std::array<char, ZELTO_REPLY_SIZE> out{};
  RewriteCounter rewrites;
  int count = 0;
  std::size_t turn = 0;
  for (auto _ : state) {
    const auto begin = std::chrono::steady_clock::now();
    share_func(kRequests[turn++ % 2], out.data());
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
    state.SetIterationTime(elapsed.count());
    count += rewrites.taken();
    board::settle();
  }
  state.counters["rewrites"] = benchmark::Counter(count, benchmark::Counter::kAvgIterations);
}

// A way to start a shell, from a caller with so much of its memory in use.
struct Starter {
  std::size_t megabytes;
  void (*start)();
  std::vector<double> seconds;
};

void start_detached() {
  zelto_system(":");
}

void start_by_vfork() {
  if (vfork() == 0) {
    execl("/bin/sh", "sh", "-c", ":", nullptr);
    _exit(127);
  }
}

// The times until `start` returns. What it started is waited for in between, so that it does not
// take the processor from the next one.
void time_starts(Starter& starter) {
  const std::string memory(starter.megabytes * kMegabyte, 'x');
  benchmark::DoNotOptimize(memory.data());
  for (int i = 0; i < kStartsInTurn; ++i) {
    usleep(kRest);
    const auto begin = std::chrono::steady_clock::now();
    starter.start();
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
    starter.seconds.push_back(elapsed.count());
    while (waitpid(-1, nullptr, WNOHANG) == 0) usleep(100);
    board::settle();
  }
}

enum StartFigure { kAt8Megabytes, kAt64Megabytes, kVfork, kStartFigures };

// The lower quartile of each, measured in turns and once for all: other work on the machine makes
// more than half of the starts up to a hundred times slower, and comes and goes while benchmarks
// run one after the other.
std::array<double, kStartFigures> measure_starts() {
  std::array<Starter, kStartFigures> starters = {
      {{8, start_detached, {}}, {64, start_detached, {}}, {8, start_by_vfork, {}}}};
  for (int turn = 0; turn < kTurns; ++turn) {
    for (auto& starter : starters) time_starts(starter);
  }
  std::array<double, kStartFigures> quartiles{};
  std::transform(starters.begin(), starters.end(), quartiles.begin(), [](Starter& starter) {
    const auto quartile = starter.seconds.begin() + kTurns * kStartsInTurn / 4;
    std::nth_element(starter.seconds.begin(), quartile, starter.seconds.end());
    return *quartile;
  });
  return quartiles;
}

void report_start(benchmark::State& state, StartFigure figure) {
  static const auto quartiles = measure_starts();
  for (auto _ : state) state.SetIterationTime(quartiles[figure]);
}

void start_8MB(benchmark::State& state) {
  report_start(state, kAt8Megabytes);
}

void start_64MB(benchmark::State& state) {
  report_start(state, kAt64Megabytes);
}

void vfork_exec(benchmark::State& state) {
  report_start(state, kVfork);
}

BENCHMARK(getheartbeat);
BENCHMARK(parse_parse_print);
BENCHMARK(option_read);
BENCHMARK(stat);
BENCHMARK(getlancfg);
BENCHMARK(five_option_reads);
BENCHMARK(getwancfg);
BENCHMARK(two_option_reads);
BENCHMARK(setwlancfgall)->UseManualTime()->Iterations(kRewrites);
BENCHMARK(start_8MB)->UseManualTime()->Iterations(1);
BENCHMARK(start_64MB)->UseManualTime()->Iterations(1);
BENCHMARK(vfork_exec)->UseManualTime()->Iterations(1);

}  // namespace
