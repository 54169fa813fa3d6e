// The quick-setup wizard and the five operation modes.

#include <platform/wifi_conf.h>
#include <zelto/network.h>
#include <zelto/utilities.h>

#include "support/effects.h"
#include "support/router_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using zelto_test::ask;
using zelto_test::call;
using zelto_test::expand;
using zelto_test::expect_effects;
using zelto_test::Lines;
using zelto_test::with;

constexpr const char* kDone = R"({"type":"seteasycfg","result":0})";
constexpr const char* kFailed = R"({"type":"seteasycfg","result":1})";

// Both networks get a name, and only the 2.4 GHz one a passphrase.
constexpr const char* kNames = R"("wlan2ssid":"Two","wlan2psw":"secret two","wlan5ssid":"Five")";

constexpr const char* kReadsAddresses = "run /sbin/get_7628_lan_wan_mac.sh {lan, wan}\n";
constexpr const char* kStopsAgents =
    "start mv /usr/bin/sys_daemon /usr/bin/sys_daemon_bak;/etc/init.d/sys_daemon stop;"
    "killall -9 sys_daemon;/etc/init.d/Zelto_Cloud stop;killall -9 Zelto_Cloud\n";

// What each mode writes. <words> are replaced by what depends on the request.
constexpr const char* kRouter = R"(
uci set system.route.{operationmode=router, conntype=<type>}
wifi {2.4G, 5G} set ApCliEnable=0
uci set network.lan.{ipaddr=192.168.77.1, netmask=255.255.0.0, type=bridge, ifname=eth0.1}
uci set network.lan.{proto=static, ip6assign=60, force_link=1, macaddr=<lan>}
uci {del network.wan, del network.wan6, add network.wan=interface, add network.wan6=interface}
uci set network.wan.{ifname=eth0.2, proto=<type>, force_link=1, hostname=ZELTO, macaddr=<wan>}
uci set network.wan6.{ifname=eth0.2, proto=dhcpv6}
uci set dhcp.lan.{ignore=0, start=10, endip=20, netmask=255.255.0.0}
<fields>
uci set network.wan.{peerdns=0, dns=4.4.4.4 5.5.5.5}
)";
constexpr const char* kMobile = R"(
uci set system.route.{operationmode=mobilenetmode, conntype=dhcp}
uci set network.lan.{ipaddr=192.168.77.1, netmask=255.255.0.0, type=bridge, proto=static}
uci set network.lan.{ip6assign=60, ifname=eth0.1}
uci {del network.wan, del network.wan6, add network.wan=interface, add network.wan6=interface}
uci set network.{wan.proto=dhcp, wan.ifname=eth0.2, wan6.proto=dhcpv6, wan6.ifname=eth0.2}
uci set dhcp.lan.{ignore=0, start=10, endip=20, netmask=255.255.0.0}
uci del network.{cfg*, cfg*, cfg*}
uci {add network.cfg*=switch_vlan, set network.cfg*.device=switch0, set network.cfg*.vlan=1}
uci {set network.cfg*.ports=1 2 3 4 6, add network.cfg*=switch_vlan}
uci set network.cfg*.{device=switch0, vlan=2, ports=0 5}
wifi {2.4G, 5G} set ApCliEnable=0
)";
constexpr const char* kAccessPoint = R"(
uci {set dhcp.lan.ignore=1, del network.lan.ipaddr, del network.lan.netmask}
uci set network.lan.{proto=dhcp, ifname=eth0.1 eth0.2}
uci del network.{wan, wan6}
uci set system.route.{operationmode=AP, conntype=dhcp}
wifi {2.4G, 5G} set ApCliEnable=0
uci set internet.ap.{config_change=0, ap_ready=0}
)";
constexpr const char* kWisp = R"(
uci {del network.wan, del network.wan6, add network.wan=interface, add network.wan6=interface}
uci set network.lan.{ipaddr=192.168.77.1, netmask=255.255.0.0, proto=static, force_link=1}
uci set network.lan.{type=bridge, ip6assign=60, macaddr=<lan>}
uci set internet.wisp.{<keys>}
uci set dhcp.lan.{ignore=0, start=10, endip=20, netmask=255.255.0.0}
uci set internet.wisp.wisp_type=<band>
uci set network.{lan.ifname=eth0.1 eth0.2, wan.ifname=<client>, wan6.ifname=<client>}
<join>
uci set network.wan.{peerdns=0, dns=4.4.4.4 5.5.5.5}
uci set system.route.{operationmode=wisp, conntype=dhcp}
uci set network.{wan.proto=dhcp, wan6.proto=dhcpv6, wan.hostname=ZELTO, wan.force_link=1}
)";
constexpr const char* kRepeater = R"(
uci set internet.repeater.{<keys>}
uci set {network.lan.ifname=eth0.1 eth0.2, internet.repeater.repeater_type=<band>}
<join>
uci set {system.route.operationmode=repeater, system.route.conntype=dhcp, dhcp.lan.ignore=1}
uci {del network.lan.ipaddr, del network.lan.netmask, set network.lan.proto=dhcp}
uci del network.{wan, wan6}
)";
constexpr const char* kJoin2G = R"(
wifi 2.4G set WirelessMode{[0], [1]}=1
wifi 2.4G set {<keys>, ApCliEnable=1}
wifi 5G set ApCliEnable=0
)";
constexpr const char* kJoin5G = "wifi 5G set {<keys>, ApCliEnable=1}\nwifi 2.4G set ApCliEnable=0";

