// The quick-setup wizard and the five operation modes.

#include <platform/wifi_conf.h>
#include <zelto/network.h>
#include <zelto/utilities.h>

#include "support/effects.h"
#include "support/router_test.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using zelto_test::ask;
using zelto_test::call;
using zelto_test::expect_effects;
using zelto_test::Lines;

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
uci del network.{wan, wan6}
uci add network.{wan, wan6}=interface
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
uci del network.{wan, wan6}
uci add network.{wan, wan6}=interface
uci set network.{wan.proto=dhcp, wan.ifname=eth0.2, wan6.proto=dhcpv6, wan6.ifname=eth0.2}
uci set dhcp.lan.{ignore=0, start=10, endip=20, netmask=255.255.0.0}
uci del network.{cfg*, cfg*}
uci add network.cfg*=switch_vlan
uci set network.cfg*.{device=switch0, vlan=1, ports=1 2 3 4 6}
uci add network.cfg*=switch_vlan
uci set network.cfg*.{device=switch0, vlan=2, ports=0 5}
wifi {2.4G, 5G} set ApCliEnable=0
)";
constexpr const char* kAccessPoint = R"(
uci set dhcp.lan.ignore=1
uci del network.lan.{ipaddr, netmask}
uci set network.lan.{proto=dhcp, ifname=eth0.1 eth0.2}
uci del network.{wan, wan6}
uci set system.route.{operationmode=AP, conntype=dhcp}
wifi {2.4G, 5G} set ApCliEnable=0
uci set internet.ap.{config_change=0, ap_ready=0}
)";
constexpr const char* kWisp = R"(
uci del network.{wan, wan6}
uci add network.{wan, wan6}=interface
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
uci set network.lan.ifname=eth0.1 eth0.2
uci set internet.repeater.repeater_type=<band>
<join>
uci set system.route.{operationmode=repeater, conntype=dhcp}
uci set dhcp.lan.ignore=1
uci del network.lan.{ipaddr, netmask}
uci set network.lan.proto=dhcp
uci del network.{wan, wan6}
)";
constexpr const char* kJoin2G = R"(
wifi 2.4G set WirelessMode{[0], [1]}=1
wifi 2.4G set {<keys>, ApCliEnable=1}
wifi 5G set ApCliEnable=0
)";
constexpr const char* kJoin5G = R"(
wifi 5G set {<keys>, ApCliEnable=1}
wifi 2.4G set ApCliEnable=0
)";

// What every mode ends with.
constexpr const char* kTail =
    R"(
uci set system.route.ssid_2g=Two
wifi 2.4G set SSID1=Two
uci set system.route.ssid_5g=Five
wifi 2.4G set {AuthMode[0]=WPAPSKWPA2PSK, EncrypType[0]=AES, RekeyMethod[0]=TIME, PMFMFPC[0]=0}
wifi 2.4G set {PMFMFPR[0]=0, WPAPSK1=secret two}
wifi 5G set {AuthMode[0]=OPEN, EncrypType[0]=NONE, RekeyMethod[0]=DISABLE, PMFMFPC[0]=0}
wifi 5G set PMFMFPR[0]=0
uci del network.{PPTP, L2TP}
uci set internet.{pptp_l2tp.pp_Switch=off, pptp_l2tp.l2_Switch=off}
uci set internet.{ap.config_change=0, ap.ap_ready=0}
uci set internet.{repeater.config_change=0, repeater.repeater_ready=0}
uci set system.route.dhcp_dns=0
run echo "0;192.168.16.123;aa:bb:cc:dd:ee:ff;router.zelto" > /proc/mt7628/DHCP_Dns
start /sbin/unset_vlan.sh
run /etc/init.d/mob_daemon <modem> &
uci set mtkhnat.global.enable=<nat>
run echo <nat> > /sys/kernel/debug/hnat/hook_toggle
uci set iptv.config.enable=<iptv>
wifi {2.4G, 5G} set ApCliEnable=0
uci set system.route.{7663_wifi_scan=0, wifi_do_action=0}
<bssid>
start /etc/init.d/network restart;killall -USR2 udhcpc;killall -USR1 udhcpc;)"
    R"(/sbin/reset_lan_port.sh needsleep;/etc/init.d/terminal_list restart &
