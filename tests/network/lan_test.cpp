// The LAN's address and its DHCP server.

#include <zelto/network.h>

#include "support/router_test.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using zelto_test::ask;
using zelto_test::call;

constexpr const char* kRestart =
    "start /etc/init.d/dnsmasq restart;/etc/init.d/network set_lan_quick;lua /sbin/svctl.lua "
    "set_iptv_portmap;/sbin/reset_lan_port.sh;/sbin/wifi_setup.sh wifi_restart "
    "all;/etc/init.d/terminal_list restart &";

class Lan : public zelto_test::RouterTest {
 protected:
  void SetUp() override {
    RouterTest::SetUp();
    board::set_address("eth0.2", "10.0.0.5");
  }
};

std::string set(const std::string& members) {
  return ask(R"({"type":"setlancfg",)" + members + "}");
}

TEST_F(Lan, StoresAppliesAndReadsBack) {
  const std::string request =
      R"({"type":"setlancfg","lanip":"192.168.20.1","lanmsk":"255.255.0.0","landhcp":"on",)"
      R"("startip":"100","endip":"200"})";
  EXPECT_EQ(ask(request), R"({"type":"setlancfg","result":0})");
  EXPECT_THAT(board::journal(),
              ElementsAre("uci set network.lan.ipaddr=192.168.20.1",
                          "uci set system.route.lan_ipaddr=192.168.20.1",
                          "uci set dhcp.lan.ignore=0", "uci set network.lan.netmask=255.255.0.0",
                          "uci set system.route.lan_netmask=255.255.0.0",
                          "uci set dhcp.lan.netmask=255.255.0.0", "uci set dhcp.lan.start=100",
                          "uci set system.route.dhcp_startip=100", "uci set dhcp.lan.endip=200",
                          "uci set system.route.dhcp_endip=200", kRestart));
  EXPECT_EQ(ask(R"({"type":"getlancfg"})"),
            R"({"type":"getlancfg","lanip":"192.168.20.1","lanmsk":"255.255.0.0",)"
            R"("landhcp":"on","startip":"100","endip":"200"})");
  char address[ZELTO_ADDRESS_SIZE] = "";
  EXPECT_EQ(getIfIpAddr("br-lan", address), 0);
  EXPECT_STREQ(address, "192.168.20.1") << "the firmware has given it to the bridge";
  EXPECT_THAT(board::console(),
              testing::MatchesRegex("zeltoapi.c:bs_SetLanCfg:[0-9]+:.\"type\":\"setlancfg\",.*"
                                    "zeltoapi.c:bs_SetLanCfg:[0-9]+:.\"type\":\"setlancfg\","
                                    "\"result\":0.\n\n"
                                    "zeltoapi.c:bs_SetLanCfg:[0-9]+:\n\n"));
}

TEST_F(Lan, RefusesAnAddressInTheUplinksSegment) {
  const struct {
    const char* uplink;
    const char* address;
    int result;
  } cases[] = {
      {"10.0.0.5", "10.0.0.50", 2},
      {"10.0.0.5", "10.0.1.1", 0},
      {"192.168.1.20", "192.168.1.1", 2},
      {"192.168.1.20", "192.168.1.", 2},
      {"192.168.1.20", "192.168.1", 0},
      {"192.168.1.20", "192.168.1.1.1", 0},
      {"", "10.0.0.1", 0},
      {"", "nodot", 0},
      {"1.2.3.4", "1.2.3.9", 2},
  };
  for (const auto& c : cases) {
    board::reset();
    board::set_address("eth0.2", c.uplink);
    for (const char* netmask : {"255.255.0.0", "255.255.255.128"}) {
      EXPECT_EQ(set(std::string(R"("lanip":")") + c.address + R"(","landhcp":"on","lanmsk":")" +
                    netmask + "\""),
                R"({"type":"setlancfg","result":)" + std::to_string(c.result) + "}")
          << c.uplink << " " << c.address;
    }
    if (c.result == 2) {
      EXPECT_THAT(board::journal(), IsEmpty());
      EXPECT_THAT(board::log(), ElementsAre("<3>lan and wan ip at some segment",
                                            "<3>lan and wan ip at some segment"));
    }
  }
}