// What every mode ends with.
constexpr const char* kTail =
    R"(
{uci set system.route.ssid_2g=Two, wifi 2.4G set SSID1=Two, uci set system.route.ssid_5g=Five}
wifi 2.4G set {AuthMode[0]=WPAPSKWPA2PSK, EncrypType[0]=AES, RekeyMethod[0]=TIME}
wifi 2.4G set {PMFMFPC[0]=0, PMFMFPR[0]=0, WPAPSK1=secret two}
wifi 5G set {AuthMode[0]=OPEN, EncrypType[0]=NONE, RekeyMethod[0]=DISABLE, PMFMFPC[0]=0}
wifi 5G set PMFMFPR[0]=0
uci del network.{PPTP, L2TP}
uci set internet.{pptp_l2tp.pp_Switch=off, pptp_l2tp.l2_Switch=off, ap.config_change=0}
uci set internet.{ap.ap_ready=0, repeater.config_change=0, repeater.repeater_ready=0}
uci set system.route.dhcp_dns=0
run echo "0;192.168.16.123;aa:bb:cc:dd:ee:ff;router.zelto" > /proc/mt7628/DHCP_Dns
start /sbin/unset_vlan.sh
run /etc/init.d/mob_daemon <modem> &
{uci set mtkhnat.global.enable=<nat>, run echo <nat> > /sys/kernel/debug/hnat/hook_toggle}
{uci set iptv.config.enable=<iptv>, wifi 2.4G set ApCliEnable=0, wifi 5G set ApCliEnable=0}
uci set system.route.{7663_wifi_scan=0, wifi_do_action=0}
<bssid>
start /etc/init.d/network restart;killall -USR2 udhcpc;killall -USR1 udhcpc;)"
    R"(/sbin/reset_lan_port.sh needsleep;/etc/init.d/terminal_list restart &
<last>
)";

std::string tail(const std::string& mode, const std::string& last = "") {
  const bool joins = mode == "wisp" || mode == "repeater";
  const auto* portmap = mode == "router" ? "start lua /sbin/svctl.lua set_iptv_portmap &" : "";
  return with(kTail, {{"<modem>", mode == "mobilenetwork" ? "restart" : "stop"},
                      {"<nat>", mode == "AP" || mode == "repeater" ? "0" : "1"},
                      {"<iptv>", mode == "router" ? "1" : "0"},
                      {"<bssid>", joins ? "uci set system.route.superior_bssid=02:bb::01" : ""},
                      {"<last>", last.empty() ? portmap : "start " + last}});
}

