#include "network/quick_setup_modes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <utility>

#include "api/config.h"
#include "api/driver.h"
#include "api/log.h"
#include "api/reply.h"
#include "api/text.h"
#include "network/wan_settings.h"
#include "wireless/radio.h"

namespace zelto::quick_setup {
namespace {

using Values = std::initializer_list<std::pair<const char*, std::string_view>>;

constexpr const char* kWiredPorts = "eth0.1";
constexpr const char* kAllPorts = "eth0.1 eth0.2";
constexpr const char* kWiredUplink = "eth0.2";
constexpr const char* kHostName = "ZELTO";
constexpr std::size_t kLongestKept = 23;

void set(const char* package, const char* section, Values values) {
  for (const auto& [option, value] : values) config::write({package, section, option}, value);
}

void set_route(const char* mode, std::string_view connection_type) {
  config::write(config::kOperationMode, mode);
  config::write(config::kConnectionType, connection_type);
}

// Copies a setting that the user made for the LAN. One that cannot be read leaves what is there:
// an empty address would cut the user off.
void copy_kept(const char* kept, const config::Option& target) {
  if (const auto value = config::read({"system", "route", kept}, kLongestKept)) {
    config::write(target, *value);
  } else {
    log::error(text::format("get system.route.%s failed!\n", kept));
  }
}

void restore_lan_address() {
  copy_kept("lan_ipaddr", {"network", "lan", "ipaddr"});
  copy_kept("lan_netmask", {"network", "lan", "netmask"});
}

void restore_dhcp_pool() {
  config::write({"dhcp", "lan", "ignore"}, "0");
  copy_kept("dhcp_startip", {"dhcp", "lan", "start"});
  copy_kept("dhcp_endip", {"dhcp", "lan", "endip"});
  copy_kept("lan_netmask", {"dhcp", "lan", "netmask"});
}

void remove_wan() {
  config::remove_section("network", "wan");
  config::remove_section("network", "wan6");
}

void renew_wan() {
  remove_wan();
  config::add_section("network", "interface", "wan");
  config::add_section("network", "interface", "wan6");
}

// The LAN takes its address from whatever it is part of.
void let_lan_be_served() {
  config::remove({"network", "lan", "ipaddr"});
  config::remove({"network", "lan", "netmask"});
  config::write({"network", "lan", "proto"}, "dhcp");
}

void enable_client(const wireless::Radio& radio, bool enabled) {
  driver::write(radio.profile, "ApCliEnable", driver::kWhole,
                enabled ? wireless::kOn : wireless::kOff);
}

void disable_clients() {
  enable_client(wireless::k2G, false);
  enable_client(wireless::k5G, false);
}

// ---- router

void store_wan_fields(const Members& request) {
  for (const char* name : wan::kFields) {
    const auto sent = request.text(name);
    if (!sent) continue;
    wan::store_field(name, *sent);
    // Alone, unlike in "setwancfg", which keeps both.
    if (std::string_view(name) == "dns1") {
      config::write({"system", "route", "static_dns"}, *sent);
    }
  }
}

int become_router(const Change& change) {
  const auto type = change.request.text("wanmode");
  if (!type) return kFailed;
  const std::string protocol(*type);
  set_route("router", protocol);
  disable_clients();
  restore_lan_address();
  set("network", "lan",
      {{"type", "bridge"},
       {"ifname", kWiredPorts},
       {"proto", "static"},
       {"ip6assign", "60"},
       {"force_link", "1"},
       {"macaddr", change.lan_mac}});
  renew_wan();
  set("network", "wan",
      {{"ifname", kWiredUplink},
       {"proto", protocol},
       {"force_link", "1"},
       {"hostname", kHostName},
       {"macaddr", change.wan_mac}});
  set("network", "wan6", {{"ifname", kWiredUplink}, {"proto", "dhcpv6"}});
  restore_dhcp_pool();
  store_wan_fields(change.request);
  wan::apply_own_resolvers();
  return kDone;
}

// ---- mobilenetwork

// The modem sits behind the switch's port 5, so the switch is divided otherwise.
void divide_switch() {
  static constexpr const char* kPorts[] = {"1 2 3 4 6", "0 5"};
  while (const auto section = config::section_of_type("network", "switch_vlan", 0)) {
    if (!config::remove_section("network", *section)) break;
  }
  for (int i = 0; i < static_cast<int>(std::size(kPorts)); ++i) {
    config::add_section("network", "switch_vlan", nullptr);
    const auto section = config::section_of_type("network", "switch_vlan", i);
    if (!section) return;
    set("network", section->c_str(),
        {{"device", "switch0"}, {"vlan", std::to_string(i + 1)}, {"ports", kPorts[i]}});
  }
}

int become_mobile(const Change& /*change*/) {
  set_route("mobilenetmode", "dhcp");
  restore_lan_address();
  set("network", "lan",
      {{"type", "bridge"}, {"proto", "static"}, {"ip6assign", "60"}, {"ifname", kWiredPorts}});
  renew_wan();
  set("network", "wan", {{"proto", "dhcp"}, {"ifname", kWiredUplink}});
  set("network", "wan6", {{"proto", "dhcpv6"}, {"ifname", kWiredUplink}});
  restore_dhcp_pool();
  divide_switch();
  disable_clients();
  return kDone;
}

// ---- AP

int become_access_point(const Change& /*change*/) {
  config::write({"dhcp", "lan", "ignore"}, "1");
  let_lan_be_served();
  config::write({"network", "lan", "ifname"}, kAllPorts);
  remove_wan();
  set_route("AP", "dhcp");
  disable_clients();
  set("internet", "ap", {{"config_change", "0"}, {"ap_ready", "0"}});
  return kDone;
}

// ---- wisp and repeater: the uplink is a network that a radio joins

struct Uplink {
  bool on_2g;
  std::string authentication;
  std::string cipher;
  std::string ssid;
  std::string key;
  std::string channel;

