// Both tunnels: what they store, in which order, and how one gives way to the other.

#include <zelto/network.h>

#include "support/router_test.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using zelto_test::ask;
using zelto_test::call;

using Lines = std::vector<std::string>;

constexpr const char* kRestart =
    "start /etc/init.d/network set_wan_quick;killall -USR2 udhcpc;killall -USR1 udhcpc;"
    "lua /sbin/svctl.lua set_iptv_portmap &";

// All that the twins differ in.
struct Twin {
  std::string name;
  CommandHandler get;
  CommandHandler set;
  std::string prefix;
  std::string section;
  Lines first_writes;
};
const Lines kPptpFirst = {"uci add network.PPTP=interface", "uci set network.PPTP.proto=pptp",
                          "uci set system.route.conntype=pptp"};
const Lines kL2tpFirst = {"uci set system.route.conntype=l2tp", "uci add network.L2TP=interface",
                          "uci set network.L2TP.proto=l2tp"};
const Twin kTwins[] = {
    {"pptp", bs_GetPptpInfo, bs_SetPptpInfo, "pp_", "PPTP", kPptpFirst},
    {"l2tp", bs_GetL2tpInfo, bs_SetL2tpInfo, "l2_", "L2TP", kL2tpFirst},
};

void swap_words(std::string& line, const std::string& one, const std::string& other) {
  if (const auto at = line.find(one); at != std::string::npos) {
    line.replace(at, one.size(), other);
  } else if (const auto there = line.find(other); there != std::string::npos) {
    line.replace(there, other.size(), one);
  }
}

class Tunnel : public zelto_test::RouterTest, public testing::WithParamInterface<Twin> {
 protected:
  const Twin& twin() const { return GetParam(); }
  const Twin& other() const { return kTwins[twin().name == kTwins[0].name ? 1 : 0]; }

  // A request of a getter or setter, or the begin of a reply to it, without the closing brace.
  std::string begin(const std::string& verb) const {
    return R"({"type":")" + verb + twin().name + "info\"";
  }
  // The result of a request to switch.
  int set(const std::string& members) const {
    const auto reply = ask(begin("set") + "," + members + "}");
    EXPECT_THAT(reply, testing::StartsWith(begin("set") + R"(,"result":)"));
    return reply.at(reply.size() - 2) - '0';
  }
  void given_own(const std::string& option, const std::optional<std::string>& value) const {
    given("internet", "pptp_l2tp", (twin().prefix + option).c_str(), value);
  }
  std::string own(const std::string& option) const {
    return stored("internet", "pptp_l2tp", (twin().prefix + option).c_str());
  }
  // A tunnel that is on, as a request has left it.
  static void given_on(const Twin& tunnel) {
    easy_uci_add_section("network", "interface", tunnel.section.c_str());
    given("internet", "pptp_l2tp", (tunnel.prefix + "Switch").c_str(), "on");
  }

  // Effects told in the words of PPTP, in those of the twin. FIRST stands for its first writes.
  Lines effects(const Lines& of_pptp) const {
    Lines all;
    for (std::string line : of_pptp) {
      if (line == "FIRST") {
        all.insert(all.end(), twin().first_writes.begin(), twin().first_writes.end());
        continue;
      }
      if (twin().name == "l2tp") {
        swap_words(line, "pp_", "l2_");
        swap_words(line, "PPTP", "L2TP");
      }
      all.push_back(line);
    }
    return all;
  }
};