<last>
)";

using Words = std::vector<std::pair<std::string, std::string>>;

// Replaces the words in turn: what is put in may hold later ones.
std::string with(std::string text, const Words& words) {
  for (const auto& [word, value] : words) {
    for (auto at = text.find(word); at != std::string::npos; at = text.find(word)) {
      text.replace(at, word.size(), value);
    }
  }
  return text;
}

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
std::string joining(const char* mode, const std::string& band, const std::string& channel) {
  const bool on_2g = band == "2.4G";
  return with(mode, {{"<join>", on_2g ? kJoin2G : kJoin5G},
                     {"<client>", on_2g ? "apcli0" : "apclii0"},
                     {"<band>", band},
                     {"<keys>", R"x(ApCliAuthMode=WPA2PSK, ApCliEncrypType=AES, )x"
                                R"x(ApCliSsid=Up'"$(touch /tmp/owned), ApCliWPAPSK=up `key`, )x"
                                "Channel=" +
                                    channel}});
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
    const std::pair<const char*, const char*> kept[] = {{"lan_ipaddr", "192.168.77.1"},
                                                        {"lan_netmask", "255.255.0.0"},
                                                        {"dhcp_startip", "10"},
                                                        {"dhcp_endip", "20"},
                                                        {"advanced_dns_switch", "1"},
                                                        {"advanced_dns", "4.4.4.4 5.5.5.5"},
                                                        {"mtkhnat", "1"},
                                                        {"iptv", "1"}};
    for (const auto& [option, value] : kept) given("system", "route", option, value);
    for (const char* option : {"ipaddr", "gateway", "netmask", "username"}) {
      given("network", "wan", option, std::nullopt);
    }
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
  const auto wisp_2g = joining(kWisp, "2.4G", "14");
  const auto wisp_5g = joining(kWisp, "5.8G", "36");
  const auto repeater_2g = joining(kRepeater, "2.4G", "14");
  const auto repeater_5g = joining(kRepeater, "5.8G", "36");
  const std::string connect_2g = "sleep 40;/sbin/wifi_connect.sh apcli0 &";
  const std::string connect_5g = "sleep 50;/sbin/wifi_connect.sh apclii0 &";
  const struct {
    std::string mode;
    std::string members;
    std::string effects;
    std::string connect = "";
  } cases[] = {
      {"router", R"("wanmode":"dhcp","mtu":"1492","wanip":7)",
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
      {"wisp", network("2.4G", 14), wisp_2g, connect_2g},
      {"wisp", network("5.8G", 36), wisp_5g, connect_5g},
      {"repeater", network("2.4G", 14), repeater_2g, connect_2g},
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

TEST_F(QuickSetup, DividesTheSwitchForTheModem) {
  for (int i = 0; i < 3; ++i) easy_uci_add_section("network", "switch_vlan", nullptr);
  ask(request("mobilenetwork", ""));
  std::string found;
  char name[EASY_UCI_NAME_SIZE] = "";
  for (int n = 0; easy_uci_get_nth_section_of_type("network", "switch_vlan", n, name) == 0; ++n) {
    for (const char* option : {"device", "vlan", "ports"}) {
      found += stored("network", name, option) + ",";
    }
  }
  EXPECT_EQ(found, "switch0,1,1 2 3 4 6,switch0,2,0 5,");
}

TEST_F(QuickSetup, DerivesTheUplinksSecurity) {
  const struct {
    const char* security;  // null: not sent
    std::string authentication;
    std::string cipher;
    std::string wisp_5g = authentication;
  } cases[] = {
      {"OPEN/NONE", "OPEN", "NONE"},
      {"OPEN", "OPEN", "(none)"},
      {"NONE", "OPEN", "NONE"},
      {"OPEN/WEP", "OPEN", "(none)"},
      {"WPA3PSK/AES", "WPA2PSK", "AES", "WPA3PSK"},
      {"WPA2PSKWPA3PSK/TKIPAES", "WPA2PSK", "AES", "WPA3PSK"},
      {"WPA2PSK/TKIP", "WPA2PSK", "TKIP"},
      {"WPAPSKWPA2PSK/TKIPAES", "WPA2PSK", "AES"},
      {"WPAPSK/AES", "WPAPSK", "AES"},
      {"wpa2psk/aes", "(none)", "(none)"},
      {nullptr, "(none)", "(none)"},
  };
  for (const auto& c : cases) {
    for (const std::string mode : {"wisp", "repeater"}) {
      for (const std::string band : {"2.4G", "5.8G"}) {
        const auto note = mode + " " + band + " " + (c.security == nullptr ? "-" : c.security);
        auto members = R"("ssid":"Up","wifi_type":")" + band + "\"";
        if (c.security != nullptr) members += R"(,"security":")" + std::string(c.security) + "\"";
        EXPECT_EQ(ask(request(mode, members)), kDone);
        EXPECT_EQ(stored("internet", mode.c_str(), "ApCliAuthMode"),
                  mode + band == "wisp5.8G" ? c.wisp_5g : c.authentication)
            << note;
        EXPECT_EQ(stored("internet", mode.c_str(), "ApCliEncrypType"), c.cipher) << note;
        // Neither key, BSSID nor channel was sent.
        EXPECT_EQ(stored("internet", mode.c_str(), "ApCliWPAPSK"), "(none)");
        EXPECT_EQ(stored("internet", mode.c_str(), "Channel"), "0");
        EXPECT_EQ(stored("system", "route", "superior_bssid"), "(none)");
      }
    }
    board::reset();
  }
}

