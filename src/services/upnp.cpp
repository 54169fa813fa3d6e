// Ports that devices in the LAN have opened for themselves.

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include <zelto/services.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/files.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"

namespace zelto {
namespace {

constexpr config::Option kSwitch = {"upnpd", "config", "enabled"};
constexpr const char* kLeases = "/tmp/upnp.leases";
constexpr std::size_t kLongestLease = 255;

// ---- get_upnp_info

// A lease is a line of protocol, external port, address, internal port and more, with ":" between.
void add_lease(std::string_view lease, List& list) {
  const auto [protocol, behind_protocol] = text::split_first(lease, ':');
  const auto [external_port, behind_external] = text::split_first(behind_protocol, ':');
  const auto [address, behind_address] = text::split_first(behind_external, ':');
  const auto internal_port = text::split_first(behind_address, ':').first;
  auto entry = list.add();
  entry.text("ip", address);
  entry.text("internalPort", internal_port);
  entry.text("externalPort", external_port);
  entry.text("protocol", protocol);
}

void add_leases(Reply& reply) {
  auto list = reply.list("list");
  const auto file = files::open(kLeases);
  if (!file) return log::error("fopen /tmp/upnp.leases failed!\n");
  while (const auto line = files::read_line(file.get(), kLongestLease)) {
    const auto lease = text::without_line_end(*line);
    if (!lease.empty()) add_lease(lease, list);
  }
}

void show(const Request& /*request*/, Reply& reply) {
  if (const auto state = config::read(kSwitch)) {
    reply.number("enable", text::to_int(*state));
  } else {
    log::error("uci get upnpd config enabled failed!\n");
    reply.result(kFailed);
  }
  add_leases(reply);
}

// ---- set_upnp_info

void change(const Request& request, Reply& reply) {
  const auto wanted = request.integer("enable");
  const std::string state = wanted ? std::to_string(*wanted) : "";
  const bool is_known = request.type() == "set_upnp_info" && wanted;
  reply.result(is_known && config::write(kSwitch, state) ? kDone : kFailed);
  reply.afterwards([is_on = state == "1"] {
    shell::run(is_on ? "/etc/init.d/miniupnpd restart &" : "/etc/init.d/miniupnpd stop &");
  });
}

// ---- getupnpport

struct Port {
  const char* ip;
  const char* internal;
  const char* external;
};
constexpr std::array<Port, 2> kPorts = {{
    {"192.168.16.100", "11", "22"},
    {"192.168.16.111", "22", "33"},
}};

void add_ports(const Request& /*request*/, Reply& reply) {
  auto list = reply.list("list");
  for (const auto& port : kPorts) {
    auto entry = list.add();
    entry.text("ip", port.ip);
    entry.text("internal", port.internal);
    entry.text("external", port.external);
    entry.text("protocol", "TCP");
  }
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetUpnpInfo(const char* request, char* out) {
  return answer({.type = "get_upnp_info"}, request, out, show);
}

int bs_SetUpnpInfo(const char* request, char* out) {
  return answer({.type = "set_upnp_info", .accepts_any_type = true}, request, out, change);
}

int bs_GetUpnpPort(const char* request, char* out) {
  return answer({.type = "getupnpport", .unparsed_log = "json is NULL\n"}, request, out, add_ports);
}
