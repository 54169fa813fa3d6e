// The LAN's address and its DHCP server.

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include <zelto/network.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/interface.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"
#include "network/uplink.h"

namespace zelto {
namespace {

constexpr config::Option kAddress = {"network", "lan", "ipaddr"};
constexpr config::Option kNetmask = {"network", "lan", "netmask"};
constexpr config::Option kDhcpServerOff = {"dhcp", "lan", "ignore"};
constexpr config::Option kRangeBegin = {"dhcp", "lan", "start"};
constexpr config::Option kRangeEnd = {"dhcp", "lan", "endip"};

constexpr std::size_t kLongestValue = 39;
constexpr std::size_t kShortestAddress = 7;
constexpr int kSameSegment = 2;

constexpr const char* kRestart =
    "/etc/init.d/dnsmasq restart;/etc/init.d/network set_lan_quick;"
    "lua /sbin/svctl.lua set_iptv_portmap;/sbin/reset_lan_port.sh;"
    "/sbin/wifi_setup.sh wifi_restart all;/etc/init.d/terminal_list restart &";

void add_settings(const Request& /*request*/, Reply& reply) {
  // False when the option cannot be read, which ends the reply.
  const auto add = [&](const char* member, const config::Option& option) {
    const auto value = config::read(option);
    if (value) reply.text(member, *value);
    return value.has_value();
  };
  const auto add_dhcp_switch = [&] {
    reply.text("landhcp", config::read(kDhcpServerOff) == "1" ? "off" : "on");
    return true;
  };
  const bool complete = add("lanip", kAddress) && add("lanmsk", kNetmask) && add_dhcp_switch() &&
                        add("startip", kRangeBegin) && add("endip", kRangeEnd);
  if (!complete) reply.result(kFailed);
}

std::string_view segment_of(std::string_view address) {
  const auto last_dot = address.rfind('.');
  return last_dot == std::string_view::npos ? std::string_view() : address.substr(0, last_dot);
}

// Whether an address has the first three parts of the uplink's. With the uplink down none has.
bool is_in_uplink_segment(std::string_view lan_address) {
  const auto uplink_address = interface::address(uplink::interface_name().c_str()).value_or("");
  if (uplink_address.size() < kShortestAddress) return false;
  return segment_of(uplink_address) == segment_of(lan_address);
}

bool holds_only_storable_values(const Request& request) {
  static constexpr std::array kMembers = {"lanip", "landhcp", "lanmsk", "startip", "endip"};
  return std::all_of(kMembers.begin(), kMembers.end(), [&](const char* member) {
    const auto value = request.text(member);
    return !value || text::is_storable(*value, kLongestValue);
  });
}

// Stores what was sent, member by member, up to the first required one that is missing. A store
// that fails is logged and changes nothing else.
int store(const Request& request) {
  const auto write = [](std::string_view value, const config::Option& option, const char* what) {
    config::write_or_log(option, std::string(value), what);
  };
  const auto address = request.text("lanip");
  write(*address, kAddress, "lan_ipaddr");
  write(*address, {"system", "route", "lan_ipaddr"}, "system lan_ipaddr");

  const auto dhcp = request.text("landhcp");
  if (!dhcp) return kFailed;
  write(*dhcp == "on" ? "0" : "1", kDhcpServerOff, "dhcpEnabled");

  const auto netmask = request.text("lanmsk");
  if (!netmask) return kFailed;
  write(*netmask, kNetmask, "lan_netmask");
  write(*netmask, {"system", "route", "lan_netmask"}, "system lan_netmask");
  write(*netmask, {"dhcp", "lan", "netmask"}, "dhcp netmask");

  if (const auto begin = request.text("startip")) {
    write(*begin, kRangeBegin, "dhcpStart");
    write(*begin, {"system", "route", "dhcp_startip"}, "dhcp_startip");
  }
  if (const auto end = request.text("endip")) {
    write(*end, kRangeEnd, "dhcp endip");
    write(*end, {"system", "route", "dhcp_endip"}, "dhcp_endip");
  }
  return kDone;
}

int change(const Request& request) {
  const auto address = request.text("lanip");
  if (request.type() != "setlancfg" || !address) return kFailed;
  if (is_in_uplink_segment(*address)) {
    log::error("lan and wan ip at some segment\n");
    return kSameSegment;
  }
  if (!holds_only_storable_values(request)) {
    log::refused("setlancfg");
    return kFailed;
  }
  return store(request);
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetLanCfg(const char* request, char* out) {
  return answer({.type = "getlancfg", .unparsed_status = 0}, request, out, add_settings);
}

int bs_SetLanCfg(const char* request, char* out) {
  static constexpr const char* kFunction = "bs_SetLanCfg";
  console::trace(kFunction, request == nullptr ? "" : request);
  // Whatever was stored before a member turned out to be missing must be applied, so the services
  // restart after every answer but the refusal of the segment.
  return answer({.type = "setlancfg", .unparsed_status = 0, .accepts_any_type = true}, request, out,
                [out](const Request& parsed, Reply& reply) {
                  const int result = change(parsed);
                  reply.result(result);
                  reply.afterwards([out, result] {
                    console::trace(kFunction, out);
                    if (result != kSameSegment) shell::start(kRestart);
                    console::trace(kFunction, "");
                  });
                });
}