TEST_F(QuickSetup, Channel14HasAModeOfItsOwn) {
  const struct {
    const char* before;
    const char* channel;
    const char* band;
    const char* modes;  // of both networks
  } cases[] = {
      {"6", R"("channel":14)", "2.4G", "1;1"},    {"14", R"("channel":14)", "2.4G", "1;1"},
      {"14", R"("channel":6)", "2.4G", "9;9"},    {"14", R"("x":1)", "2.4G", "9;9"},
      {"14", R"("channel":"14")", "2.4G", "9;9"}, {"6", R"("channel":11)", "2.4G", "7;7"},
      {"14", R"("channel":36)", "5.8G", "7;7"},   {"6", R"("channel":14)", "5.8G", "7;7"},
  };
  for (const auto& c : cases) {
    for (const char* mode : {"wisp", "repeater"}) {
      lib_conf_set_2G("Channel", -1, c.before);
      lib_conf_set_2G("WirelessMode", -1, "7;7");
      ask(request(mode, R"("ssid":"Up","wifi_type":")" + std::string(c.band) + "\"," + c.channel));
      EXPECT_EQ(driver(lib_conf_get_2G, "WirelessMode"), c.modes)
          << c.before << " " << c.channel << " " << c.band << " " << mode;
    }
  }
}

TEST_F(QuickSetup, AFailedModeStillEndsAsEveryOther) {
  const struct {
    std::string request;
    std::string tail_of;
    bool is_traced;
  } cases[] = {
      {request("Router", R"("wanmode":"dhcp")"), "unknown", true},
      {R"({"type":"seteasycfg",)" + std::string(kNames) + "}", "unknown", true},
      {request("router", R"("wanip":"10.1.1.2")"), "router", false},
      {request("router", R"("wanmode":1)"), "router", false},
  };
  for (const auto& c : cases) {
    prepare();
    EXPECT_EQ(ask(c.request), kFailed);
    expect_effects(std::string(kReadsAddresses) + kStopsAgents + tail(c.tail_of), c.request);
    EXPECT_THAT(
        board::console(),
        MatchesRegex(c.is_traced ? "zeltoapi.c:bs_SetEasyInfo:[0-9]+:unknown mode!\n\n" : ""));
  }
}

