// Many requests at once in one process. Worth most under ThreadSanitizer.

#include <chrono>
#include <cstdlib>
#include <thread>

#include "support/router_test.h"

namespace {

using zelto_test::ask;

constexpr int kThreads = 8;
constexpr int kDefaultSeconds = 2;

// A request, and how every reply to it begins whatever the other threads are doing.
constexpr std::pair<const char*, const char*> kRequests[] = {
    {R"({"type":"getheartbeat"})", R"({"type":"getheartbeat","result":9})"},
    {R"({"type":"nosuchcmd"})", R"({"type":"nosuchcmd","result":6})"},
    {R"({"type":"getlancfg"})", R"({"type":"getlancfg","lanip":"192.168.)"},
    {R"({"type":"getwancfg"})", R"({"type":"getwancfg","wanmode":")"},
    {R"({"type":"getwaninfo"})", R"({"type":"getwaninfo","connetype":")"},
    {R"({"type":"loginauth","user":"x"})", R"({"type":"loginauth","result":1})"},
    {R"({"type":"getlanguage"})", R"({"type":"getlanguage","language":"en"})"},
    {R"({"type":"getrouterinfo"})", R"({"type":"getrouterinfo","uptime":")"},
    {R"({"type":"setwancfg","wanmode":"dhcp","mtu":"1492"})", R"({"type":"setwancfg","result":0})"},
    {R"({"type":"setlancfg","lanip":"192.168.30.1","landhcp":"on","lanmsk":"255.255.255.0"})",
     R"({"type":"setlancfg","result":0})"},
};

std::chrono::seconds duration() {
  const char* seconds = std::getenv("ZELTO_STRESS_SECONDS");
  return std::chrono::seconds(seconds == nullptr ? kDefaultSeconds : std::atoi(seconds));
}

class Threads : public zelto_test::RouterTest {};

TEST_F(Threads, AskAtOnceAndEachGetsItsOwnReply) {
  for (const auto& [request, begin] : kRequests) ask(request);  // syslog keeps its socket
  const auto end = std::chrono::steady_clock::now() + duration();
  const auto descriptors = zelto_test::open_descriptors();
  std::vector<std::string> wrong(kThreads);
  std::vector<std::thread> threads;
  for (int number = 0; number < kThreads; ++number) {
    threads.emplace_back([&, number] {
      for (auto i = static_cast<std::size_t>(number);
           std::chrono::steady_clock::now() < end &&
           wrong[static_cast<std::size_t>(number)].empty();
           ++i) {
        const auto& [request, begin] = kRequests[i % std::size(kRequests)];
        const auto reply = ask(request);
        if (!reply.starts_with(begin)) wrong[static_cast<std::size_t>(number)] = reply;
      }
    });
  }
  for (auto& thread : threads) thread.join();
  EXPECT_THAT(wrong, testing::Each(""));
  board::settle();
  EXPECT_EQ(zelto_test::open_descriptors(), descriptors);
  EXPECT_EQ(stored("network", "wan", "mtu"), "1500");
  EXPECT_EQ(stored("dhcp", "lan", "netmask"), "255.255.255.0");
}

}  // namespace