TEST_P(Tunnel, TakesThePlaceOfEverythingThatWasOn) {
  given("network", "wan", "dns", "9.9.9.9");
  given("system", "route", "advanced_dns_switch", "1");
  given_on(twin());
  given_on(other());
  const std::string members =
      R"("Switch":"on","domain":"vpn.example","username":"me","password":"a'b\"c$(d);",)"
      R"("MTU":"1400","netmode":"Static","staticip":"10.1.1.2","staticmask":"255.0.0.0",)"
      R"("staticgateway":"10.1.1.1")";
  EXPECT_EQ(set(members), 0);
  const auto expected = effects({"uci del network.wan.dns",
                                 "uci set internet.pptp_l2tp.pp_staticip=10.1.1.2",
                                 "uci set internet.pptp_l2tp.pp_staticmask=255.0.0.0",
                                 "uci set internet.pptp_l2tp.pp_staticgateway=10.1.1.1",
                                 "uci set internet.pptp_l2tp.pp_Switch=on",
                                 "uci set internet.pptp_l2tp.pp_domain=vpn.example",
                                 "uci set internet.pptp_l2tp.pp_username=me",
                                 "uci set internet.pptp_l2tp.pp_password=a'b\"c$(d);",
                                 "uci set internet.pptp_l2tp.pp_netmode=Static",
                                 "uci set internet.pptp_l2tp.pp_MTU=1400",
                                 "uci del network.PPTP",
                                 "uci set mtkhnat.global.enable=0",
                                 "run echo 0 > /sys/kernel/debug/hnat/hook_toggle",
                                 "uci set internet.pptp_l2tp.l2_Switch=off",
                                 "FIRST",
                                 "uci set network.PPTP.ipv6=auto",
                                 "uci set network.PPTP.server=vpn.example",
                                 "uci set network.PPTP.username=me",
                                 "uci set network.PPTP.password=a'b\"c$(d);",
                                 "uci set network.PPTP.mtu=1400",
                                 "uci set network.wan.proto=static",
                                 "uci set network.wan.ipaddr=10.1.1.2",
                                 "uci set network.wan.netmask=255.0.0.0",
                                 "uci set network.wan.gateway=10.1.1.1",
                                 "uci set network.PPTP.peerdns=0",
                                 "uci del network.L2TP",
                                 "uci set internet.pptp_l2tp.l2_Switch=off",
                                 kRestart});
  EXPECT_THAT(board::journal(), ElementsAreArray(expected));
  char uplink[ZELTO_INTERFACE_SIZE] = "";
  EXPECT_EQ(getWanIfInterface(uplink), 0);
  EXPECT_EQ(uplink, twin().name + "-" + twin().section);
  EXPECT_EQ(ask(begin("get") + "}"), begin("get") + "," + members + "}");
}

TEST_P(Tunnel, LetsTheWanAskForItsAddressUnlessExactlyStatic) {
  const std::string members = R"("Switch":"on","domain":"d","MTU":"0","staticip":"10.1.1.2")";
  const struct {
    const char* netmode;
    const char* own_resolvers;
    const char* peer_resolvers;
  } cases[] = {{"DHCP", "0", "(none)"}, {"static", "2", "(none)"}, {"Static ", " 1", "0"}};
  for (const auto& c : cases) {
    board::reset();
    given("network", "wan", "proto", "pppoe");
    given("system", "route", "advanced_dns_switch", c.own_resolvers);
    EXPECT_EQ(set(members + R"(,"netmode":")" + c.netmode + "\""), 0);
    EXPECT_EQ(board::journal().back(), kRestart);
    EXPECT_EQ(own("netmode"), c.netmode);
    EXPECT_EQ(own("staticip"), "(none)");
    EXPECT_EQ(stored("network", "wan", "proto"), "dhcp");
    EXPECT_EQ(stored("network", "wan", "ipaddr"), "(none)");
    EXPECT_EQ(stored("network", twin().section.c_str(), "mtu"), "0");
    EXPECT_EQ(stored("network", twin().section.c_str(), "peerdns"), c.peer_resolvers);
  }
  // What is not sent counts as empty, and is not kept from before.
  EXPECT_EQ(set(R"("Switch":"on")"), 0);
  EXPECT_EQ(stored("network", twin().section.c_str(), "server"), "(none)");
  EXPECT_EQ(own("netmode"), "(none)");
}

