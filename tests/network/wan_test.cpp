// The stored settings of the WAN, and its live facts.

#include <zelto/fields.h>
#include <zelto/network.h>

#include "support/router_test.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using zelto_test::ask;

class Wan : public zelto_test::RouterTest {
 protected:
  void SetUp() override {
    RouterTest::SetUp();
    for (const char* option : {"mtu", "dns", "service", "username", "password", "peerdns"}) {
      given("network", "wan", option, std::nullopt);
    }
    given("system", "route", "static_dns", std::nullopt);
    given("system", "route", "mtkhnat", "1");
  }
  static void given_wan(const char* option, const std::optional<std::string>& value) {
    given("network", "wan", option, value);
  }
};

TEST_F(Wan, ReadsEachType) {
  given_wan("ipaddr", "10.1.1.2");
  given_wan("netmask", "255.255.255.0");
  given_wan("gateway", "10.1.1.1");
  given_wan("username", "us\"er");
  given_wan("password", "p w");
  given_wan("service", "isp");
  given_wan("mtu", "1500");
  board::write_file("/tmp/resolv.conf.auto", "nameserver 7.7.7.7\nnameserver 8.8.8.8\n");
  const std::string fixed =
      R"({"type":"getwancfg","wanmode":"static","wanip":"10.1.1.2","wanmsk":"255.255.255.0",)"
      R"("wangw":"10.1.1.1",)";
  const struct {
    const char* protocol;
    std::optional<std::string> resolvers;
    std::string reply;
  } cases[] = {
      {"static", "9.9.9.9 1.1.1.1", fixed + R"("dns1":"9.9.9.9","dns2":"1.1.1.1","mtu":"1500"})"},
      {"static", "9.9.9.9", fixed + R"("dns1":"9.9.9.9","dns2":"","mtu":"1500"})"},
      {"static", " 1.1.1.1", fixed + R"("dns1":"","dns2":"1.1.1.1","mtu":"1500"})"},
      {"static", std::nullopt, fixed + R"("dns1":"7.7.7.7","dns2":"","mtu":"1500"})"},
      {"pppoe", "x",
       R"({"type":"getwancfg","wanmode":"pppoe","pppoename":"us\"er","pppoepsw":"p w",)"
       R"("server_name":"isp","mtu":"1492"})"},
      {"dhcp", "x", R"({"type":"getwancfg","wanmode":"dhcp","mtu":"1500"})"},
      {"l2tp", "x", R"({"type":"getwancfg","wanmode":"","mtu":"1500"})"},
  };
  for (const auto& c : cases) {
    given_wan("proto", c.protocol);
    given("system", "route", "static_dns", c.resolvers);
    EXPECT_EQ(ask(R"({"type":"getwancfg"})"), c.reply);
  }
}

// What every accepted request does before and after its own stores; no tunnel section is there.
std::vector<std::string> effects(const std::string& mode, std::vector<std::string> own) {
  std::vector<std::string> all = {
      "uci set internet.pptp_l2tp.pp_Switch=off", "uci set internet.pptp_l2tp.l2_Switch=off",
      "uci set network.wan.proto=" + mode, "uci set system.route.conntype=" + mode};
  all.insert(all.end(), own.begin(), own.end());
  all.insert(all.end(),
             {"uci set mtkhnat.global.enable=1", "run echo 1 > /sys/kernel/debug/hnat/hook_toggle",
              "start /etc/init.d/network set_wan_quick;killall -USR2 udhcpc;killall -USR1 "
              "udhcpc;lua /sbin/svctl.lua set_iptv_portmap &"});
  return all;
}

