// How the commands that keep lists grow with the lists.

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include <zelto/zeltoapi.h>

#include "board/board.h"
#include "router.h"
#include "timing.h"

namespace {

constexpr int kSizes[] = {10, 32, 100, 320, 1000};
constexpr int kMost = 1000;
constexpr int kReads = 40;
constexpr int kChanges = 30;
constexpr useconds_t kRest = 60'000;  // microseconds until the store trusts its files' times

struct Command {
  const char* type;
  std::string members;
  int most = kMost;
};

// Requests that change something come one by one, as people send them: the store reads a file
// again as long as it has just been written. What they start is waited for in between.
double time_requests(const std::string& request, bool changes) {
  std::array<char, ZELTO_REPLY_SIZE> out{};
  const auto ask = [&] { share_func(request.c_str(), out.data()); };
  std::vector<double> seconds;
  for (int turn = 0; turn < (changes ? kChanges : kReads); ++turn) {
    if (changes) {
      board::settle();
      usleep(kRest);
      seconds.push_back(zelto_bench::seconds_of(ask));
    } else {
      seconds.push_back(zelto_bench::processor_seconds_of(ask));
    }
    if (std::strstr(out.data(), R"("result":1)") != nullptr) throw std::runtime_error(request);
  }
  return zelto_bench::lower_quartile(seconds);
}

void register_sizes(const Command& command) {
  const auto request = std::string(R"({"type":")") + command.type + "\"" + command.members + "}";
  const bool changes = std::strncmp(command.type, "set", 3) == 0;
  for (const int entries : kSizes) {
    if (entries > command.most) break;
    const auto ask = [=](benchmark::State& state) {
      zelto_bench::reset();
      zelto_bench::fill_lists(entries);
      usleep(kRest);
      for (auto _ : state) state.SetIterationTime(time_requests(request, changes));
      zelto_bench::reset();
    };
    const auto name = std::string(command.type) + "/" + std::to_string(entries);
    auto* sized = benchmark::RegisterBenchmark(name.c_str(), ask)->UseManualTime()->Iterations(1);
    // Reading is over so soon that all turns may fall into one disturbance.
    if (changes) sized->Repetitions(1);
  }
}

const int kRegistered = [] {
  const Command commands[] = {
      {"getterminallist", ""},
      {"getclientnum", ""},
      {"getparentalinfo", ""},
      {"getforwarding", ""},
      {"getqos", R"(,"MAC":"ALL")"},
      {"getblacklist", "", zelto_bench::kFullBlacklist},
      {"setparentalinfo",
       R"(,"cfg_type":"add","alias":"a","mac":"M","accesstime":"1-2","day":"7")"},
      {"setforwarding", R"(,"enable":"1","name":"a","ip":"all","list0":"1,2,TCP")"},
      {"setqos", R"(,"MAC":")" + zelto_bench::device(5) +
                     R"(","IP":"192.168.10.2","Up_Speed":"1","Dl_Speed":"2")"},
      {"setmacblack", R"(,"mac":"02:BB:00:00:00:01","enable":"0")", zelto_bench::kFullBlacklist},
  };
  for (const auto& command : commands) register_sizes(command);
  return 0;
}();

}  // namespace
