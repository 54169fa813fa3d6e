// The user's own resolvers, the WAN's MAC address, IPv6 and IPTV.

#include <zelto/network.h>

#include "support/router_test.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using zelto_test::ask;
using zelto_test::call;

using Lines = std::vector<std::string>;

constexpr const char* kRestart =
    "start /etc/init.d/network set_wan_quick;lua /sbin/svctl.lua set_iptv_portmap &";
constexpr const char* kNetworkRestart = "start /etc/init.d/network restart &";

class InternetSettings : public zelto_test::RouterTest {
 protected:
  // Asks for `type` with `members`, expects a result, and then exactly these effects.
  static void expect(const std::string& type, const std::string& members, int result,
                     const Lines& effects) {
    board::clear_journal();
    EXPECT_EQ(ask(R"({"type":")" + type + "\"" + (members.empty() ? "" : ",") + members + "}"),
              R"({"type":")" + type + R"(","result":)" + std::to_string(result) + "}")
        << members;
    EXPECT_THAT(board::journal(), ElementsAreArray(effects)) << members;
  }
};

TEST_F(InternetSettings, AllRefuseWhatIsNotTheirs) {
  const Lines remembered = {"uci set network.wan.defmacaddr=02:5A:10:20:30:02", kRestart};
  const struct {
    CommandHandler handler;
    const char* type;
    Lines effects;
  } cases[] = {
      {bs_GetDNSInfo, "getdnsinfo", {}},      {bs_SetDNSInfo, "setdnsinfo", {kRestart}},
      {bs_GetCloneList, "getsubmaclist", {}}, {bs_SetCloneMAC, "setclonemac", remembered},
      {bs_GetIPV6Info, "getipv6info", {}},    {bs_SetIPV6Info, "setipv6info", {}},
      {bs_GetIptvInfo, "getiptvinfo", {}},    {bs_SetIptvInfo, "setiptvinfo", {kNetworkRestart}},
  };
  for (const auto& c : cases) {
    board::reset();
    EXPECT_EQ(call(c.handler, "").status, -1) << c.type;
    EXPECT_EQ(call(c.handler, nullptr).reply, "untouched") << c.type;
    const char* line = c.handler == bs_GetDNSInfo ? "<3>json is NULL" : "<3>json data is NULL!";
    EXPECT_THAT(board::log(), ElementsAre(line, line)) << c.type;
    EXPECT_THAT(board::journal(), IsEmpty()) << c.type;
    EXPECT_EQ(
        call(c.handler, R"({"type":"x","status":"1","mac":"02:AA:00:00:00:01","enable":0})").reply,
        std::string(R"({"type":")") + c.type + R"(","result":1})");
    EXPECT_THAT(board::journal(), ElementsAreArray(c.effects)) << c.type;
  }
}

TEST_F(InternetSettings, ShowsResolversAndIptvPortsFromAnyText) {
  const struct {
    std::optional<std::string> text;
    std::optional<std::string> state;
    std::string members;
  } cases[] = {
      {std::nullopt, std::nullopt, R"("dns1":"","dns2":"","status":"0"})"},
      {"9.9.9.9 1.1.1.1", "1", R"("dns1":"9.9.9.9","dns2":"1.1.1.1","status":"1"})"},
      {"9.9.9.9", "-2x", R"("dns1":"9.9.9.9","dns2":"","status":"1"})"},
      {" 1.1.1.1", "on", R"("dns1":"","dns2":"1.1.1.1","status":"0"})"},
      {"4,3,2,1", "1", R"("enable":1,"lan4":4,"lan3":3,"lan2":2,"lan1":1,"tag":85})"},
      {"4,3", "0", R"("enable":0,"lan4":4,"lan3":3,"lan2":0,"lan1":0,"tag":85})"},
      {"4,,2,1,9", "2", R"("enable":2,"lan4":4,"lan3":0,"lan2":2,"lan1":1,"tag":85})"},
      {std::nullopt, std::nullopt, R"("enable":0,"lan4":0,"lan3":0,"lan2":0,"lan1":0,"tag":85})"},
  };
  for (const auto& c : cases) {
    const bool is_iptv = c.members.starts_with("\"enable");
    given("system", "route", "advanced_dns", c.text);
    given("system", "route", "advanced_dns_switch", c.state);
    given("iptv", "config", "ports", c.text);
    given("iptv", "config", "enable", c.state);
    const std::string begin =
        R"({"type":")" + std::string(is_iptv ? "getiptvinfo\"" : "getdnsinfo\"");
    EXPECT_EQ(ask(begin + "}"), begin + "," + c.members);
  }
}

