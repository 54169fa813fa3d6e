// Both tunnels: what they store, in which order, and how one gives way to the other.

#include <zelto/network.h>

#include "support/effects.h"
#include "support/router_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using zelto_test::ask;
using zelto_test::call;
using zelto_test::expect_effects;
using zelto_test::with;

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
  std::string first_writes;
};
constexpr const char* kPptpFirst =
    "uci add network.PPTP=interface\nuci set {network.PPTP.proto, system.route.conntype}=pptp";
constexpr const char* kL2tpFirst =
    "uci set system.route.conntype=l2tp\n"
    "uci {add network.L2TP=interface, set network.L2TP.proto=l2tp}";
const Twin kTwins[] = {
    {"pptp", bs_GetPptpInfo, bs_SetPptpInfo, "pp_", "PPTP", kPptpFirst},
    {"l2tp", bs_GetL2tpInfo, bs_SetL2tpInfo, "l2_", "L2TP", kL2tpFirst},
};

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

  // The words that stand for the tunnel and the other one.
  void expect(const std::string& effects, const std::string& of) const {
    expect_effects(with(effects, {{"<first>", twin().first_writes},
                                  {"<own>", twin().prefix},
                                  {"<other>", other().prefix},
                                  {"<OWN>", twin().section},
                                  {"<OTHER>", other().section}}) +
                       kRestart,
                   of);
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
  expect(R"x(
uci del network.wan.dns
uci set internet.pptp_l2tp.<own>{staticip=10.1.1.2, staticmask=255.0.0.0, staticgateway=10.1.1.1}
uci set internet.pptp_l2tp.<own>{Switch=on, domain=vpn.example, username=me}
uci set internet.pptp_l2tp.<own>{password=a'b"c$(d);, netmode=Static, MTU=1400}
uci del network.<OWN>
{uci set mtkhnat.global.enable=0, run echo 0 > /sys/kernel/debug/hnat/hook_toggle}
uci set internet.pptp_l2tp.<other>Switch=off
<first>
uci set network.<OWN>.{ipv6=auto, server=vpn.example, username=me, password=a'b"c$(d);, mtu=1400}
uci set network.wan.{proto=static, ipaddr=10.1.1.2, netmask=255.0.0.0, gateway=10.1.1.1}
uci set network.<OWN>.peerdns=0
uci del network.<OTHER>
uci set internet.pptp_l2tp.<other>Switch=off
)x",
         members);
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
    expect(R"(
uci set {system.route.conntype=dhcp, network.wan.proto=dhcp}
uci del {network.wan.dns, network.<OWN>}
uci set {internet.pptp_l2tp.<own>Switch=off, mtkhnat.global.enable=1}
run echo 1 > /sys/kernel/debug/hnat/hook_toggle
)",
           members);
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
