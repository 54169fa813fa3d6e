// The MAC address that the WAN shows: its own, or that of a device in the LAN.

#include <cstddef>
#include <string>

#include <zelto/network.h>

#include "access/terminal_list.h"
#include "api/config.h"
#include "api/envelope.h"
#include "api/interface.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"
#include "network/wan_settings.h"

namespace zelto {
namespace {

constexpr config::Option kOwnAddress = {"network", "wan", "defmacaddr"};
constexpr std::size_t kLongestAddress = 31;

std::string current_address() {
  return interface::hardware_address("eth0.2").value_or("");
}

std::string own_address() {
  return config::read_or_empty(kOwnAddress, kLongestAddress);
}

void add_sources(const Request& /*request*/, Reply& reply) {
  reply.text("self", own_address());
  reply.text("clonemac", current_address());
  const auto devices = terminals::read();
  if (devices.outcome == terminals::Outcome::kNoList) {
    log::error("open file terminal_list failed!\n");
  }
  if (devices.outcome != terminals::Outcome::kRead) return;
  auto list = reply.list("list");
  for (const auto& line : devices.lines) {
    list.add().text("mac", terminals::parse(line).mac);
  }
}

int clone(const Request& request) {
  const auto current = current_address();
  // The WAN's own address is remembered before the first clone hides it.
  if (own_address().empty()) config::write(kOwnAddress, current);
  const auto mac = request.text("mac");
  if (request.type() != "setclonemac" || !mac) return kFailed;
  if (!text::is_storable(*mac, kLongestAddress)) {
    log::refused("setclonemac");
    return kFailed;
  }
  if (*mac != current) config::write({"network", "wan", "macaddr"}, *mac);
  return kDone;
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetCloneList(const char* request, char* out) {
  return answer({.type = "getsubmaclist"}, request, out, add_sources);
}

// The WAN restarts after every answer.
int bs_SetCloneMAC(const char* request, char* out) {
  return answer({.type = "setclonemac", .accepts_any_type = true}, request, out,
                [](const Request& parsed, Reply& reply) {
                  reply.result(clone(parsed));
                  reply.afterwards([] { shell::start(wan::kQuickRestart); });
                });
}