  const wireless::Radio& radio() const { return on_2g ? wireless::k2G : wireless::k5G; }
  const wireless::Radio& other_radio() const { return on_2g ? wireless::k5G : wireless::k2G; }
};

// The words of a scan list's security text that settle it, the first that occurs.
using Words = std::initializer_list<std::pair<std::string_view, const char*>>;

std::string first_match(const std::string& security, Words words) {
  for (const auto& [word, meaning] : words) {
    if (security.find(word) != std::string::npos) return meaning;
  }
  return "";
}

std::string authentication_of(const std::string& security, bool joins_wpa3) {
  return first_match(security, {{"OPEN", "OPEN"},
                                {"NONE", "OPEN"},
                                {"WPA3PSK", joins_wpa3 ? "WPA3PSK" : "WPA2PSK"},
                                {"WPA2PSK", "WPA2PSK"},
                                {"WPAPSK", "WPAPSK"}});
}

std::string cipher_of(const std::string& security) {
  return first_match(security,
                     {{"NONE", "NONE"}, {"TKIPAES", "AES"}, {"AES", "AES"}, {"TKIP", "TKIP"}});
}

Uplink describe(const Change& change, bool joins_wpa3_on_5g) {
  const bool on_2g = change.request.text("wifi_type") == wireless::k2G.band;
  const auto security = change.text("security");
  return {
      .on_2g = on_2g,
      .authentication = authentication_of(security, joins_wpa3_on_5g && !on_2g),
      .cipher = cipher_of(security),
      .ssid = change.text("ssid"),
      .key = change.text("key"),
      .channel = std::to_string(change.request.integer("channel").value_or(0)),
  };
}

void store_uplink(const char* section, const Uplink& uplink) {
  set("internet", section,
      {{"ApCliAuthMode", uplink.authentication},
       {"ApCliEncrypType", uplink.cipher},
       {"ApCliSsid", uplink.ssid},
       {"ApCliWPAPSK", uplink.key},
       {"Channel", uplink.channel}});
}

void join(const Uplink& uplink) {
  const auto& radio = uplink.radio();
  if (uplink.on_2g) wireless::settle_channel_14(uplink.channel);
  const std::pair<const char*, const std::string&> keys[] = {
      {"ApCliAuthMode", uplink.authentication},
      {"ApCliEncrypType", uplink.cipher},
      {"ApCliSsid", uplink.ssid},
      {"ApCliWPAPSK", uplink.key},
      {"Channel", uplink.channel},
  };
  for (const auto& [key, value] : keys) {
    driver::write(radio.profile, key, driver::kWhole, value);
  }
  enable_client(radio, true);
  enable_client(uplink.other_radio(), false);
}

int become_wisp(const Change& change) {
  const auto uplink = describe(change, /*joins_wpa3_on_5g=*/true);
  const char* interface = uplink.on_2g ? "apcli0" : "apclii0";
  renew_wan();
  restore_lan_address();
  set("network", "lan",
      {{"proto", "static"},
       {"force_link", "1"},
       {"type", "bridge"},
       {"ip6assign", "60"},
       {"macaddr", change.lan_mac}});
  store_uplink("wisp", uplink);
  restore_dhcp_pool();
  config::write({"internet", "wisp", "wisp_type"}, uplink.radio().band);
  config::write({"network", "lan", "ifname"}, kAllPorts);
  config::write({"network", "wan", "ifname"}, interface);
  config::write({"network", "wan6", "ifname"}, interface);
  join(uplink);
  wan::apply_own_resolvers();
  set_route("wisp", "dhcp");
  config::write({"network", "wan", "proto"}, "dhcp");
  config::write({"network", "wan6", "proto"}, "dhcpv6");
  set("network", "wan", {{"hostname", kHostName}, {"force_link", "1"}});
  return kDone;
}

int become_repeater(const Change& change) {
  const auto uplink = describe(change, /*joins_wpa3_on_5g=*/false);
  store_uplink("repeater", uplink);
  config::write({"network", "lan", "ifname"}, kAllPorts);
  config::write({"internet", "repeater", "repeater_type"}, uplink.radio().band);
  join(uplink);
  set_route("repeater", "dhcp");
  config::write({"dhcp", "lan", "ignore"}, "1");
  let_lan_be_served();
  remove_wan();
  return kDone;
}

constexpr std::array kModes = {
    Mode{"router", false, false, become_router},
    Mode{"mobilenetwork", false, false, become_mobile},
    Mode{"AP", false, true, become_access_point},
    Mode{"wisp", true, false, become_wisp},
    Mode{"repeater", true, true, become_repeater},
};

}  // namespace

std::string Change::text(const char* member) const {
  return std::string(request.text(member).value_or(""));
}

const Mode* find_mode(std::string_view name) {
  const auto* mode = std::find_if(kModes.begin(), kModes.end(),
                                  [&](const Mode& candidate) { return candidate.name == name; });
  return mode == kModes.end() ? nullptr : mode;
}

bool names_a_network(const Members& request) {
  return request.text("ssid") && request.text("wifi_type");
}

}  // namespace zelto::quick_setup
