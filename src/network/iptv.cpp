// IPTV: which LAN ports carry the provider's VLAN, and its tag.

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <zelto/network.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"

namespace zelto {
namespace {

constexpr config::Option kEnable = {"iptv", "config", "enable"};
constexpr config::Option kPorts = {"iptv", "config", "ports"};
constexpr config::Option kTag = {"iptv", "config", "tag"};
constexpr config::Option kUsersChoice = {"system", "route", "iptv"};  // survives other modes

// In the order of the stored text, the far port first.
constexpr std::array kPortMembers = {"lan4", "lan3", "lan2", "lan1"};

void add_settings(const Request& /*request*/, Reply& reply) {
  const auto number = [](const config::Option& option) {
    return text::to_int(config::read_or_empty(option));
  };
  reply.number("enable", number(kEnable));
  const auto ports = config::read_or_empty(kPorts);
  std::string_view rest = ports;
  for (const char* member : kPortMembers) {
    const auto [role, others] = text::split_first(rest, ',');
    reply.number(member, text::to_int(role));
    rest = others;
  }
  reply.number("tag", number(kTag));
}

// The stored text of the ports' roles; nothing when one is missing.
std::optional<std::string> roles(const Request& request) {
  std::string ports;
  for (const char* member : kPortMembers) {
    const auto role = request.integer(member);
    if (!role) return std::nullopt;
    ports += (ports.empty() ? "" : ",") + std::to_string(*role);
  }
  return ports;
}

int change(const Request& request) {
  const auto enable = request.integer("enable");
  if (request.type() != "setiptvinfo" || !enable) return kFailed;
  const bool on = *enable == 1;
  const auto ports = roles(request);
  const auto tag = request.text("tag");
  if (on && (!ports || !tag || !text::is_storable(*tag, config::kLongestValue))) {
    log::refused("setiptvinfo");
    return kFailed;
  }
  config::write(kEnable, std::to_string(*enable));
  config::write(kUsersChoice, std::to_string(*enable));
  if (on) {
    config::write(kPorts, *ports);
    config::write(kTag, *tag);
  }
  return kDone;
}

// What runs depends on what was asked for, not on whether it was done.
const char* restart_for(const Request& request) {
  return request.integer("enable") == 1
             ? "lua /sbin/svctl.lua set_iptv_portmap;ubus call network.interface.wan down;sleep 3;"
               "ubus call network.interface.wan up &"
             : "/etc/init.d/network restart &";
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetIptvInfo(const char* request, char* out) {
  return answer({.type = "getiptvinfo"}, request, out, add_settings);
}

int bs_SetIptvInfo(const char* request, char* out) {
  return answer({.type = "setiptvinfo", .accepts_any_type = true}, request, out,
                [](const Request& parsed, Reply& reply) {
                  reply.result(change(parsed));
                  reply.afterwards([command = restart_for(parsed)] { shell::start(command); });
                });
}
