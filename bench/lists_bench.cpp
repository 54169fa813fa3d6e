// How the commands that keep lists grow with the lists.

#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <cstring>
#include <string>

#include <zelto/zeltoapi.h>

#include "board/board.h"

namespace {

constexpr int kTurns = 30;
constexpr int kFew = 10;
constexpr int kMany = 1000;
constexpr int kFullBlacklist = 32;

std::string device(int number) {
  return "02:AA:00:00:" + std::to_string(number + kMany);
}

// The lists of every command, and the firewall's sections of the forwarding rules.
void fill_lists(int entries) {
  std::string terminals;
  std::string parental;
  std::string limits;
  std::string forwarding;
  std::string sections = board::read_file("/etc/config/firewall");
  std::string blacklist;
  for (int i = 0; i < entries; ++i) {
    const auto mac = device(i);
    const auto name = "bmFtZ" + std::to_string(i + kMany) + "==";
    terminals += "192.168.10.2 " + mac + " 59 1 2 ra0 kitchen tablet 3 4\n";
    parental.append(name).append(" tablet ").append(mac).append(" 16:00-20:00 12345\n");
    limits += mac + " 192.168.10.2 100 800 " + std::to_string(i) + "\n";
    forwarding += name + " 192.168.10.2;80 8080 TCP\n";
    sections += "\nconfig redirect 'redirect" + std::to_string(i) +
                "'\n\toption target 'DNAT'\n\toption src 'wan'\n\toption dest 'lan'\n"
                "\toption src_dport '8080'\n\toption dest_port '80'\n\toption name '" +
                name + "'\n\toption proto 'tcp'\n\toption dest_ip '192.168.10.2'\n";
    if (i < kFullBlacklist) blacklist += mac + " tablet\n";
  }
  board::write_file("/tmp/terminal_list", terminals);
  board::write_file("/etc/parental_list", parental);
  board::write_file("/etc/qos_limit_list", limits);
  board::write_file("/etc/port_forward_list", forwarding);
  board::write_file("/etc/config/firewall", sections);
  board::write_file("/etc/blacklist", blacklist);
}

// What a command starts is waited for in between.
void ask(benchmark::State& state, const std::string& request, int entries) {
  board::reset();
  fill_lists(entries);
  std::array<char, ZELTO_REPLY_SIZE> out{};
  for (auto _ : state) {
    const auto begin = std::chrono::steady_clock::now();
    share_func(request.c_str(), out.data());
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - begin;
    state.SetIterationTime(elapsed.count());
    if (std::strstr(out.data(), R"("result":1)") != nullptr) state.SkipWithError(out.data());
    board::settle();
  }
  board::reset();
}

const int kRegistered = [] {
  const struct {
    const char* type;
    std::string members;
    int many = kMany;
  } commands[] = {
      {"getterminallist", ""},
      {"getclientnum", ""},
      {"getparentalinfo", ""},
      {"setparentalinfo",
       R"(,"cfg_type":"add","alias":"a","mac":"M","accesstime":"1-2","day":"7")"},
      {"getblacklist", "", kFullBlacklist},
      {"setmacblack", R"(,"mac":"02:BB:00:00:00:01","enable":"0")", kFullBlacklist},
      {"getforwarding", ""},
      {"setforwarding", R"(,"enable":"1","name":"a","ip":"all","list0":"1,2,TCP")"},
      {"getqos", R"(,"MAC":"ALL")"},
      {"setqos",
       R"(,"MAC":")" + device(kFew / 2) + R"(","IP":"192.168.10.2","Up_Speed":"1","Dl_Speed":"2")"},
  };
  for (const auto& command : commands) {
    const auto request = std::string(R"({"type":")") + command.type + "\"" + command.members + "}";
    for (const int entries : {kFew, command.many}) {
      const auto name = std::string(command.type) + "_" + std::to_string(entries);
      benchmark::RegisterBenchmark(
          name.c_str(),
          [request, entries](benchmark::State& state) { ask(state, request, entries); })
          ->UseManualTime()
          ->Iterations(kTurns);
    }
  }
  return 0;
}();

}  // namespace
