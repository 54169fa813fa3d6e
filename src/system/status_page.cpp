// The status page of the web interface.

#include <sys/sysinfo.h>

#include <array>
#include <cstddef>
#include <string>

#include <zelto/fields.h>
#include <zelto/system.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/interface.h"
#include "api/log.h"
#include "api/text.h"
#include "system/identity.h"

namespace zelto {
namespace {

constexpr std::size_t kWorkSize = 128;
constexpr std::size_t kLongestFigure = 31;

void add_load(Reply& reply) {
  std::array<char, kWorkSize> work{};
  const int size = static_cast<int>(work.size());
  get_sysrun_time(work.data(), size);
  reply.text("uptime", work.data());

  work.front() = '\0';
  GetCPUusage(work.data(), size);
  const std::string usage(text::without_last(work.data()));
  reply.text("cpu", usage);

  // Without a speed file the buffer keeps the processor's figure, and pages show that: kept so.
  text::copy(usage, work.data(), work.size());
  get_wan_speed(work.data(), size);
  const auto [down, up] = text::two_words(text::without_last(work.data()));
  reply.text("downspeed", down.substr(0, kLongestFigure));
  reply.text("upspeed", up.substr(0, kLongestFigure));
}

// Returns the status word, for what the page shows of it further down.
unsigned add_links(Reply& reply) {
  struct Port {
    const char* member;
    unsigned bit;
  };
  static constexpr Port kPorts[] = {
      {"lan1", ZELTO_STATUS_LAN1}, {"lan2", ZELTO_STATUS_LAN2}, {"lan3", ZELTO_STATUS_LAN3},
      {"lan4", ZELTO_STATUS_LAN4}, {"wan", ZELTO_STATUS_WAN},
  };
  const unsigned status = GetBasicstatus();
  reply.text("basicstat", text::format("%u", status));
  reply.number("netlink", get_online_status());
  for (const auto& port : kPorts) reply.number(port.member, (status & port.bit) != 0 ? 1 : 0);
  return status;
}

// An option that cannot be read is shown as its fallback and then as the empty text that was read:
// pages take the last member of a name.
std::string add_option(Reply& reply, const char* member, const config::Option& option,
                       const char* fallback, const char* failure) {
  const auto value = config::read(option);
  if (!value) {
    if (failure != nullptr) log::error(failure);
    reply.text(member, fallback);
  }
  reply.text(member, value.value_or(""));
  return value.value_or("");
}

void add_memory(Reply& reply) {
  struct sysinfo memory {};
  sysinfo(&memory);
  const auto kibibytes = [&](unsigned long units) {
    return text::format("%llu", static_cast<unsigned long long>(units) * memory.mem_unit >> 10);
  };
  reply.text("ramtotal", kibibytes(memory.totalram));
  reply.text("ramfree", kibibytes(memory.freeram));
}

void add_identity(Reply& reply) {
  std::array<char, ZELTO_FIELD_VALUE_SIZE> mac{};
  zelto_get_config("lan_mac", mac.data());
  reply.text("producttype", identity::model());
  reply.text("smart", identity::board_entry("smart", "0"));
  reply.text("lanmac", mac.data());
  reply.text("lanip", interface::address("br-lan").value_or(""));
  reply.text("key", identity::cloud_key());
  reply.text("server_type", "1");
  reply.text("ver", identity::firmware_version());
  reply.text("hardwareversion", "1.0");
}

void add_status(const Request& /*request*/, Reply& reply) {
  add_load(reply);
  const unsigned status = add_links(reply);
  const auto mode = add_option(reply, "operationmode", config::kOperationMode, "router", nullptr);
  if (mode == "router") {
    add_option(reply, "connetype", config::kConnectionType, "dhcp",
               "get wanConnectionMode failed!\n");
  }
  reply.number("link", (status & ZELTO_STATUS_ONLINE) != 0 ? 1 : 0);
  add_memory(reply);
  add_identity(reply);
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetRouteInfo(const char* request, char* out) {
  return answer({.type = "getrouterinfo"}, request, out, add_status);
}