TEST_F(InternetSettings, ResolversGoToTheTunnelInUse) {
  const std::string pptp = "network.PPTP.peerdns";
  const std::string l2tp = "network.L2TP.peerdns";
  const struct {
    const char* pptp;
    const char* l2tp;
    const char* protocol;
    std::string tunnel;  // its option; empty for none in use
    bool has_static_resolvers = false;
  } cases[] = {
      {"off", "off", "dhcp", ""},    {"off", "off", "static", "", true},
      {"on", "off", "static", pptp}, {"off", "on", "static", l2tp},
      {"on", "on", "dhcp", pptp},    {"ON", "1", "pppoe", ""},
  };
  for (const auto& c : cases) {
    board::reset();
    easy_uci_add_section("network", "interface", "PPTP");
    easy_uci_add_section("network", "interface", "L2TP");
    given("system", "route", "static_dns", "8.8.8.8 8.8.4.4");
    given("internet", "pptp_l2tp", "pp_Switch", c.pptp);
    given("internet", "pptp_l2tp", "l2_Switch", c.l2tp);
    given("network", "wan", "proto", c.protocol);
    Lines on = {"uci set system.route.advanced_dns=9.9.9.9 1.1.1.1",
                "uci set system.route.advanced_dns_switch=1", "uci set network.wan.peerdns=0",
                "uci set network.wan.dns=9.9.9.9 1.1.1.1"};
    Lines off = {"uci set system.route.advanced_dns_switch=0", "uci del network.wan.peerdns",
                 "uci del network.wan.dns"};
    if (!c.tunnel.empty()) {
      on.push_back("uci set " + c.tunnel + "=0");
      off.push_back("uci del " + c.tunnel);
    }
    if (c.has_static_resolvers) off.emplace_back("uci set network.wan.dns=8.8.8.8 8.8.4.4");
    on.emplace_back(kRestart);
    off.emplace_back(kRestart);
    expect("setdnsinfo", R"("status":"1","dns1":"9.9.9.9","dns2":"1.1.1.1")", 0, on);
    expect("setdnsinfo", R"("status":"0","dns1":"7.7.7.7")", 0, off);
    EXPECT_EQ(stored("system", "route", "advanced_dns"), "9.9.9.9 1.1.1.1") << "kept";
  }
}

TEST_F(InternetSettings, ResolversAreReadAsANumberAndHaveToFit) {
  for (const char* members : {"", R"("status":"2")", R"("status":1,"dns1":"9.9.9.9")"}) {
    expect("setdnsinfo", members, 0, {"uci set system.route.advanced_dns_switch=0", kRestart});
  }
  const std::string longest = std::string(30, '1') + R"(","dns2":")" + std::string(32, '2') + "\"";
  expect("setdnsinfo", R"("status":"1","dns1":"1)" + longest, 1, {kRestart});
  expect("setdnsinfo", R"("status":"1","dns1":"9.9.9.9\n")", 1, {kRestart});
  EXPECT_THAT(board::log(), testing::SizeIs(2));
  ask(R"({"type":"setdnsinfo","status":" 01","dns1":")" + longest + "}");
  EXPECT_EQ(stored("network", "wan", "dns"), std::string(30, '1') + " " + std::string(32, '2'));
}

TEST_F(InternetSettings, ListsTheAddressesToClone) {
  const std::string begin =
      R"({"type":"getsubmaclist","self":"02:00:00:00:00:09","clonemac":"02:5A:10:20:30:02")";
  const char* request = R"({"type":"getsubmaclist"})";
  given("network", "wan", "defmacaddr", "02:00:00:00:00:09");
  EXPECT_EQ(ask(request), begin + "}");
  EXPECT_THAT(board::log(), ElementsAre("<3>open file terminal_list failed!"));

  board::write_file("/tmp/terminal_list", "");
  EXPECT_EQ(ask(request), begin + R"(,"list":[]})");
  board::write_file("/tmp/terminal_list",
                    "192.168.10.100 02:AA:00:00:00:01 5400 120 12 eth0 desktop 1 2\n"
                    "192.168.10.101 02:AA:00:00:00:02");
  EXPECT_EQ(ask(request),
            begin + R"(,"list":[{"mac":"02:AA:00:00:00:01"},{"mac":"02:AA:00:00:00:02"}]})");

  board::remove_file("/etc/terminal_lock_file");
  ASSERT_EQ(board::quiet({"mkdir", "/etc/terminal_lock_file"}), 0);
  EXPECT_EQ(ask(request), begin + "}") << "never without the lock";
  EXPECT_THAT(board::log(), testing::SizeIs(1));
}

TEST_F(InternetSettings, RemembersTheOwnAddressBeforeTheFirstClone) {
  const std::string own = "02:5A:10:20:30:02";
  const std::string remember = "uci set network.wan.defmacaddr=" + own;
  expect("setclonemac", R"("mac":")" + own + "\"", 0, {remember, kRestart});
  board::reset();
  expect("setclonemac", R"("mac":"02:AA:00:00:00:01")", 0,
         {remember, "uci set network.wan.macaddr=02:AA:00:00:00:01", kRestart});
  board::quiet({"ip", "link", "set", "eth0.2", "address", "02:aa:00:00:00:01"});
  expect("setclonemac", R"("mac":"02:AA:00:00:00:01")", 0, {kRestart});
  expect("setclonemac", R"("mac":")" + own + "\"", 0,
         {"uci set network.wan.macaddr=" + own, kRestart});
  expect("setclonemac", R"("mac":"02:BB\n")", 1, {kRestart});
  expect("setclonemac", R"("mac":")" + std::string(32, 'A') + "\"", 1, {kRestart});
  EXPECT_THAT(board::log(), testing::SizeIs(2));
}