TEST_F(Wan, StoresWhatIsSentInOrder) {
  easy_uci_delete_section("network", "PPTP");
  easy_uci_delete_section("network", "L2TP");
  const struct {
    const char* mode;
    const char* members;
    std::vector<std::string> stores;
  } cases[] = {
      {"dhcp", R"("mtu":"1492")", {"uci set network.wan.mtu=1500"}},
      {"dhcp", R"("mtu":"junk")", {"uci set network.wan.mtu=8"}},
      {"dhcp", R"("mtu":1492,"wanip":null)", {}},
      {"anything", R"("unknown":"x")", {}},
      {"static",
       R"("dns2":"1.1.1.1","dns1":"9.9.9.9","wangw":"10.1.1.1","wanmsk":"255.0.0.0","wanip":"10.1.1.2")",
       {"uci set network.wan.ipaddr=10.1.1.2", "uci set network.wan.netmask=255.0.0.0",
        "uci set network.wan.gateway=10.1.1.1", "uci set network.wan.dns=9.9.9.9",
        "uci set network.wan.dns=9.9.9.9 1.1.1.1",
        "uci set system.route.static_dns=9.9.9.9 1.1.1.1"}},
      {"static",
       R"("dns2":"1.1.1.1")",
       {"uci set network.wan.dns=1.1.1.1", "uci set system.route.static_dns= 1.1.1.1"}},
      {"pppoe",
       R"x("pppoepsw":"a'b\"c$(d)","pppoename":"me","server_name":"isp")x",
       {"uci set network.wan.username=me", "uci set network.wan.password=a'b\"c$(d)",
        "uci set network.wan.service=isp"}},
  };
  for (const auto& c : cases) {
    for (const char* option : {"mtu", "dns", "service", "username", "password"}) {
      given_wan(option, std::nullopt);
    }
    EXPECT_EQ(
        ask(std::string(R"({"type":"setwancfg","wanmode":")") + c.mode + "\"," + c.members + "}"),
        R"({"type":"setwancfg","result":0})");
    EXPECT_THAT(board::journal(), ElementsAreArray(effects(c.mode, c.stores)));
  }
}

TEST_F(Wan, ForgetsTheEarlierConnectionAndItsTunnels) {
  given_wan("mtu", "1400");
  given_wan("peerdns", "0");
  easy_uci_add_section("network", "interface", "PPTP");
  easy_uci_add_section("network", "interface", "L2TP");
  board::clear_journal();
  ask(R"({"type":"setwancfg","wanmode":"dhcp"})");
  auto expected = effects("dhcp", {});
  expected.insert(expected.begin(), {"uci del network.wan.mtu", "uci del network.wan.peerdns",
                                     "uci del network.PPTP", "uci del network.L2TP"});
  EXPECT_THAT(board::journal(), ElementsAreArray(expected));
}

TEST_F(Wan, TheUsersOwnResolversWin) {
  easy_uci_delete_section("network", "PPTP");
  easy_uci_delete_section("network", "L2TP");
  given("system", "route", "advanced_dns_switch", "1");
  given("system", "route", "advanced_dns", "4.4.4.4 5.5.5.5");
  ask(R"({"type":"setwancfg","wanmode":"dhcp","dns1":"9.9.9.9"})");
  EXPECT_THAT(board::journal(),
              ElementsAreArray(effects(
                  "dhcp", {"uci set network.wan.dns=9.9.9.9", "uci set network.wan.peerdns=0",
                           "uci set network.wan.dns=4.4.4.4 5.5.5.5"})));
  EXPECT_THAT(board::console(),
              testing::MatchesRegex("(zeltoapi.c:bs_SetWanCfg:[0-9]+:.\"type\":\"setwancfg\","
                                    "\"result\":0.\n\n){2}"));
}

TEST_F(Wan, RefusesBeforeTheFirstStore) {
  const std::string requests[] = {
      R"({"type":"setwancfg"})",
      R"({"type":"setwancfg","wanmode":1})",
      R"({"type":"setwancfg","wanmode":"dhcp\nx"})",
      R"({"type":"setwancfg","wanmode":"pppoe","pppoepsw":"a\rb"})",
      R"({"type":"setwancfg","wanmode":"pppoe","pppoename":")" + std::string(128, 'n') + "\"}",
      R"({"type":"setwancfg","wanmode":"static","dns1":")" + std::string(70, '1') +
          R"(","dns2":")" + std::string(70, '2') + "\"}",
  };
  for (const auto& request : requests) {
    EXPECT_EQ(ask(request), R"({"type":"setwancfg","result":1})") << request;
  }
  EXPECT_THAT(board::journal(), IsEmpty());
  EXPECT_EQ(board::console(), "");
}

