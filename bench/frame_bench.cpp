// What a request costs beside what it cannot do without.

#include <benchmark/benchmark.h>
#include <cjson/cJSON.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstring>

#include <platform/easy_uci.h>
#include <zelto/zeltoapi.h>

#include "board/board.h"
#include "router.h"
#include "timing.h"

namespace {

constexpr const char* kHeartbeat = R"({"type":"getheartbeat"})";
constexpr int kRewrites = 60;

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

  int taken() const {
    int count = 0;
    alignas(inotify_event) std::array<char, 4096> buffer{};
    for (ssize_t size = 0; (size = read(events_, buffer.data(), buffer.size())) > 0;) {
      for (ssize_t at = 0; at < size;) {
        inotify_event event{};
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
    state.SetIterationTime(
        zelto_bench::seconds_of([&] { share_func(kRequests[turn++ % 2], out.data()); }));
    count += rewrites.taken();
    board::settle();
  }
  zelto_bench::reset();
  state.counters["rewrites"] = benchmark::Counter(count, benchmark::Counter::kAvgIterations);
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

}  // namespace
