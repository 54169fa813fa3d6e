// The user's own resolvers in place of the provider's.

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

constexpr config::Option kOwnResolvers = {"system", "route", "advanced_dns"};
constexpr config::Option kOwnSwitch = {"system", "route", "advanced_dns_switch"};
constexpr config::Option kWanPeerResolvers = {"network", "wan", "peerdns"};
constexpr config::Option kWanResolvers = {"network", "wan", "dns"};
constexpr config::Option kPptpPeerResolvers = {"network", "PPTP", "peerdns"};
constexpr config::Option kL2tpPeerResolvers = {"network", "L2TP", "peerdns"};
constexpr std::size_t kLongestWord = 7;
constexpr std::size_t kLongestPair = 63;  // what applies the pair reads no more
constexpr std::size_t kLongestStaticPair = 149;

void add_resolvers(const Request& /*request*/, Reply& reply) {
  const auto pair = config::read_or_empty(kOwnResolvers);
  const auto [first, second] = text::split_first(pair, ' ');
  const auto state = config::read_or_empty(kOwnSwitch, kLongestWord);
  reply.text("dns1", first);
  reply.text("dns2", second);
  reply.text("status", text::to_int(state) != 0 ? "1" : "0");
}

// The option that says whether the tunnel in use takes its provider's resolvers; null without one.
const config::Option* tunnel_in_use() {
  const auto is_on = [](const char* option) {
    return config::read({"internet", "pptp_l2tp", option}, kLongestWord) == "on";
  };
  if (is_on("pp_Switch")) return &kPptpPeerResolvers;
  return is_on("l2_Switch") ? &kL2tpPeerResolvers : nullptr;
}

void switch_on(const std::string& pair) {
  config::write(kOwnResolvers, pair);
  config::write(kOwnSwitch, "1");
  config::write(kWanPeerResolvers, "0");
  config::write(kWanResolvers, pair);
  if (const auto* tunnel = tunnel_in_use()) config::write(*tunnel, "0");
}

// The pair itself is kept for the next time.
void switch_off() {
  config::write(kOwnSwitch, "0");
  config::remove(kWanPeerResolvers);
  config::remove(kWanResolvers);
  if (const auto* tunnel = tunnel_in_use()) {
    config::remove(*tunnel);
  } else if (config::read({"network", "wan", "proto"}, kLongestWord) == "static") {
    const auto pair = config::read({"system", "route", "static_dns"}, kLongestStaticPair);
    config::write(kWanResolvers, pair.value_or(""));
  }
}

int change(const Request& request) {
  if (request.type() != "setdnsinfo") return kFailed;
  if (text::to_int(request.text("status").value_or("")) != 1) {
    switch_off();
    return kDone;
  }
  const auto pair = wan::resolver_pair(request);
  if (!text::is_storable(pair, kLongestPair)) {
    log::refused("setdnsinfo");
    return kFailed;
  }
  switch_on(pair);
  return kDone;
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetDNSInfo(const char* request, char* out) {
  return answer({.type = "getdnsinfo", .unparsed_log = "json is NULL\n"}, request, out,
                add_resolvers);
}

// The WAN restarts after every answer.
int bs_SetDNSInfo(const char* request, char* out) {
  return answer({.type = "setdnsinfo", .accepts_any_type = true}, request, out,
                [](const Request& parsed, Reply& reply) {
                  reply.result(change(parsed));
                  reply.afterwards([] { shell::start(wan::kQuickRestart); });
                });
}