// The network to join, as requests name it and as it is stored.
std::string network(const std::string& band, int channel) {
  return R"x("ssid":"Up'\"$(touch /tmp/owned)","security":"WPA2PSK/AES","key":"up `key`",)x"
         R"("bssid":"02:bb::01","channel":)" +
         std::to_string(channel) + R"(,"wifi_type":")" + band + "\"";
}
constexpr const char* kKeys =
    R"x(ApCliAuthMode=WPA2PSK, ApCliEncrypType=AES, ApCliSsid=Up'"$(touch /tmp/owned), )x"
    "ApCliWPAPSK=up `key`, Channel=";
std::string joining(const char* mode, const std::string& band, const std::string& channel) {
  const bool on_2g = band == "2.4G";
  return with(mode, {{"<join>", on_2g ? kJoin2G : kJoin5G},
                     {"<client>", on_2g ? "apcli0" : "apclii0"},
                     {"<band>", band},
                     {"<keys>", std::string(kKeys) + channel}});
}

std::string request(const std::string& mode, const std::string& members) {
  return R"({"type":"seteasycfg","opermode":")" + mode + "\"," + kNames +
         (members.empty() ? "" : ",") + members + "}";
}

class QuickSetup : public zelto_test::RouterTest {
 protected:
  void SetUp() override { prepare(); }

  // Everything kept differs from what is in use; the 2.4 GHz radio is on, the other one off.
  static void prepare() {
    board::reset();
    for (const auto& kept : expand(
             "{lan_ipaddr=192.168.77.1, lan_netmask=255.255.0.0, dhcp_startip=10, dhcp_endip=20, "
             "advanced_dns_switch=1, advanced_dns=4.4.4.4 5.5.5.5, mtkhnat=1, iptv=1}")) {
      const auto equals = kept.find('=');
      given("system", "route", kept.substr(0, equals).c_str(), kept.substr(equals + 1));
    }
    for (const char* option : {"ipaddr", "gateway", "netmask", "username"}) {
      given("network", "wan", option, std::nullopt);
    }
    easy_uci_add_section("network", "switch_vlan", nullptr);  // the third
    easy_uci_add_section("network", "interface", "PPTP");
    easy_uci_add_section("network", "interface", "L2TP");
    lib_conf_set_5G("WIFIEnable", 0, "0");
    board::clear_journal();
  }

  static std::string driver(int (*get)(const char*, int, char*), const char* key) {
    std::array<char, WIFI_CONF_VALUE_SIZE> value{};
    return get(key, -1, value.data()) == 0 ? value.data() : "(none)";
  }
};

