// Why the router is not online: a chain of checks up to the first that fails.

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include <zelto/network.h>
#include <zelto/system.h>
#include <zelto/utilities.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/interface.h"
#include "api/shell.h"
#include "api/text.h"
#include "network/uplink.h"

namespace zelto {
namespace {

constexpr std::size_t kLongestMode = 63;
constexpr std::size_t kLongestProtocol = 15;
constexpr std::size_t kLongestFinding = 255;
constexpr std::size_t kShortestAddress = 7;
constexpr const char* kGood = "1";
constexpr const char* kBad = "0";

// A connection type, and what pages show when the cable offers another one.
struct Type {
  std::string_view name;
  const char* mismatch;
};
constexpr std::array kTypes = {Type{"dhcp", "3"}, Type{"pppoe", "2"}, Type{"static", "4"}};

void add_unreachable(Reply& reply) {
  reply.text("ipstatus", kBad);
  reply.text("dnstatus", kBad);
}

void check_address(Reply& reply) {
  reply.text("wanmodeequal", kGood);
  const auto name = uplink::interface_name();
  const auto address = interface::address(name.c_str()).value_or("");
  if (address.size() < kShortestAddress) return add_unreachable(reply);
  reply.text("ipstatus", kGood);
  reply.text("dnstatus", check_status("dnsmasq") == 0 ? kGood : kBad);
}

void check_type(Reply& reply) {
  const auto protocol = config::read_or_empty({"network", "wan", "proto"}, kLongestProtocol);
  const auto output = shell::capture("wan_check -I eth0.2", kLongestFinding);
  const std::string finding(text::without_last(output ? output->text : ""));
  const char* mismatch = nullptr;
  for (const auto& type : kTypes) {
    if (!protocol.starts_with(type.name)) continue;
    if (text::begins_with_ignoring_case(finding, type.name)) return check_address(reply);
    mismatch = type.mismatch;
  }
  if (mismatch != nullptr) reply.text("wanmodeequal", mismatch);
  add_unreachable(reply);
}

void check_cable(Reply& reply) {
  const bool linked = (GetBasicstatus() & ZELTO_STATUS_WAN) != 0;
  reply.text("wanstatus", linked ? kGood : kBad);
  if (linked) return check_type(reply);
  add_unreachable(reply);
}

void diagnose(const Request& /*request*/, Reply& reply) {
  if ((GetBasicstatus() & ZELTO_STATUS_ONLINE) != 0) {
    for (const char* step : {"wanstatus", "wanmodeequal", "ipstatus", "dnstatus", "netstatus"}) {
      reply.text(step, kGood);
    }
    return;
  }
  reply.text("netstatus", kBad);
  const auto mode = config::read(config::kOperationMode, kLongestMode);
  if (mode == "router") return check_cable(reply);
  if (mode == "mobilenetmode") {
    reply.text("wanstatus", kGood);
    return check_address(reply);
  }
  add_unreachable(reply);
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetNetworkDiagnosisInfo(const char* request, char* out) {
  return answer({.type = "getnetworkdiagnosisinfo"}, request, out, diagnose);
}