TEST_F(InternetSettings, ShowsTheUplinksIpv6Addresses) {
  const auto add = [](const char* address, const char* interface) {
    ASSERT_EQ(board::quiet({"ip", "-6", "addr", "add", address, "dev", interface}), 0);
  };
  const auto effects = [](const std::string& interface) -> Lines {
    const std::string begin = "run ifconfig " + interface + " |grep Scope:";
    return {begin + "Global |awk '{print $3}'|cut -d '/' -f 1",
            begin + "Link |awk '{print $3}'|cut -d '/' -f 1"};
  };
  board::add_point_to_point("pppoe-wan", "10.64.0.2", "10.64.0.1");
  add("2001:db8::5/64", "eth0.2");
  add("fe80::5/64", "eth0.2");
  add("2001:db8:1::7/128", "pppoe-wan");
  given("network", "lan", "br_traverse_ipv6", "1");
  given("dhcp", "lan", "ra_management", "2");
  const struct {
    std::optional<std::string> protocol;
    const char* global;
    const char* local;
    Lines effects;
  } cases[] = {
      {"dhcp", "2001:db8::5", "fe80::5", effects("eth0.2")},
      {"pppoe", "2001:db8:1::7", "", effects("pppoe-wan")},
      {"static", "", "", {}},
      {std::nullopt, "", "", {}},
  };
  for (const auto& c : cases) {
    given("network", "wan", "proto", c.protocol);
    EXPECT_EQ(ask(R"({"type":"getipv6info"})"),
              std::string(R"({"type":"getipv6info","ipv6_passthrough":"1","lantype":"2",)") +
                  R"("globaladdr":")" + c.global + R"(","localaddr":")" + c.local + "\"}");
    EXPECT_THAT(board::journal(), ElementsAreArray(c.effects));
  }
  given("network", "lan", "br_traverse_ipv6", std::nullopt);
  given("dhcp", "lan", "ra_management", std::nullopt);
  EXPECT_THAT(ask(R"({"type":"getipv6info"})"),
              HasSubstr(R"("ipv6_passthrough":"0","lantype":"1",)"));
}

TEST_F(InternetSettings, StoresWhichIpv6SettingsAreSent) {
  const std::string pass = "uci set network.lan.br_traverse_ipv6=";
  const std::string type = "uci set dhcp.lan.ra_management=";
  expect("setipv6info", R"("lantype":"0","ipv6_passthrough":"1")", 0,
         {pass + "1", type + "0", kRestart});
  expect("setipv6info", R"("lantype":"any")", 0, {type + "any", kRestart});
  expect("setipv6info", R"("ipv6_passthrough":1)", 0, {kRestart});
  expect("setipv6info", "", 0, {kRestart});
  expect("setipv6info", R"("ipv6_passthrough":"1","lantype":"0\n1")", 1, {});
}

TEST_F(InternetSettings, SwitchesIptv) {
  constexpr const char* kPortMap =
      "start lua /sbin/svctl.lua set_iptv_portmap;ubus call network.interface.wan down;sleep 3;"
      "ubus call network.interface.wan up &";
  const std::string ports = R"("lan1":1,"lan2":2,"lan3":3,"lan4":-4)";
  expect("setiptvinfo", R"("enable":1,"tag":"100",)" + ports, 0,
         {"uci set iptv.config.enable=1", "uci set system.route.iptv=1",
          "uci set iptv.config.ports=-4,3,2,1", "uci set iptv.config.tag=100", kPortMap});
  for (const std::string value : {"0", "2"}) {
    expect("setiptvinfo", R"("enable":)" + value + R"(,"tag":"7","lan1":9)", 0,
           {"uci set iptv.config.enable=" + value, "uci set system.route.iptv=" + value,
            kNetworkRestart});
  }
  EXPECT_EQ(ask(R"({"type":"getiptvinfo"})"),
            R"({"type":"getiptvinfo","enable":2,"lan4":-4,"lan3":3,"lan2":2,"lan1":1,"tag":100})");

  // What cannot be done restarts all the same.
  expect("setiptvinfo", R"("enable":"1","tag":"7",)" + ports, 1, {kNetworkRestart});
  for (const auto& rest : {ports, R"("tag":7,)" + ports, R"("tag":"7\n",)" + ports,
                           std::string(R"("tag":"7","lan1":1,"lan2":2,"lan3":3)")}) {
    expect("setiptvinfo", R"("enable":1,)" + rest, 1, {kPortMap});
  }
  board::clear_journal();
  call(bs_SetIptvInfo, R"({"type":"other","enable":1})");
  EXPECT_THAT(board::journal(), ElementsAre(kPortMap));
}

}  // namespace
