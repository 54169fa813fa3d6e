// PPTP and L2TP: tunnels over the ordinary WAN, at most one at a time.

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include <zelto/network.h>
#include <zelto/system.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"
#include "network/wan_settings.h"

namespace zelto {
namespace {

// One setting of a tunnel under both options' names.
struct Setting {
  const char* member;
  const char* pptp;
  const char* l2tp;
  const char* fallback;
};
constexpr Setting kSwitch = {"Switch", "pp_Switch", "l2_Switch", "off"};
constexpr Setting kDomain = {"domain", "pp_domain", "l2_domain", ""};
constexpr Setting kUser = {"username", "pp_username", "l2_username", ""};
constexpr Setting kPassword = {"password", "pp_password", "l2_password", ""};
constexpr Setting kMtu = {"MTU", "pp_MTU", "l2_MTU", "1440"};
constexpr Setting kNetMode = {"netmode", "pp_netmode", "l2_netmode", "DHCP"};
constexpr std::array kStaticSettings = {
    Setting{"staticip", "pp_staticip", "l2_staticip", ""},
    Setting{"staticmask", "pp_staticmask", "l2_staticmask", ""},
    Setting{"staticgateway", "pp_staticgateway", "l2_staticgateway", ""},
};
constexpr std::array kWanAddressOptions = {"ipaddr", "netmask", "gateway"};  // in that order

struct Tunnel {
  const char* getter;
  const char* setter;
  const char* Setting::*option;
  const char* section;
  const char* protocol;
  const Tunnel* other;
  bool stores_type_first;  // the connection type before the section, not after
};
extern const Tunnel kPptp;
extern const Tunnel kL2tp;
const Tunnel kPptp = {"getpptpinfo", "setpptpinfo", &Setting::pptp, "PPTP", "pptp", &kL2tp, false};
const Tunnel kL2tp = {"getl2tpinfo", "setl2tpinfo", &Setting::l2tp, "L2TP", "l2tp", &kPptp, true};

constexpr std::string_view kOn = "on";
constexpr const char* kOff = "off";
constexpr std::string_view kStatic = "Static";
constexpr std::size_t kLongestSwitch = 63;

config::Option stored(const Tunnel& tunnel, const Setting& setting) {
  return {"internet", "pptp_l2tp", setting.*tunnel.option};
}

config::Option of_interface(const Tunnel& tunnel, const char* option) {
  return {"network", tunnel.section, option};
}

// ---- getters

void add_defaults(Reply& reply) {
  for (const auto& setting : {kSwitch, kDomain, kUser, kPassword, kNetMode, kMtu}) {
    reply.text(setting.member, setting.fallback);
  }
}

void add_tunnel(const Tunnel& tunnel, Reply& reply) {
  const auto state = config::read(stored(tunnel, kSwitch));
  if (!state) return add_defaults(reply);
  const auto add = [&](const Setting& setting) {
    auto value = config::read(stored(tunnel, setting)).value_or(setting.fallback);
    reply.text(setting.member, value);
    return value;
  };
  reply.text(kSwitch.member, *state);
  for (const auto& setting : {kDomain, kUser, kPassword, kMtu}) add(setting);
  if (add(kNetMode) == kStatic) {
    for (const auto& setting : kStaticSettings) add(setting);
  }
}

int get_tunnel(const Tunnel& tunnel, const char* request, char* out) {
  return answer({.type = tunnel.getter, .unparsed_log = "json is NULL\n"}, request, out,
                [&](const Request&, Reply& reply) { add_tunnel(tunnel, reply); });
}

// ---- setters

void switch_off(const Tunnel& tunnel) {
  if (config::read(stored(tunnel, kSwitch), kLongestSwitch) == kOff) return;
  config::write(config::kConnectionType, "dhcp");
  config::write({"network", "wan", "proto"}, "dhcp");
  config::remove({"network", "wan", "dns"});
  config::remove_section("network", tunnel.section);
  config::write(stored(tunnel, kSwitch), kOff);
  init_network_run();
  shell::start(wan::kRestart);
}

std::string sent(const Request& request, const Setting& setting) {
  return std::string(request.text(setting.member).value_or(""));
}

void store_settings(const Tunnel& tunnel, const Request& request, bool is_static) {
  const auto store = [&](const Setting& setting) {
    config::write(stored(tunnel, setting), sent(request, setting));
  };
  if (is_static) std::for_each(kStaticSettings.begin(), kStaticSettings.end(), store);
  for (const auto& setting : {kSwitch, kDomain, kUser, kPassword, kNetMode, kMtu}) store(setting);
}

// A tunnelled packet never matches what the switch has learned of a connection.
void switch_hardware_nat_off() {
  config::write({"mtkhnat", "global", "enable"}, "0");
  shell::run("echo 0 > /sys/kernel/debug/hnat/hook_toggle");
}

void build_interface(const Tunnel& tunnel, const Request& request) {
  const auto store_type = [&] { config::write(config::kConnectionType, tunnel.protocol); };
  if (tunnel.stores_type_first) store_type();
  config::add_section("network", "interface", tunnel.section);
  config::write(of_interface(tunnel, "proto"), tunnel.protocol);
  if (!tunnel.stores_type_first) store_type();
  config::write(of_interface(tunnel, "ipv6"), "auto");
  config::write(of_interface(tunnel, "server"), sent(request, kDomain));
  config::write(of_interface(tunnel, "username"), sent(request, kUser));
  config::write(of_interface(tunnel, "password"), sent(request, kPassword));
  config::write(of_interface(tunnel, "mtu"), sent(request, kMtu));
}

void set_underlying_wan(const Request& request, bool is_static) {
  config::write({"network", "wan", "proto"}, is_static ? "static" : "dhcp");
  if (!is_static) return;
  for (std::size_t i = 0; i < kStaticSettings.size(); ++i) {
    config::write({"network", "wan", kWanAddressOptions[i]}, sent(request, kStaticSettings[i]));
  }
}

void switch_on(const Tunnel& tunnel, const Request& request) {
  const bool is_static = sent(request, kNetMode) == kStatic;
  config::remove({"network", "wan", "dns"});
  store_settings(tunnel, request, is_static);
  config::remove_section("network", tunnel.section);
  switch_hardware_nat_off();
  config::write(stored(*tunnel.other, kSwitch), kOff);
  build_interface(tunnel, request);
  set_underlying_wan(request, is_static);
  if (wan::own_resolvers_are_on()) config::write(of_interface(tunnel, "peerdns"), "0");
  config::remove_section("network", tunnel.other->section);
  config::write(stored(*tunnel.other, kSwitch), kOff);
  shell::start(wan::kRestart);
}

bool is_acceptable(const Request& request) {
  const auto fits = [&](const Setting& setting) {
    return text::is_storable(sent(request, setting), config::kLongestValue);
  };
  const std::array settings = {kDomain, kUser, kPassword, kMtu, kNetMode};
  return std::all_of(settings.begin(), settings.end(), fits) &&
         std::all_of(kStaticSettings.begin(), kStaticSettings.end(), fits);
}

int set_tunnel(const Tunnel& tunnel, const char* request, char* out) {
  return answer({.type = tunnel.setter, .echoes_type = true}, request, out,
                [&](const Request& parsed, Reply& reply) {
                  if (parsed.text(kSwitch.member) != kOn) {
                    switch_off(tunnel);
                  } else if (is_acceptable(parsed)) {
                    switch_on(tunnel, parsed);
                  } else {
                    log::refused(tunnel.setter);
                    return reply.result(kFailed);
                  }
                  reply.result(kDone);
                });
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetPptpInfo(const char* request, char* out) {
  return get_tunnel(kPptp, request, out);
}

int bs_GetL2tpInfo(const char* request, char* out) {
  return get_tunnel(kL2tp, request, out);
}

int bs_SetPptpInfo(const char* request, char* out) {
  return set_tunnel(kPptp, request, out);
}

int bs_SetL2tpInfo(const char* request, char* out) {
  return set_tunnel(kL2tp, request, out);
}