TEST_F(QuickSetup, WritesEachModeInOrder) {
  const auto router = [](const std::string& type, const std::string& fields) {
    return with(kRouter, {{"<type>", type}, {"<fields>", fields}});
  };
  const auto wisp_5g = joining(kWisp, "5.8G", "36");
  const auto repeater_5g = joining(kRepeater, "5.8G", "36");
  const std::string connect_2g = "sleep 40;/sbin/wifi_connect.sh apcli0 &";
  const std::string connect_5g = "sleep 50;/sbin/wifi_connect.sh apclii0 &";
  const struct {
    std::string mode;
    std::string members;
    std::string effects;
    std::string connect = "";
  } cases[] = {
      {"router", R"("wanmode":"dhcp","mtu":"1492")",
       router("dhcp", "uci set network.wan.mtu=1500")},
      {"router",
       R"("wanmode":"static","dns2":"1.1.1.1","dns1":"9.9.9.9","wangw":"10.1.1.1",)"
       R"("wanmsk":"255.0.0.0","wanip":"10.1.1.2")",
       router("static",
              "uci set network.wan.{ipaddr=10.1.1.2, netmask=255.0.0.0, gateway=10.1.1.1}\n"
              "uci set {network.wan.dns=9.9.9.9, system.route.static_dns=9.9.9.9}\n"
              "uci set network.wan.dns=9.9.9.9 1.1.1.1")},
      {"router", R"("wanmode":"pppoe","server_name":"isp","pppoepsw":"p w","pppoename":"me")",
       router("pppoe", "uci set network.wan.{username=me, password=p w, service=isp}")},
      {"mobilenetwork", R"("wanmode":"pppoe","wanip":"10.1.1.2")", kMobile},
      {"AP", "", kAccessPoint},
      {"wisp", network("2.4G", 14), joining(kWisp, "2.4G", "14"), connect_2g},
      {"wisp", network("5.8G", 36), wisp_5g, connect_5g},
      {"repeater", network("2.4G", 14), joining(kRepeater, "2.4G", "14"), connect_2g},
      {"repeater", network("5.8G", 36), repeater_5g, connect_5g},
      // Any other band is set up as 5 GHz, but nothing connects it.
      {"wisp", network("2.4g", 36), wisp_5g},
      {"repeater", network("", 36), repeater_5g},
  };
  char lan[24] = "";
  char wan[24] = "";
  get_7628_lan_mac(lan);
  get_7628_wan_mac(wan);
  for (const auto& c : cases) {
    prepare();
    const auto text = request(c.mode, c.members);
    EXPECT_EQ(ask(text), kDone);
    const auto effects = with(c.effects, {{"<lan>", lan}, {"<wan>", wan}});
    expect_effects(kReadsAddresses + (kStopsAgents + effects) + tail(c.mode, c.connect), text);
    EXPECT_THAT(board::log(), IsEmpty()) << text;
    EXPECT_EQ(board::quiet({"test", "-e", "/tmp/owned"}), 1);
  }
}

TEST_F(QuickSetup, DerivesTheUplinksSecurity) {
  const struct {
    std::string security;  // as a member
    std::string stored;
    std::string wisp_5g = stored;
  } cases[] = {
      {R"(,"security":"OPEN/NONE")", "OPEN NONE"},
      {R"(,"security":"OPEN")", "OPEN (none)"},
      {R"(,"security":"NONE")", "OPEN NONE"},
      {R"(,"security":"OPEN/WEP")", "OPEN (none)"},
      {R"(,"security":"WPA3PSK/AES")", "WPA2PSK AES", "WPA3PSK AES"},
      {R"(,"security":"WPA2PSKWPA3PSK/TKIPAES")", "WPA2PSK AES", "WPA3PSK AES"},
      {R"(,"security":"WPA2PSK/TKIP")", "WPA2PSK TKIP"},
      {R"(,"security":"WPAPSKWPA2PSK/TKIPAES")", "WPA2PSK AES"},
      {R"(,"security":"WPAPSK/AES")", "WPAPSK AES"},
      {R"(,"security":"wpa2psk/aes")", "(none) (none)"},
      {"", "(none) (none)"},
  };
  for (const auto& c : cases) {
    for (const std::string mode : {"wisp", "wisp5.8G", "repeater", "repeater5.8G"}) {
      const auto section = mode.substr(0, mode.find('5'));
      const auto* band = mode == section ? "2.4G" : "5.8G";
      ask(request(section, R"("ssid":"Up","wifi_type":")" + (band + ("\"" + c.security))));
      // Neither key, BSSID nor channel was sent.
      std::string found;
      for (const char* option : {"ApCliAuthMode", "ApCliEncrypType", "ApCliWPAPSK", "Channel"}) {
        found += stored("internet", section.c_str(), option) + " ";
      }
      EXPECT_EQ(found + stored("system", "route", "superior_bssid"),
                (mode == "wisp5.8G" ? c.wisp_5g : c.stored) + " (none) 0 (none)")
          << mode << c.security;
    }
    board::reset();
  }
}

