// The quick-setup wizard: what it is shown, and the change to another operation mode.

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include <zelto/fields.h>
#include <zelto/network.h>
#include <zelto/system.h>
#include <zelto/utilities.h>

#include "api/config.h"
#include "api/driver.h"
#include "api/envelope.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"
#include "network/quick_setup_modes.h"
#include "network/wan_settings.h"
#include "wireless/radio.h"
#include "wireless/security.h"

namespace zelto {
namespace {

using quick_setup::Change;
using quick_setup::Mode;

constexpr config::Option kFirstLogin = {"system", "route", "webLoginFirst"};
constexpr config::Option kHardwareNat = {"mtkhnat", "global", "enable"};
constexpr std::size_t kLongestWord = 7;
constexpr std::size_t kLongestPassword = 31;
constexpr std::size_t kLongestVersion = 79;
constexpr std::size_t kMacSize = 24;

// The name under which the pages are reached while the router has no uplink.
constexpr const char* kPortalHost = "router.zelto";

// ---- geteasycfg

void add_mode(Reply& reply) {
  // An unreadable mode stands in the reply as the default and as the empty text that was read.
  const auto mode = config::read(config::kOperationMode);
  if (!mode) reply.text("operationmode", "router");
  reply.text("operationmode", mode.value_or(""));
}

// The first visit of the pages finds the 2.4 GHz radio at full power.
void greet_first_visitor() {
  const auto visited = config::read_or_empty(kFirstLogin, kLongestWord);
  if (text::to_int(visited) != 0) return;
  config::write(kFirstLogin, "1");
  driver::write(driver::k2G, "TxPower", driver::kWhole, "100");
  driver::write(driver::k2G, "PERCENTAGEenable", driver::kWhole, "0");
  shell::start("wifi_setup.sh wifi_master_arguments all &");
}

void add_wizard(const Request& /*request*/, Reply& reply) {
  std::array<char, ZELTO_FIELD_VALUE_SIZE> version{};
  GetFWVersion("", version.data());
  reply.text("version", std::string_view(version.data()).substr(0, kLongestVersion));
  add_mode(reply);
  const unsigned status = GetBasicstatus();
  const auto link = [&](unsigned bit) { return (status & bit) != 0 ? "link" : "unlink"; };
  reply.text("wanstatus", link(ZELTO_STATUS_WAN));
  reply.text("netstatus", link(ZELTO_STATUS_ONLINE));
  const auto password = config::read_or_empty({"system", "route", "routepwd"}, kLongestPassword);
  reply.text("password", password);
  reply.text("jumpflag", password.empty() || password == " " ? "1" : "0");
  greet_first_visitor();
}

// ---- seteasycfg

std::string factory_mac(char* (*read)(char*)) {
  std::array<char, kMacSize> mac{};
  read(mac.data());
  return mac.data();
}

bool is_storable(const Change& change) {
  const auto fits = [&](const char* member, std::size_t longest) {
    return text::is_storable(change.text(member), longest);
  };
  constexpr std::array kNames = {"wlan2ssid", "wlan2psw", "wlan5ssid", "wlan5psw", "key"};
  constexpr std::array kWords = {"wanmode", "ssid", "bssid"};
  return wan::fields_are_storable(change.request) &&
         std::all_of(kNames.begin(), kNames.end(),
                     [&](const char* name) { return fits(name, wireless::kLongestText); }) &&
         std::all_of(kWords.begin(), kWords.end(),
                     [&](const char* word) { return fits(word, config::kLongestValue); });
}

void store_main_network(const wireless::Radio& radio, const Change& change, const char* ssid) {
  if (const auto name = change.request.text(ssid)) {
    const bool on_air = wireless::switch_state(radio) == wireless::kOn;
    wireless::store_ssid(radio, radio.main, *name, on_air);
  }
}

// Without a passphrase the network is open.
void store_passphrase(const wireless::Radio& radio, const std::string& passphrase) {
  const char* mode = passphrase.empty() ? "open" : "wpawpa2";
  wireless::write_security(radio, radio.main, mode, wireless::Tkip::kRefused);
  if (passphrase.empty()) return;
  driver::write(radio.profile, radio.main.passphrase_key, driver::kWhole, passphrase);
}

// Fields: whether the answer is given, the address, a MAC address, the name.
void switch_portal_off() {
  shell::run(std::string("echo \"0;192.168.16.123;aa:bb:cc:dd:ee:ff;") + kPortalHost +
             "\" > /proc/mt7628/DHCP_Dns");
}

void reset_flags() {
  wan::forget_tunnels();
  config::write({"internet", "ap", "config_change"}, "0");
  config::write({"internet", "ap", "ap_ready"}, "0");
  config::write({"internet", "repeater", "config_change"}, "0");
  config::write({"internet", "repeater", "repeater_ready"}, "0");
  config::write({"system", "route", "dhcp_dns"}, "0");
}

void settle_hardware_nat(const Mode* mode) {
  const auto wanted = config::read_or_empty({"system", "route", "mtkhnat"}, kLongestWord);
  const bool routes = mode == nullptr || !mode->bridges_everything;
  const bool on = routes && text::to_int(wanted) == 1;
  config::write(kHardwareNat, on ? "1" : "0");
  shell::run(on ? "echo 1 > /sys/kernel/debug/hnat/hook_toggle"
                : "echo 0 > /sys/kernel/debug/hnat/hook_toggle");
}

// IPTV belongs to the wired uplink; the user's choice comes back with it.
void settle_iptv(bool is_router) {
  const auto choice = is_router ? config::read({"system", "route", "iptv"}, kLongestWord) : "0";
  if (choice) {
    config::write({"iptv", "config", "enable"}, *choice);
  } else {
    log::error("get system.route.iptv failed!\n");
  }
}

// The connect script switches the client on again once the network is up.
void release_radios() {
  for (const auto* radio : {&wireless::k2G, &wireless::k5G}) {
    driver::write(radio->profile, "ApCliEnable", driver::kWhole, wireless::kOff);
  }
  config::write({"system", "route", "7663_wifi_scan"}, "0");
  config::write({"system", "route", "wifi_do_action"}, "0");
}

void start_client(const Change& change) {
  const auto band = change.request.text("wifi_type");
  if (band == "2.4G") shell::start("sleep 40;/sbin/wifi_connect.sh apcli0 &");
  if (band == "5.8G") shell::start("sleep 50;/sbin/wifi_connect.sh apclii0 &");
}

// What every mode ends with, also one that failed; `mode` is null for an unknown one.
void finish(const Change& change, const Mode* mode) {
  const bool is_router = mode != nullptr && mode->name == "router";
  const bool is_mobile = mode != nullptr && mode->name == "mobilenetwork";
  const bool joins_a_network = mode != nullptr && mode->joins_a_network;
  store_main_network(wireless::k2G, change, "wlan2ssid");
  store_main_network(wireless::k5G, change, "wlan5ssid");
  store_passphrase(wireless::k2G, change.text("wlan2psw"));
  store_passphrase(wireless::k5G, change.text("wlan5psw"));
  reset_flags();
  switch_portal_off();
  shell::start("/sbin/unset_vlan.sh");
  shell::run(is_mobile ? "/etc/init.d/mob_daemon restart &" : "/etc/init.d/mob_daemon stop &");
  settle_hardware_nat(mode);
  settle_iptv(is_router);
  release_radios();
  if (joins_a_network) {
    config::write({"system", "route", "superior_bssid"}, change.text("bssid"));
  }
  shell::start(
      "/etc/init.d/network restart;killall -USR2 udhcpc;killall -USR1 udhcpc;"
      "/sbin/reset_lan_port.sh needsleep;/etc/init.d/terminal_list restart &");
  if (joins_a_network) start_client(change);
  if (is_router) shell::start("lua /sbin/svctl.lua set_iptv_portmap &");
}

void stop_agents() {
  shell::start(
      "mv /usr/bin/sys_daemon /usr/bin/sys_daemon_bak;/etc/init.d/sys_daemon stop;"
      "killall -9 sys_daemon;/etc/init.d/Zelto_Cloud stop;killall -9 Zelto_Cloud");
}

void change_mode(const Request& request, Reply& reply) {
  const Change change = {request, factory_mac(get_7628_lan_mac), factory_mac(get_7628_wan_mac)};
  const Mode* mode = quick_setup::find_mode(change.text("opermode"));
  const bool lacks_network =
      mode != nullptr && mode->joins_a_network && !quick_setup::names_a_network(request);
  if (lacks_network || !is_storable(change)) {
    log::refused("seteasycfg");
    return reply.result(kFailed);
  }
  stop_agents();
  int result = kFailed;
  if (mode != nullptr) {
    result = mode->change(change);
  } else {
    console::trace("bs_SetEasyInfo", "unknown mode!");
  }
  finish(change, mode);
  reply.result(result);
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetEasyInfo(const char* request, char* out) {
  return answer({.type = "geteasycfg"}, request, out, add_wizard);
}

int bs_SetEasyInfo(const char* request, char* out) {
  return answer({.type = "seteasycfg", .unparsed_log = "json is NULL\n"}, request, out,
                change_mode);
}