TEST_F(Lan, WhateverIsMissingStillRestarts) {
  const std::string address = R"("lanip":"192.168.20.1")";
  const std::vector<std::string> address_stored = {"uci set network.lan.ipaddr=192.168.20.1",
                                                   "uci set system.route.lan_ipaddr=192.168.20.1"};
  auto switch_stored = address_stored;
  switch_stored.emplace_back("uci set dhcp.lan.ignore=1");
  const struct {
    std::string request;
    std::vector<std::string> stores;
  } cases[] = {
      {R"({"type":"other",)" + address + R"(,"landhcp":"on","lanmsk":"255.0.0.0"})", {}},
      {"{}", {}},
      {R"({"type":"setlancfg","landhcp":"on","lanmsk":"255.0.0.0"})", {}},
      {R"({"type":"setlancfg","lanip":1,"landhcp":"on","lanmsk":"255.0.0.0"})", {}},
      {R"({"type":"setlancfg",)" + address + R"(,"lanmsk":"255.0.0.0"})", address_stored},
      {R"({"type":"setlancfg",)" + address + R"(,"landhcp":"ON"})", switch_stored},
      // Values that must not be stored stop the request before its first store.
      {R"({"type":"setlancfg",)" + address + R"(,"landhcp":"on","lanmsk":"255\n0"})", {}},
      {R"({"type":"setlancfg",)" + address + R"(,"landhcp":"on","lanmsk":"255.0.0.0","endip":")" +
           std::string(40, '1') + "\"}",
       {}},
  };
  for (const auto& c : cases) {
    board::reset();
    auto effects = c.stores;
    effects.emplace_back(kRestart);
    EXPECT_EQ(call(bs_SetLanCfg, c.request.c_str()).reply, R"({"type":"setlancfg","result":1})");
    EXPECT_THAT(board::journal(), ElementsAreArray(effects)) << c.request;
  }
  board::reset();
  EXPECT_EQ(call(bs_SetLanCfg, "{").status, 0);
  EXPECT_EQ(call(bs_SetLanCfg, "{").reply, "untouched");
  EXPECT_EQ(call(bs_SetLanCfg, nullptr).reply, "untouched");
  EXPECT_THAT(board::journal(), IsEmpty());
}

TEST_F(Lan, LogsStoresThatFailAndGoesOn) {
  board::write_file("/etc/config/network", "broken");
  board::write_file("/etc/config/dhcp", "broken");
  EXPECT_EQ(set(R"("lanip":"192.168.20.1","landhcp":"on","lanmsk":"255.0.0.0","startip":"5")"),
            R"({"type":"setlancfg","result":0})");
  EXPECT_THAT(
      board::log(),
      ElementsAre("<3>set lan_ipaddr to 192.168.20.1 failed!", "<3>set dhcpEnabled to 0 failed!",
                  "<3>set lan_netmask to 255.0.0.0 failed!",
                  "<3>set dhcp netmask to 255.0.0.0 failed!", "<3>set dhcpStart to 5 failed!"));
  EXPECT_EQ(stored("system", "route", "dhcp_startip"), "5");
}

TEST_F(Lan, ReadsUpToTheFirstOptionThatFails) {
  given("dhcp", "lan", "ignore", std::nullopt);
  given("dhcp", "lan", "start", std::nullopt);
  given("network", "lan", "ipaddr", "192.168.9.1");
  given("network", "lan", "netmask", "255.255.255.0");
  const std::string begin =
      R"({"type":"getlancfg","lanip":"192.168.9.1","lanmsk":"255.255.255.0","landhcp":)";
  EXPECT_EQ(ask(R"({"type":"getlancfg"})"), begin + R"("on","result":1})");
  given("dhcp", "lan", "ignore", "1");
  EXPECT_EQ(ask(R"({"type":"getlancfg"})"), begin + R"("off","result":1})");
  given("network", "lan", "ipaddr", std::nullopt);
  EXPECT_EQ(ask(R"({"type":"getlancfg"})"), R"({"type":"getlancfg","result":1})");
}

}  // namespace