TEST_F(QuickSetup, AWrongRequestTouchesNothing) {
  const std::string wrong_network[] = {R"("ssid":"Up")", R"("wifi_type":"2.4G")",
                                       R"("ssid":1,"wifi_type":"2.4G")",
                                       R"("ssid":"Up","wifi_type":null)"};
  Lines requests;
  for (const auto& members : wrong_network) {
    requests.push_back(request("wisp", members));
    requests.push_back(request("repeater", members));
  }
  const auto with = [](const std::string& member, const std::string& value) {
    return R"({"type":"seteasycfg","opermode":"wisp","ssid":"Up","wifi_type":"2.4G",")" + member +
           R"(":")" + value + R"("})";
  };
  for (const char* member : {"wlan2ssid", "wlan2psw", "wlan5ssid", "wlan5psw", "key"}) {
    requests.push_back(with(member, std::string(100, 'x')));
    requests.push_back(with(member, R"(a\nb)"));
  }
  for (const char* member : {"bssid", "wanip", "mtu", "pppoename", "dns1", "dns2"}) {
    requests.push_back(with(member, std::string(128, 'x')));
    requests.push_back(with(member, R"(a\rb)"));
  }
  requests.push_back(request("router", R"("wanmode":"dhcp\n")"));
  requests.push_back(request("wisp", R"("wifi_type":"2.4G","ssid":"a\nb")"));
  for (const auto& text : requests) {
    board::clear_journal();
    EXPECT_EQ(ask(text), kFailed) << text;
    // Reading the addresses is all that comes before.
    expect_effects(kReadsAddresses, text);
  }
  EXPECT_EQ(board::log().size(), requests.size());

  board::reset();
  EXPECT_EQ(call(bs_SetEasyInfo, R"({"type":"geteasycfg","opermode":"AP"})").reply, kFailed);
  EXPECT_EQ(call(bs_SetEasyInfo, "{").status, -1);
  EXPECT_EQ(call(bs_SetEasyInfo, "{").reply, "untouched");
  EXPECT_THAT(board::log(), ElementsAre("<3>json is NULL", "<3>json is NULL"));
  EXPECT_THAT(board::journal(), IsEmpty());
}

TEST_F(QuickSetup, TakesValuesOfFullLength) {
  const std::string passphrase(99, 'p');
  const std::string ssid(127, 's');
  EXPECT_EQ(ask(R"({"type":"seteasycfg","opermode":"wisp","wifi_type":"5.8G","ssid":")" + ssid +
                R"(","key":")" + passphrase + R"(","wlan5psw":")" + passphrase + "\"}"),
            kDone);
  EXPECT_EQ(stored("internet", "wisp", "ApCliSsid"), ssid);
  EXPECT_EQ(driver(lib_conf_get_5G, "ApCliWPAPSK"), passphrase);
  EXPECT_EQ(driver(lib_conf_get_5G, "WPAPSK1"), passphrase);
  // No "wlan2psw": the network is open, and keeps its name.
  EXPECT_THAT(driver(lib_conf_get_2G, "AuthMode"), testing::StartsWith("OPEN;"));
  EXPECT_EQ(stored("system", "route", "ssid_2g"), "ZELTO-2.4G");
}

TEST_F(QuickSetup, KeepsWhatItCannotReplace) {
  const struct {
    const char* kept;
    const char* package;
    const char* option;
    std::size_t targets = 1;
  } cases[] = {{"lan_ipaddr", "network", "ipaddr"},
               {"lan_netmask", "network", "netmask", 2},
               {"lan_netmask", "dhcp", "netmask", 2},
               {"dhcp_startip", "dhcp", "start"},
               {"dhcp_endip", "dhcp", "endip"}};
  for (const auto& mode : {request("router", R"("wanmode":"dhcp")"), request("mobilenetwork", ""),
                           request("wisp", network("5.8G", 36))}) {
    for (const auto& c : cases) {
      prepare();
      given("system", "route", c.kept, std::nullopt);
      given(c.package, "lan", c.option, "before");
      EXPECT_EQ(ask(mode), kDone);
      EXPECT_EQ(stored(c.package, "lan", c.option), "before") << c.kept << " " << mode;
      EXPECT_EQ(board::log(),
                Lines(c.targets, "<3>get system.route." + std::string(c.kept) + " failed!"));
    }
  }
}

