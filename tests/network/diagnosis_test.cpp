// The chain of checks that names what keeps the router from the Internet.

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include <zelto/network.h>

#include "support/router_test.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using zelto_test::ask;
using zelto_test::call;

constexpr const char* kRequest = R"({"type":"getnetworkdiagnosisinfo"})";
constexpr const char* kLinks = "run switch reg r 83";
constexpr const char* kCable = "run wan_check -I eth0.2";
constexpr const char* kServices = "run ps | grep dnsmasq | grep -v grep | wc -l";

class Diagnosis : public zelto_test::RouterTest {
 protected:
  void SetUp() override {
    RouterTest::SetUp();
    board::write_file("/tmp/online_file", "offline\n");
  }
};

// A process that the process list shows as the DNS service; it has replaced the test's copy when
// posix_spawn() returns.
class DnsService {
 public:
  DnsService() {
    char program[] = "tail";
    char option[] = "-f";
    char file[] = "/tmp/dnsmasq";
    char* const arguments[] = {program, option, file, nullptr};
    board::write_file(file, "");
    EXPECT_EQ(posix_spawn(&id_, "/usr/bin/tail", nullptr, nullptr, arguments, environ), 0);
    board::exempt(id_);
  }
  ~DnsService() {
    kill(id_, SIGKILL);
    waitpid(id_, nullptr, 0);
  }
  DnsService(const DnsService&) = delete;
  DnsService& operator=(const DnsService&) = delete;

 private:
  pid_t id_ = 0;
};

std::string reply(const std::string& members) {
  return R"({"type":"getnetworkdiagnosisinfo",)" + members + "}";
}

TEST_F(Diagnosis, ChecksNothingMoreOnline) {
  board::write_file("/tmp/online_file", "online\n");
  board::write_file("/var/board/switch-83", "0\n");
  EXPECT_EQ(ask(kRequest), reply(R"("wanstatus":"1","wanmodeequal":"1","ipstatus":"1",)"
                                 R"("dnstatus":"1","netstatus":"1")"));
  EXPECT_THAT(board::journal(), ElementsAre(kLinks));
}

const std::string kOffline = R"("netstatus":"0",)";
const std::string kUnreachable = R"("ipstatus":"0","dnstatus":"0")";

TEST_F(Diagnosis, ComparesWhatTheCableOffersWithWhatIsSet) {
  const std::string type = R"("wanmodeequal":)";
  const std::string no_service = type + R"("1","ipstatus":"1","dnstatus":"0")";
  const struct {
    const char* offered;
    std::optional<std::string> protocol;
    std::string members;  // behind "wanstatus"
    bool goes_on = false;
  } cases[] = {
      {"dhcp\n", "dhcp", no_service, true},
      {"DHCP server\n", "dhcpv6", no_service, true},
      {"Static\n", "static", no_service, true},
      {"pppoe\n", "pppoe", no_service, true},
      {"pppoe\n", "dhcp", type + R"("3",)" + kUnreachable},
      {"dhcp\n", "pppoe", type + R"("2",)" + kUnreachable},
      {"dhcp\n", "static", type + R"("4",)" + kUnreachable},
      {"dhcp", "dhcp", type + R"("3",)" + kUnreachable},  // the last character is no part of it
      {"", "static", type + R"("4",)" + kUnreachable},
      {"pptp\n", "pptp", kUnreachable},
      {"dhcp\n", "DHCP", kUnreachable},
      {"\n", std::nullopt, kUnreachable},
  };
  for (const auto& c : cases) {
    board::write_file("/var/board/wan_type", c.offered);
    given("network", "wan", "proto", c.protocol);
    EXPECT_EQ(ask(kRequest), reply(kOffline + R"("wanstatus":"1",)" + c.members)) << c.offered;
    std::vector<std::string> effects = {kLinks, kLinks, kCable};
    if (c.goes_on) effects.emplace_back(kServices);
    EXPECT_THAT(board::journal(), ElementsAreArray(effects)) << c.members;
  }
  board::write_file("/var/board/switch-83", "1f\n");
  board::clear_journal();
  EXPECT_EQ(ask(kRequest), reply(kOffline + R"("wanstatus":"0",)" + kUnreachable));
  EXPECT_THAT(board::journal(), ElementsAre(kLinks, kLinks));
}

TEST_F(Diagnosis, AsksForACableOnlyWhereThatIsTheUplink) {
  board::write_file("/var/board/switch-83", "0\n");
  for (const char* mode : {"AP", "wisp", "repeater", "Router", "router2"}) {
    given_mode(mode);
    EXPECT_EQ(ask(kRequest), reply(kOffline + kUnreachable)) << mode;
    EXPECT_THAT(board::journal(), ElementsAre(kLinks));
  }
  given_mode("mobilenetmode");
  EXPECT_EQ(ask(kRequest), reply(kOffline + R"("wanstatus":"1","wanmodeequal":"1",)"
                                            R"("ipstatus":"1","dnstatus":"0")"));
  EXPECT_THAT(board::journal(), ElementsAre(kLinks, kServices));
}

TEST_F(Diagnosis, LooksAtTheSessionsAddressAndAtOneDnsService) {
  given("network", "wan", "proto", "pppoe");
  given_connection("pppoe");
  board::write_file("/var/board/wan_type", "pppoe\n");
  const std::string equal = kOffline + R"("wanstatus":"1","wanmodeequal":"1",)";
  EXPECT_EQ(ask(kRequest), reply(equal + kUnreachable)) << "only the cable has an address";
  board::add_point_to_point("pppoe-wan", "1.2.3.4", "1.2.3.5");
  const std::string begin = equal + R"("ipstatus":"1","dnstatus":)";
  const DnsService service;
  EXPECT_EQ(ask(kRequest), reply(begin + R"("1")"));
  const DnsService second;
  EXPECT_EQ(ask(kRequest), reply(begin + R"("0")"));
}

TEST_F(Diagnosis, WrongRequestsCheckNothing) {
  for (const char* request : {"{}", R"({"type":"other"})"}) {
    EXPECT_EQ(call(bs_GetNetworkDiagnosisInfo, request).reply, reply(R"("result":1)"));
  }
  EXPECT_EQ(call(bs_GetNetworkDiagnosisInfo, "[").status, -1);
  EXPECT_EQ(call(bs_GetNetworkDiagnosisInfo, "[").reply, "untouched");
  EXPECT_THAT(board::log(), ElementsAre("<3>json data is NULL!", "<3>json data is NULL!"));
  EXPECT_THAT(board::journal(), IsEmpty());
}

}  // namespace
