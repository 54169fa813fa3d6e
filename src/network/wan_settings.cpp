#include "network/wan_settings.h"

#include <algorithm>
#include <cstddef>

#include <zelto/fields.h>

#include "api/config.h"
#include "api/text.h"

namespace zelto::wan {
namespace {

constexpr std::size_t kLongestSwitch = 7;
constexpr std::size_t kLongestOwnResolvers = 63;

}  // namespace

std::string resolver_pair(const Members& request) {
  return std::string(request.text("dns1").value_or("")) + " " +
         std::string(request.text("dns2").value_or(""));
}

bool fields_are_storable(const Members& request) {
  const auto fits = [](std::string_view value) {
    return text::is_storable(value, config::kLongestValue);
  };
  return fits(resolver_pair(request)) &&
         std::all_of(kFields.begin(), kFields.end(),
                     [&](const char* name) { return fits(request.text(name).value_or("")); });
}

void store_field(const char* name, std::string_view value) {
  const bool is_mtu = std::string_view(name) == "mtu";
  const std::string stored = is_mtu
                                 ? text::format("%lld", text::to_int(value) + kPppoeOverhead * 1LL)
                                 : std::string(value);
  zelto_set_config(name, stored.c_str());
}

bool own_resolvers_are_on() {
  const auto state = config::read({"system", "route", "advanced_dns_switch"}, kLongestSwitch);
  return text::to_int(state.value_or("")) == 1;
}

void apply_own_resolvers() {
  if (!own_resolvers_are_on()) return;
  const auto own = config::read({"system", "route", "advanced_dns"}, kLongestOwnResolvers);
  config::write({"network", "wan", "peerdns"}, "0");
  config::write({"network", "wan", "dns"}, own.value_or(""));
}

void forget_tunnels() {
  config::remove_section("network", "PPTP");
  config::remove_section("network", "L2TP");
  config::write({"internet", "pptp_l2tp", "pp_Switch"}, "off");
  config::write({"internet", "pptp_l2tp", "l2_Switch"}, "off");
}

}  // namespace zelto::wan