TEST_F(QuickSetup, FollowsTheUsersSwitches) {
  // Hardware NAT and IPTV; nothing of IPTV when its choice cannot be read.
  const struct {
    std::optional<std::string> nat;
    std::optional<std::string> iptv;
    const char* enabled;
    const char* iptv_enabled;
  } cases[] = {
      {"0", "0", "0", "0"}, {"1", "1", "1", "1"}, {"2", "0", "0", "0"}, {{}, {}, "0", "7"}};
  for (const auto& c : cases) {
    given("system", "route", "mtkhnat", c.nat);
    given("system", "route", "iptv", c.iptv);
    given("iptv", "config", "enable", "7");
    ask(request("router", R"("wanmode":"dhcp")"));
    EXPECT_EQ(stored("mtkhnat", "global", "enable"), c.enabled);
    EXPECT_EQ(stored("iptv", "config", "enable"), c.iptv_enabled);
    EXPECT_THAT(board::journal(), Contains(std::string("run echo ") + c.enabled +
                                           " > /sys/kernel/debug/hnat/hook_toggle"));
  }

  prepare();
  given("system", "route", "advanced_dns_switch", "0");
  ask(request("router", R"("wanmode":"static","dns1":"9.9.9.9")"));
  EXPECT_EQ(stored("network", "wan", "dns"), "9.9.9.9");
  EXPECT_EQ(stored("network", "wan", "peerdns"), "(none)");

  // A radio whose switch cannot be read counts as on.
  prepare();
  for (const char* profile : {"mt7628/mt7628.dat", "mt7663/mt7663.dat"}) {
    board::write_file(std::string("/etc/wireless/") + profile, "Default\nSSID1=old\n");
  }
  ask(request("AP", ""));
  EXPECT_THAT(board::log(), ElementsAre("<3>lib_conf_get_2G WIFIEnable failed!",
                                        "<3>lib_conf_get_5G WIFIEnable failed!"));
  EXPECT_EQ(driver(lib_conf_get_2G, "SSID1"), "Two");
  EXPECT_EQ(driver(lib_conf_get_5G, "SSID1"), "Five");
}

TEST_F(QuickSetup, GoesThroughAllModesAndBack) {
  given("system", "route", "advanced_dns_switch", "0");
  const std::string static_router =
      request("router", R"("wanmode":"static","wanip":"10.9.0.2","wanmsk":"255.255.0.0")");
  const std::string own_lan = "static 192.168.77.1 0 ";
  const struct {
    std::string request;
    const char* mode;
    const char* connection;
    const char* carrier;
    std::string settings;  // of LAN, DHCP server and WAN
    const char* client;    // what is connected in the end
  } cases[] = {
      {static_router, "router", "static", "eth0.2", own_lan + "eth0.1 static eth0.2", ""},
      {request("mobilenetwork", ""), "mobilenetmode", "dhcp", "eth0.2",
       own_lan + "eth0.1 dhcp eth0.2", ""},
      {request("AP", ""), "AP", "dhcp", "br-lan", "dhcp (none) 1 eth0.1 eth0.2 (none) (none)", ""},
      {request("wisp", network("2.4G", 6)), "wisp", "dhcp", "apcli0",
       own_lan + "eth0.1 eth0.2 dhcp apcli0", "wifi_connect.sh apcli0"},
      {request("repeater", network("2.4G", 6)), "repeater", "dhcp", "br-lan",
       "dhcp (none) 1 eth0.1 eth0.2 (none) (none)", "wifi_connect.sh apcli0"},
      {request("wisp", network("5.8G", 36)), "wisp", "dhcp", "apclii0",
       own_lan + "eth0.1 eth0.2 dhcp apclii0", "wifi_connect.sh apclii0"},
      {static_router, "router", "static", "eth0.2", own_lan + "eth0.1 static eth0.2", ""},
  };
  for (const auto& c : cases) {
    board::remove_file("/var/log/firmware.log");
    EXPECT_EQ(ask(c.request), kDone);
    board::settle();
    EXPECT_EQ(stored("network", "lan", "proto") + " " + stored("network", "lan", "ipaddr") + " " +
                  stored("dhcp", "lan", "ignore") + " " + stored("network", "lan", "ifname") + " " +
                  stored("network", "wan", "proto") + " " + stored("network", "wan", "ifname"),
              c.settings)
        << c.mode;
    board::set_address(c.carrier, "10.9.0.2");
    char carrier[ZELTO_INTERFACE_SIZE] = "";
    getWanIfInterface(carrier);
    EXPECT_STREQ(carrier, c.carrier);
    EXPECT_THAT(ask(R"({"type":"getrouterinfo"})"),
                HasSubstr(std::string(R"("operationmode":")") + c.mode + "\""));
    const auto facts = ask(R"({"type":"getwaninfo"})");
    EXPECT_THAT(facts, HasSubstr(std::string(R"("connetype":")") + c.connection + "\""));
    EXPECT_THAT(facts, HasSubstr(R"("ip":"10.9.0.2")")) << c.mode;
    EXPECT_EQ(driver(lib_conf_get_2G, "ApCliEnable") + driver(lib_conf_get_5G, "ApCliEnable"),
              "00");
    const auto work = board::read_file("/var/log/firmware.log");
    EXPECT_EQ(work.find("wifi_connect.sh") != std::string::npos, *c.client != '\0') << work;
    EXPECT_THAT(work, HasSubstr(c.client));
    board::set_address(c.carrier, "");
  }
}