TEST_F(Wan, ShowsTheLiveFacts) {
  board::set_address("eth0.2", "10.20.30.40", "255.255.0.0");
  board::set_gateway("eth0.2", "10.20.0.1");
  board::write_file("/tmp/resolv.conf.auto", "nameserver 7.7.7.7\n");
  given_connection("dhcp");
  char mac[18] = "";
  EXPECT_EQ(ask(R"({"type":"getwaninfo"})").find(R"({"type":"getwaninfo","connetype":"dhcp",)"),
            0U);
  EXPECT_THAT(ask(R"({"type":"getwaninfo"})"),
              testing::EndsWith(R"("wanmsk":"255.255.0.0","ip":"10.20.30.40",)"
                                R"("gateway":"10.20.0.1","dns1":"7.7.7.7","dns2":"7.7.7.7"})"));
  ASSERT_EQ(zelto_get_general_mac("eth0.2", mac), 0);
  const std::string wire = std::string(R"("wan_mac":")") + mac + "\"";
  EXPECT_THAT(ask(R"({"type":"getwaninfo"})"), HasSubstr(wire));

  given_connection("pppoe");
  board::remove_file("/tmp/resolv.conf.auto");
  EXPECT_EQ(ask(R"({"type":"getwaninfo"})"),
            R"({"type":"getwaninfo","connetype":"pppoe",)" + wire +
                R"(,"wanmsk":"","ip":"","gateway":"","dns1":"","dns2":""})");
  given_mode("wisp");
  EXPECT_THAT(ask(R"({"type":"getwaninfo"})"), testing::Not(HasSubstr(wire)));
  given("system", "route", "conntype", std::nullopt);
  EXPECT_EQ(ask(R"({"type":"getwaninfo"})"), R"({"type":"getwaninfo","result":1})");
  EXPECT_THAT(board::log(), ElementsAre("<3>get conntype failed!"));
}

TEST_F(Wan, DetectsTheUplinksType) {
  const struct {
    const char* links;
    const char* mode;
    const char* found;
    const char* reply;
    std::vector<std::string> effects;
  } cases[] = {
      {"20", "router", "dhcp", R"("dhcp","netlink":"online"})", {"run wan_check -I eth0.2"}},
      {"20", "router", "PPPoE 1", R"("PPPoE 1","netlink":"online"})", {"run wan_check -I eth0.2"}},
      {"20", "AP", "nothing", R"("unknown","netlink":"online"})", {"run wan_check -I br-lan"}},
      {"1f", "router", "dhcp", R"("unlink","netlink":"online"})", {}},
  };
  board::write_file("/tmp/online_file", "online\n");
  for (const auto& c : cases) {
    board::write_file("/var/board/switch-83", c.links);
    board::write_file("/var/board/wan_type", std::string(c.found) + "\n");
    given_mode(c.mode);
    EXPECT_EQ(ask(R"({"type":"getwanmode"})"),
              std::string(R"({"type":"getwanmode","wanmode":)") + c.reply);
    auto expected = c.effects;
    expected.insert(expected.begin(), "run switch reg r 83");
    if (!c.effects.empty()) expected.emplace_back("run switch reg r 83");
    EXPECT_THAT(board::journal(), ElementsAreArray(expected));
  }
  board::remove_file("/tmp/online_file");
  EXPECT_THAT(ask(R"({"type":"getwanmode"})"), testing::EndsWith(R"("netlink":"offline"})"));
}

}  // namespace
