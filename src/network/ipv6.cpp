// IPv6: pass-through, addresses in the LAN, and those of the uplink.

#include <cstddef>
#include <string>

#include <zelto/network.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"
#include "network/wan_settings.h"

namespace zelto {
namespace {

constexpr config::Option kPassThrough = {"network", "lan", "br_traverse_ipv6"};
constexpr config::Option kLanType = {"dhcp", "lan", "ra_management"};
constexpr std::size_t kLongestAddress = 127;

std::string address_of_scope(const char* interface, const char* scope) {
  const auto line =
      shell::capture_line(std::string("ifconfig ") + interface + " |grep Scope:" + scope +
                              " |awk '{print $3}'|cut -d '/' -f 1",
                          kLongestAddress);
  return std::string(text::without_line_end(line ? line->text : ""));
}

void add_settings(const Request& /*request*/, Reply& reply) {
  reply.text("ipv6_passthrough", config::read(kPassThrough).value_or("0"));
  reply.text("lantype", config::read(kLanType).value_or("1"));
  const auto protocol = config::read({"network", "wan", "proto"});
  const char* interface = nullptr;
  if (protocol == "dhcp") interface = "eth0.2";
  if (protocol == "pppoe") interface = "pppoe-wan";
  reply.text("globaladdr", interface == nullptr ? "" : address_of_scope(interface, "Global"));
  reply.text("localaddr", interface == nullptr ? "" : address_of_scope(interface, "Link"));
}

void change_settings(const Request& request, Reply& reply) {
  const auto pass_through = request.text("ipv6_passthrough");
  const auto lan_type = request.text("lantype");
  if (!text::is_storable(pass_through.value_or(""), config::kLongestValue) ||
      !text::is_storable(lan_type.value_or(""), config::kLongestValue)) {
    log::refused("setipv6info");
    return reply.result(kFailed);
  }
  if (pass_through) config::write(kPassThrough, *pass_through);
  if (lan_type) config::write(kLanType, *lan_type);
  reply.result(kDone);
  reply.afterwards([] { shell::start(wan::kQuickRestart); });
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetIPV6Info(const char* request, char* out) {
  return answer({.type = "getipv6info"}, request, out, add_settings);
}

int bs_SetIPV6Info(const char* request, char* out) {
  return answer({.type = "setipv6info"}, request, out, change_settings);
}
