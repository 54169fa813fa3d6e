// The stored settings of the WAN, and its live facts.

#include <algorithm>
#include <array>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

#include <zelto/fields.h>
#include <zelto/network.h>
#include <zelto/system.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/interface.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"
#include "network/uplink.h"
#include "network/wan_settings.h"

namespace zelto {
namespace {

constexpr config::Option kStaticResolvers = {"system", "route", "static_dns"};
constexpr config::Option kWanProtocol = {"network", "wan", "proto"};

constexpr std::size_t kLongestStaticResolvers = 149;
constexpr std::size_t kLongestConnectionType = 255;
constexpr std::size_t kLongestFinding = 127;

// ---- getwancfg

std::string field(const char* web_field) {
  std::array<char, ZELTO_FIELD_VALUE_SIZE> value{};
  zelto_get_config(web_field, value.data());
  return value.data();
}

void add_fields(Reply& reply, std::initializer_list<const char*> names) {
  for (const char* name : names) reply.text(name, field(name));
}

void add_static(Reply& reply) {
  add_fields(reply, {"wanip", "wanmsk", "wangw"});
  const auto stored = config::read(kStaticResolvers, kLongestStaticResolvers);
  if (stored) {
    const auto [first, second] = text::split_first(*stored, ' ');
    reply.text("dns1", first);
    reply.text("dns2", second);
  } else {
    reply.text("dns1", uplink::resolver(1).value_or(""));
    reply.text("dns2", "");
  }
  add_fields(reply, {"mtu"});
}

void add_pppoe(Reply& reply) {
  add_fields(reply, {"pppoename", "pppoepsw", "server_name"});
  reply.text("mtu", text::format("%d", text::to_int(field("mtu")) - wan::kPppoeOverhead));
}

void add_settings(const Request& /*request*/, Reply& reply) {
  const auto mode = field("wanmode");
  if (mode == "static") {
    reply.text("wanmode", mode);
    add_static(reply);
  } else if (mode == "pppoe") {
    reply.text("wanmode", mode);
    add_pppoe(reply);
  } else {
    reply.text("wanmode", mode == "dhcp" ? mode : "");
    add_fields(reply, {"mtu"});
  }
}

// ---- setwancfg

// Nothing of an earlier connection type may outlive it, tunnels included.
void forget_connection() {
  for (const char* option : {"mtu", "dns", "service", "username", "password", "peerdns"}) {
    config::remove({"network", "wan", option});
  }
  wan::forget_tunnels();
}

void store_fields(const Request& request) {
  for (const char* name : wan::kFields) {
    const auto sent = request.text(name);
    if (!sent) continue;
    wan::store_field(name, *sent);
    if (std::string_view(name) == "dns2") {
      config::write(kStaticResolvers, wan::resolver_pair(request));
    }
  }
}

void change_settings(const Request& request, Reply& reply, const char* out) {
  static constexpr const char* kFunction = "bs_SetWanCfg";
  const auto mode = request.text("wanmode");
  if (!mode) return reply.result(kFailed);
  if (!text::is_storable(*mode, config::kLongestValue) || !wan::fields_are_storable(request)) {
    log::refused("setwancfg");
    return reply.result(kFailed);
  }
  forget_connection();
  config::write(kWanProtocol, *mode);
  config::write(config::kConnectionType, *mode);
  store_fields(request);
  wan::apply_own_resolvers();
  reply.result(kDone);
  reply.afterwards([out] {
    console::trace(kFunction, out);
    init_network_run();
    shell::start(wan::kRestart);
    console::trace(kFunction, out);
  });
}

// ---- getwaninfo

// A PPP link has no hardware address of its own: the wire below it has.
std::string mac_of_uplink(const std::string& uplink_interface) {
  const bool is_ppp_link = uplink_interface == "pppoe-wan" || uplink_interface == "l2tp-L2TP" ||
                           uplink_interface == "pptp-PPTP";
  const auto mac = interface::hardware_address(is_ppp_link ? "eth0.2" : uplink_interface.c_str());
  return mac.value_or("");
}

void add_live_facts(const Request& /*request*/, Reply& reply) {
  const auto type = config::read(config::kConnectionType, kLongestConnectionType);
  if (!type) {
    log::error("get conntype failed!\n");
    return reply.result(kFailed);
  }
  const auto name = uplink::interface_name();
  reply.text("connetype", *type);
  reply.text("wan_mac", mac_of_uplink(name));
  reply.text("wanmsk", interface::netmask(name.c_str()).value_or(""));
  reply.text("ip", interface::address(name.c_str()).value_or(""));
  reply.text("gateway", uplink::gateway(name).value_or(""));
  reply.text("dns1", uplink::resolver(1).value_or(""));
  reply.text("dns2", uplink::resolver(2).value_or(""));
}

// ---- getwanmode

std::string probe_uplink() {
  const auto mode = config::read(config::kOperationMode);
  const bool is_router = !mode || *mode == "router";
  const auto output =
      shell::capture(is_router ? "wan_check -I eth0.2" : "wan_check -I br-lan", kLongestFinding);
  return std::string(text::without_last(output ? output->text : ""));
}

bool is_known_type(std::string_view finding) {
  static constexpr std::array kTypes = {"dhcp", "pppoe", "static"};
  return std::any_of(kTypes.begin(), kTypes.end(), [&](const char* type) {
    return text::begins_with_ignoring_case(finding, type);
  });
}

void add_detected_mode(const Request& /*request*/, Reply& reply) {
  unsigned status = GetBasicstatus();
  std::string mode = "unlink";
  if ((status & ZELTO_STATUS_WAN) != 0) {
    const auto finding = probe_uplink();
    status = GetBasicstatus();  // probing takes long enough for the cable to be pulled
    if ((status & ZELTO_STATUS_WAN) != 0) mode = is_known_type(finding) ? finding : "unknown";
  }
  reply.text("wanmode", mode);
  reply.text("netlink", (status & ZELTO_STATUS_ONLINE) != 0 ? "online" : "offline");
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetWanCfg(const char* request, char* out) {
  return answer({.type = "getwancfg", .unparsed_status = 0}, request, out, add_settings);
}

int bs_SetWanCfg(const char* request, char* out) {
  return answer(
      {.type = "setwancfg", .unparsed_status = 0}, request, out,
      [out](const Request& parsed, Reply& reply) { change_settings(parsed, reply, out); });
}

int bs_GetWanInfo(const char* request, char* out) {
  return answer({.type = "getwaninfo", .unparsed_status = 0}, request, out, add_live_facts);
}

int bs_GetWanMode(const char* request, char* out) {
  return answer({.type = "getwanmode", .unparsed_status = 0}, request, out, add_detected_mode);
}