TEST_F(QuickSetup, Channel14HasAModeOfItsOwn) {
  const struct {
    const char* before;
    const char* members;
    const char* modes;  // of both networks
  } cases[] = {
      {"6", R"("2.4G","channel":14)", "1;1"},    {"14", R"("2.4G","channel":14)", "1;1"},
      {"14", R"("2.4G","channel":6)", "9;9"},    {"14", R"("2.4G","x":1)", "9;9"},
      {"14", R"("2.4G","channel":"14")", "9;9"}, {"6", R"("2.4G","channel":11)", "7;7"},
      {"14", R"("5.8G","channel":36)", "7;7"},   {"6", R"("5.8G","channel":14)", "7;7"},
  };
  for (const auto& c : cases) {
    for (const char* mode : {"wisp", "repeater"}) {
      lib_conf_set_2G("Channel", -1, c.before);
      lib_conf_set_2G("WirelessMode", -1, "7;7");
      ask(request(mode, R"("ssid":"Up","wifi_type":)" + std::string(c.members)));
      EXPECT_EQ(driver(lib_conf_get_2G, "WirelessMode"), c.modes) << c.before << c.members << mode;
    }
  }
}

TEST_F(QuickSetup, AFailedModeStillEndsAsEveryOther) {
  const std::string trace = "zeltoapi.c:bs_SetEasyInfo:[0-9]+:unknown mode!\n\n";
  const struct {
    std::string request;
    std::string console;
  } cases[] = {
      {request("Router", R"("wanmode":"dhcp")"), trace},
      {R"({"type":"seteasycfg",)" + std::string(kNames) + "}", trace},
      {request("router", R"("wanip":"10.1.1.2")"), ""},
      {request("router", R"("wanmode":1)"), ""},
  };
  for (const auto& c : cases) {
    prepare();
    EXPECT_EQ(ask(c.request), kFailed);
    const auto end = tail(c.console.empty() ? "router" : "unknown");
    expect_effects(std::string(kReadsAddresses) + kStopsAgents + end, c.request);
    EXPECT_THAT(board::console(), testing::MatchesRegex(c.console));
  }
}

TEST_F(QuickSetup, AWrongRequestTouchesNothing) {
  Lines requests = {request("router", R"("wanmode":"dhcp\n")"),
                    request("wisp", R"("wifi_type":"2.4G","ssid":"a\nb")")};
  for (const char* members :
       {R"("ssid":"Up")", R"("wifi_type":"2.4G")", R"("ssid":1,"wifi_type":"2.4G")",
        R"("ssid":"Up","wifi_type":null)"}) {
    for (const char* mode : {"wisp", "repeater"}) requests.push_back(request(mode, members));
  }
  const std::pair<const char*, std::size_t> too_long[] = {
      {"wlan2ssid", 100}, {"wlan2psw", 100}, {"wlan5ssid", 100}, {"wlan5psw", 100},
      {"bssid", 128},     {"wanip", 128},    {"mtu", 128},       {"pppoename", 128},
      {"dns1", 127},      {"dns2", 127},     {"key", 100}};  // both resolvers and a blank
  const auto sending = [](const std::string& member, const std::string& value) {
    return R"({"type":"seteasycfg","opermode":"wisp","ssid":"Up","wifi_type":"5.8G",")" + member +
           R"(":")" + value + R"("})";
  };
  for (const auto& [member, length] : too_long) {
    for (const auto& value : {std::string(length, 'x'), std::string(R"(a\nb)")}) {
      requests.push_back(sending(member, value));
    }
  }
  for (const auto& text : requests) {
    board::clear_journal();
    EXPECT_EQ(ask(text), kFailed) << text;
    // Reading the addresses is all that comes before.
    expect_effects(kReadsAddresses, text);
  }
  EXPECT_EQ(board::log().size(), requests.size());
  for (const auto& [member, length] : too_long) {
    EXPECT_EQ(ask(sending(member, std::string(length - 1, 'x'))), kDone) << member;
  }
  // The longest were stored whole; without "wlan2psw" the network is open in the end.
  EXPECT_EQ(stored("system", "route", "ssid_2g"), std::string(99, 'x'));
  EXPECT_EQ(driver(lib_conf_get_5G, "WPAPSK1") + driver(lib_conf_get_5G, "ApCliWPAPSK"),
            std::string(198, 'x'));
  EXPECT_THAT(driver(lib_conf_get_2G, "AuthMode"), testing::StartsWith("OPEN;"));

  board::reset();
  EXPECT_EQ(call(bs_SetEasyInfo, R"({"type":"geteasycfg","opermode":"AP"})").reply, kFailed);
  const auto unread = call(bs_SetEasyInfo, "{");
  EXPECT_EQ(std::to_string(unread.status) + unread.reply, "-1untouched");
  EXPECT_THAT(board::log(), ElementsAre("<3>json is NULL"));
  EXPECT_THAT(board::journal(), IsEmpty());
}