TEST_P(Tunnel, SwitchesOffOnceAndLeavesTheOtherAlone) {
  given_on(other());
  given("system", "route", "mtkhnat", "1");
  for (const char* members : {R"("Switch":"off","domain":"d","netmode":"Static")",
                              R"("Switch":"ON")", R"("Switch":1)", R"("domain":"d")"}) {
    given("network", "wan", "dns", "9.9.9.9");
    given_on(twin());
    EXPECT_EQ(set(members), 0);
    const auto expected =
        effects({"uci set system.route.conntype=dhcp", "uci set network.wan.proto=dhcp",
                 "uci del network.wan.dns", "uci del network.PPTP",
                 "uci set internet.pptp_l2tp.pp_Switch=off", "uci set mtkhnat.global.enable=1",
                 "run echo 1 > /sys/kernel/debug/hnat/hook_toggle", kRestart});
    EXPECT_THAT(board::journal(), ElementsAreArray(expected)) << members;
    board::clear_journal();
    EXPECT_EQ(set(members), 0);
    EXPECT_THAT(board::journal(), IsEmpty()) << "it is off already";
  }
}

TEST_P(Tunnel, ShowsWhatIsStoredAndDefaultsForTheRest) {
  const auto shown = [&](const std::string& members) { return begin("get") + "," + members + "}"; };
  const auto reply = [&] { return ask(begin("get") + "}"); };
  const std::string nobody = R"("domain":"","username":"","password":"",)";
  given_own("staticip", "10.1.1.2");
  given_own("MTU", "1300");
  EXPECT_EQ(reply(), shown(R"("Switch":"off",)" + nobody + R"("MTU":"1300","netmode":"DHCP")"));
  given_own("netmode", "Static");
  EXPECT_EQ(reply(), shown(R"("Switch":"off",)" + nobody +
                           R"("MTU":"1300","netmode":"Static","staticip":"10.1.1.2",)"
                           R"("staticmask":"","staticgateway":"")"));
  given_own("netmode", std::nullopt);
  given_own("MTU", std::nullopt);
  given_own("Switch", "halfway");
  EXPECT_EQ(reply(), shown(R"("Switch":"halfway",)" + nobody + R"("MTU":"1440","netmode":"DHCP")"));
  given_own("domain", "vpn.example");
  given_own("MTU", "1300");
  given_own("Switch", std::nullopt);
  EXPECT_EQ(reply(), shown(R"("Switch":"off",)" + nobody + R"("netmode":"DHCP","MTU":"1440")"));
}

TEST_P(Tunnel, RequestsOfAnotherTypeTouchNothing) {
  const auto got = begin("get") + R"(,"result":1})";
  EXPECT_EQ(call(twin().get, R"({"type":"other"})").reply, got);
  EXPECT_EQ(call(twin().get, "{}").reply, got);
  EXPECT_EQ(call(twin().set, R"({"type":"other","Switch":"on"})").reply,
            R"({"type":"other","result":1})");
  EXPECT_EQ(call(twin().set, R"({"Switch":"on"})").reply, R"({"result":1})");
  EXPECT_THAT(board::log(), IsEmpty());
  for (const auto handler : {twin().get, twin().set}) {
    EXPECT_EQ(call(handler, "{").status, -1);
    EXPECT_EQ(call(handler, nullptr).reply, "untouched");
  }
  EXPECT_THAT(board::log(), ElementsAre("<3>json is NULL", "<3>json is NULL",
                                        "<3>json data is NULL!", "<3>json data is NULL!"));
  EXPECT_THAT(board::journal(), IsEmpty());
}

TEST_P(Tunnel, RefusesWhatItCouldNotReadBackBeforeTheFirstStore) {
  const std::string longest(127, 'x');
  for (const std::string member :
       {"domain", "username", "password", "MTU", "netmode", "staticgateway"}) {
    const auto set_to = [&](const std::string& value) {
      return set("\"" + member + R"(":")" + value + R"(","Switch":"on","netmode":"Static")");
    };
    board::reset();
    EXPECT_EQ(set_to(longest + "x"), 1) << member;
    EXPECT_EQ(set_to(R"(a\nb)"), 1) << member;
    EXPECT_THAT(board::journal(), IsEmpty());
    EXPECT_THAT(board::log(), testing::SizeIs(2));
    EXPECT_EQ(set_to(longest), 0);
    EXPECT_EQ(own(member), longest);
  }
}

INSTANTIATE_TEST_SUITE_P(Both, Tunnel, testing::ValuesIn(kTwins),
                         [](const auto& test) { return test.param.name; });

}  // namespace