TEST_F(QuickSetup, ShowsTheWizard) {
  const struct {
    std::optional<std::string> mode;
    const char* links;
    const char* online;
    std::optional<std::string> password;
    std::string members;
  } cases[] = {
      {"AP", "20", "online", "admin",
       R"("operationmode":"AP","wanstatus":"link","netstatus":"link","password":"admin",)"
       R"("jumpflag":"0")"},
      {"router",
       "1f",
       "offline",
       {},
       R"("operationmode":"router","wanstatus":"unlink","netstatus":"unlink","password":"",)"
       R"("jumpflag":"1")"},
      {{},
       "20",
       "offline",
       " ",
       R"("operationmode":"router","operationmode":"","wanstatus":"link","netstatus":"unlink",)"
       R"("password":" ","jumpflag":"1")"},
      {"wisp", "0", "online", "  " + std::string(40, 'x'),
       R"("operationmode":"wisp","wanstatus":"unlink","netstatus":"link","password":"  )" +
           std::string(29, 'x') + R"(","jumpflag":"0")"},
  };
  given("system", "route", "webLoginFirst", "1");
  board::write_file("/etc/FW-Version", "ZELTO-R1,1.0.3\r\n");
  for (const auto& c : cases) {
    given("system", "route", "operationmode", c.mode);
    given("system", "route", "routepwd", c.password);
    board::write_file("/var/board/switch-83", c.links);
    board::write_file("/tmp/online_file", c.online);
    board::clear_journal();
    EXPECT_EQ(ask(R"({"type":"geteasycfg"})"),
              R"({"type":"geteasycfg","version":"ZELTO-R1,1.0.3",)" + c.members + "}");
    EXPECT_THAT(board::journal(), ElementsAre("run switch reg r 83"));
  }
}

TEST_F(QuickSetup, GreetsTheFirstVisitorOnce) {
  for (const std::optional<std::string>& visited : {std::optional<std::string>("0"), {}, {"x"}}) {
    board::reset();
    given("system", "route", "webLoginFirst", visited);
    EXPECT_EQ(call(bs_GetEasyInfo, R"({"type":"seteasycfg"})").reply,
              R"({"type":"geteasycfg","result":1})");
    EXPECT_THAT(board::journal(), IsEmpty());
    ask(R"({"type":"geteasycfg"})");
    ask(R"({"type":"geteasycfg"})");
    expect_effects(
        "run switch reg r 83\nuci set system.route.webLoginFirst=1\n"
        "wifi 2.4G set {TxPower=100, PERCENTAGEenable=0}\n"
        "start wifi_setup.sh wifi_master_arguments all &\nrun switch reg r 83\n",
        visited.value_or("(none)"));
  }
  EXPECT_EQ(call(bs_GetEasyInfo, "").status, -1);
  EXPECT_THAT(board::log(), Contains("<3>json data is NULL!"));
}

}  // namespace