TEST_F(QuickSetup, KeepsWhatItCannotReplace) {
  for (const auto& mode : {request("router", R"("wanmode":"dhcp")"), request("mobilenetwork", ""),
                           request("wisp", network("5.8G", 36))}) {
    prepare();
    const Lines kept = {"lan_ipaddr", "lan_netmask", "lan_netmask", "dhcp_startip", "dhcp_endip"};
    const auto each = [](auto visit) {
      for (const char* option : {"ipaddr", "netmask"}) visit("network", option);
      for (const char* option : {"netmask", "start", "endip"}) visit("dhcp", option);
    };
    Lines complaints;
    for (const auto& option : kept) {
      given("system", "route", option.c_str(), std::nullopt);
      complaints.push_back("<3>get system.route." + option + " failed!");
    }
    each([](auto package, auto option) { given(package, "lan", option, option); });
    EXPECT_EQ(ask(mode), kDone);
    each([](auto package, auto option) { EXPECT_EQ(stored(package, "lan", option), option); });
    EXPECT_THAT(board::log(), testing::UnorderedElementsAreArray(complaints)) << mode;
  }
}

TEST_F(QuickSetup, FollowsTheUsersSwitches) {
  // Hardware NAT and IPTV; nothing of IPTV when its choice cannot be read.
  for (const std::optional<std::string>& choice : {std::optional<std::string>("0"), {"2"}, {}}) {
    for (const char* option : {"mtkhnat", "iptv"}) given("system", "route", option, choice);
    given("iptv", "config", "enable", "7");
    ask(request("router", R"("wanmode":"dhcp")"));
    EXPECT_EQ(stored("mtkhnat", "global", "enable"), "0");
    EXPECT_EQ(stored("iptv", "config", "enable"), choice.value_or("7"));
  }
  given("system", "route", "advanced_dns_switch", "0");
  ask(request("router", R"("wanmode":"static","dns1":"9.9.9.9")"));
  EXPECT_EQ(stored("network", "wan", "dns") + stored("network", "wan", "peerdns"), "9.9.9.9(none)");

  // A radio whose switch cannot be read counts as on.
  prepare();
  for (const char* profile : {"mt7628/mt7628.dat", "mt7663/mt7663.dat"}) {
    board::write_file(std::string("/etc/wireless/") + profile, "Default\nSSID1=old\n");
  }
  ask(request("AP", ""));
  EXPECT_THAT(board::log(), ElementsAre("<3>lib_conf_get_2G WIFIEnable failed!",
                                        "<3>lib_conf_get_5G WIFIEnable failed!"));
  EXPECT_EQ(driver(lib_conf_get_2G, "SSID1") + driver(lib_conf_get_5G, "SSID1"), "TwoFive");
}

