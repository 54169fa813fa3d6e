// How many instructions a request takes on the router's processor, those of the kernel included.
// For an emulated machine whose clock advances by one nanosecond an instruction
// (tests/mips/machine --counted): there a time in nanoseconds is a count.

#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>
#include <vector>

#include <zelto/zeltoapi.h>

#include "board/board.h"
#include "router.h"

namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr int kTurns = 15;
constexpr useconds_t kRest = 60'000;  // microseconds until the store trusts its files' times

// Requests alike that are sent by turns, so that each changes something.
struct Command {
  const char* name;
  int entries;
  std::vector<const char*> requests;
};

const std::vector<Command>& commands() {
  static const std::vector<Command> all = {
      {"getheartbeat", 10, {R"({"type":"getheartbeat"})"}},
      {"getlancfg", 10, {R"({"type":"getlancfg"})"}},
      {"getwancfg", 10, {R"({"type":"getwancfg"})"}},
      {"getwlancfgall", 10, {R"({"type":"getwlancfgall"})"}},
      {"getterminallist, 10 devices", 10, {R"({"type":"getterminallist"})"}},
      {"getterminallist, 100 devices", 100, {R"({"type":"getterminallist"})"}},
      {"loginauth", 10, {R"({"type":"loginauth","user":"admin","pass":"admin"})"}},
      {"setlancfg",
       10,
       {R"({"type":"setlancfg","lanip":"192.168.20.1","landhcp":"on","lanmsk":"255.255.255.0"})",
        R"({"type":"setlancfg","lanip":"192.168.10.1","landhcp":"on","lanmsk":"255.255.255.0"})"}},
      {"setwlancfgall, a radio's name",
       10,
       {R"({"type":"setwlancfgall","dualSwitch":"0","wlanssid":"one"})",
        R"({"type":"setwlancfgall","dualSwitch":"0","wlanssid":"two"})"}},
      {"setwlancfgall, all of both radios",
       10,
       {R"({"type":"setwlancfgall","dualSwitch":"0","wlanssid":"a","wlanpsw":"password","power":0,)"
        R"("wlanpswmode":"wpa3","wlanssid_5":"b","wlanpsw_5":"password","power_5":0,)"
        R"("wlanpswmode_5":"wpa3"})",
        R"({"type":"setwlancfgall","dualSwitch":"2","wlanssid":"c","wlanpsw":"drowssap","power":2,)"
        R"("wlanpswmode":"open","wlanssid_5":"d","wlanpsw_5":"drowssap","power_5":2,)"
        R"("wlanpswmode_5":"open"})"}},
      {"setparentalinfo, 10 rules",
       10,
       {R"({"type":"setparentalinfo","cfg_type":"add","alias":"a","mac":"02:AA:00:00:00:01",)"
        R"("accesstime":"16:00-20:00","day":"12345"})"}},
      {"setforwarding, 10 rules",
       10,
       {R"({"type":"setforwarding","enable":"1","name":"a","ip":"192.168.10.2",)"
        R"("list0":"8081,81,TCP"})"}},
  };
  return all;
}

std::int64_t now() {
  timespec time{};
  clock_gettime(CLOCK_MONOTONIC, &time);
  return time.tv_sec * kNanosecondsPerSecond + time.tv_nsec;
}

std::int64_t median(std::vector<std::int64_t> counts) {
  const auto middle = counts.begin() + static_cast<std::ptrdiff_t>(counts.size() / 2);
  std::nth_element(counts.begin(), middle, counts.end());
  return *middle;
}

// A loop of so many instructions, to see that the clock counts them.
__attribute__((nomips16, noinline)) void run_instructions(std::int32_t count) {
  std::int32_t turns = count / 4;
  __asm__ volatile(
      ".set push\n.set noreorder\n"
      "1: addiu %0, %0, -1\nnop\nbnez %0, 1b\nnop\n"
      ".set pop"
      : "+r"(turns));
}

bool clock_counts() {
  constexpr std::int32_t kCount = 4'000'000;
  constexpr double kFrom = 0.98;  // the kernel's guess of the clock's rate
  constexpr double kTo = 1.10;    // and its own instructions at every tick
  const auto begin = now();
  run_instructions(kCount);
  const auto counted = now() - begin;
  std::printf("count,a loop of %d,%lld\n", kCount, static_cast<long long>(counted));
  return static_cast<double>(counted) > kCount * kFrom &&
         static_cast<double>(counted) < kCount * kTo;
}

std::int64_t ask(const char* request) {
  static std::array<char, ZELTO_REPLY_SIZE> out;
  const auto begin = now();
  const int status = share_func(request, out.data());
  const auto count = now() - begin;
  if (status != 0 || std::strstr(out.data(), R"("result":1)") != nullptr) {
    throw std::runtime_error(std::string(request) + " was answered by " + out.data());
  }
  return count;
}

void rest() {
  board::settle();
  usleep(kRest);
}

void prepare(const Command& command) {
  board::reset();
  zelto_bench::fill_lists(command.entries);
  rest();
}

// The first request of a process: nothing has been read, and no function called before. A child
// asks, as this process may never have asked by then.
std::int64_t first(const Command& command) {
  prepare(command);
  std::array<int, 2> ends{};
  if (pipe(ends.data()) < 0) throw std::runtime_error("no pipe");
  const pid_t child = fork();
  if (child == 0) {
    const auto count = ask(command.requests.front());
    _exit(write(ends[1], &count, sizeof count) == sizeof count ? 0 : 1);
  }
  close(ends[1]);
  std::int64_t count = 0;
  const bool told = read(ends[0], &count, sizeof count) == sizeof count;
  close(ends[0]);
  if (waitpid(child, nullptr, 0) != child || !told) throw std::runtime_error("no first request");
  return count;
}

std::int64_t further(const Command& command) {
  prepare(command);
  std::vector<std::int64_t> counts;
  for (std::size_t turn = 0; turn <= kTurns; ++turn) {
    counts.push_back(ask(command.requests[turn % command.requests.size()]));
    rest();
  }
  counts.erase(counts.begin());
  return median(counts);
}

// A program from its start to its end.
std::int64_t program(const std::vector<std::string>& arguments) {
  std::vector<std::int64_t> counts;
  for (int turn = 0; turn < kTurns; ++turn) {
    const auto begin = now();
    if (board::quiet(arguments) != 0) throw std::runtime_error("no " + arguments.front());
    counts.push_back(now() - begin);
  }
  return median(counts);
}

int count_all() {
  board::reset();
  if (!clock_counts()) {
    std::printf("The clock of this machine does not count instructions.\n");
    return 1;
  }
  std::vector<std::int64_t> firsts;
  for (const auto& command : commands()) firsts.push_back(first(command));
  for (const auto& arguments : std::vector<std::vector<std::string>>{
           {"true"}, {"zelto", "--version"}, {"zelto", "getheartbeat"}, {"zelto", "getlancfg"}}) {
    std::string words;
    for (const auto& word : arguments) words += (words.empty() ? "" : " ") + word;
    std::printf("program,\"%s\",%lld\n", words.c_str(), static_cast<long long>(program(arguments)));
  }
  for (std::size_t i = 0; i < firsts.size(); ++i) {
    const auto& command = commands()[i];
    std::printf("request,\"%s\",%lld,%lld\n", command.name, static_cast<long long>(firsts[i]),
                static_cast<long long>(further(command)));
  }
  return 0;
}

}  // namespace

int main() {
  return board::run({.programs = {BENCH_PROGRAMS}}, count_all);
}