TEST_F(QuickSetup, GoesThroughAllModesAndBack) {
  given("system", "route", "advanced_dns_switch", "0");
  const auto router = request("router", R"("wanmode":"static","wanip":"10.9.0.2")");
  const std::string own_lan = "192.168.77.1 eth0.1 ";
  const std::string bridged = "(none) eth0.1 eth0.2 (none) (none)";
  const struct {
    std::string request;
    std::string mode;
    std::string settings;  // of LAN and WAN
    std::string carrier;
  } cases[] = {
      {router, "router", own_lan + "static eth0.2", "eth0.2"},
      {request("mobilenetwork", ""), "mobilenetmode", own_lan + "dhcp eth0.2", "eth0.2"},
      {request("AP", ""), "AP", bridged, "br-lan"},
      {request("wisp", network("2.4G", 6)), "wisp", own_lan + "eth0.2 dhcp apcli0", "apcli0"},
      {request("repeater", network("2.4G", 6)), "repeater", bridged, "br-lan"},
      {request("wisp", network("5.8G", 36)), "wisp", own_lan + "eth0.2 dhcp apclii0", "apclii0"},
      {router, "router", own_lan + "static eth0.2", "eth0.2"},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(ask(c.request), kDone);
    board::settle();
    EXPECT_EQ(stored("network", "lan", "ipaddr") + " " + stored("network", "lan", "ifname") + " " +
                  stored("network", "wan", "proto") + " " + stored("network", "wan", "ifname"),
              c.settings)
        << c.mode;
    board::set_address(c.carrier, "10.9.0.2");
    const std::string connection = c.mode == "router" ? "static" : "dhcp";
    EXPECT_THAT(ask(R"({"type":"getrouterinfo"})") + ask(R"({"type":"getwaninfo"})"),
                testing::MatchesRegex(".+\"" + c.mode + "\".+\"connetype\":\"" + connection +
                                      "\".+\"ip\":\"10.9.0.2\".+"));
    board::set_address(c.carrier, "");
  }
}

TEST_F(QuickSetup, ShowsTheWizard) {
  const std::string xs(29, 'x');
  const struct {
    std::optional<std::string> mode;
    const char* links;
    const char* online;
    std::optional<std::string> password;
    std::string members;
  } cases[] = {
      {"router", "1f", "offline", std::nullopt,
       R"(router","wan":"unlink","net":"unlink","password":"","jump":"1)"},
      {std::nullopt, "20", "offline", " ",
       R"(router","operationmode":"","wan":"link","net":"unlink","password":" ","jump":"1)"},
      {"wisp", "0", "online", "  " + xs + xs,
       R"(wisp","wan":"unlink","net":"link","password":"  )" + xs + R"(","jump":"0)"},
  };
  given("system", "route", "webLoginFirst", "1");
  board::write_file("/etc/FW-Version", "ZELTO-R1,1.0.3\r\n");
  for (const auto& c : cases) {
    given("system", "route", "operationmode", c.mode);
    given("system", "route", "routepwd", c.password);
    board::write_file("/var/board/switch-83", c.links);
    board::write_file("/tmp/online_file", c.online);
    EXPECT_EQ(ask(R"({"type":"geteasycfg"})"),
              with(R"({"type":"geteasycfg","version":"ZELTO-R1,1.0.3","operationmode":")" +
                       c.members + "\"}",
                   {{"wan\"", "wanstatus\""}, {"net\"", "netstatus\""}, {"jump\"", "jumpflag\""}}));
  }
}

TEST_F(QuickSetup, GreetsTheFirstVisitorOnce) {
  for (const std::optional<std::string>& visited : {std::optional<std::string>("0"), {}, {"x"}}) {
    board::reset();
    given("system", "route", "webLoginFirst", visited);
    ask(R"({"type":"geteasycfg"})");
    ask(R"({"type":"geteasycfg"})");
    expect_effects(
        "run switch reg r 83\nuci set system.route.webLoginFirst=1\n"
        "wifi 2.4G set {TxPower=100, PERCENTAGEenable=0}\n"
        "start wifi_setup.sh wifi_master_arguments all &\nrun switch reg r 83\n",
        visited.value_or("(none)"));
  }
  EXPECT_EQ(call(bs_GetEasyInfo, R"({"type":"seteasycfg"})").reply,
            R"({"type":"geteasycfg","result":1})");
  EXPECT_EQ(call(bs_GetEasyInfo, "").status, -1);
  EXPECT_THAT(board::log(), testing::Contains("<3>json data is NULL!"));
}

}  // namespace
