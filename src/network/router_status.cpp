// The compact status of the front page.

#include <array>
#include <cstddef>
#include <cstdio>

#include <zelto/network.h>
#include <zelto/system.h>

#include "access/terminal_list.h"
#include "api/boundary.h"
#include "api/config.h"
#include "api/envelope.h"
#include "api/files.h"
#include "api/interface.h"
#include "api/text.h"
#include "network/uplink.h"

namespace zelto {
namespace {

constexpr int kWorkSize = 128;
constexpr std::size_t kVersionLine = 127;

void add_load(Reply& reply) {
  std::array<char, kWorkSize> work{};
  get_sysrun_time(work.data(), kWorkSize);
  reply.text("uptime", work.data());
  work.front() = '\0';
  GetCPUusage(work.data(), kWorkSize);
  reply.text("cpu", text::without_last(work.data()));
  work.front() = '\0';
  get_wan_speed(work.data(), kWorkSize);
  // This page takes the words the other way round than the status page.
  const auto [up, down] = text::two_words(text::without_last(work.data()));
  reply.text("downspeed", down);
  reply.text("upspeed", up);
}

// False when there is no version file.
bool add_version(Reply& reply) {
  const auto file = files::open("/etc/FW-Version");
  if (!file) return false;
  const auto line = files::read_line(file.get(), kVersionLine).value_or("");
  const auto behind_model = text::split_first(line, ',').second;
  reply.text("ver", text::without_line_end(text::split_first(behind_model, ',').first));
  return true;
}

void add_status(const Request& /*request*/, Reply& reply) {
  const auto uplink_name = uplink::interface_name();
  reply.text("wanip", interface::address(uplink_name.c_str()).value_or(""));
  add_load(reply);
  reply.text("operationmode", config::read(config::kOperationMode).value_or("router"));
  reply.number("ternum", terminalnumber());
  if (!add_version(reply)) return reply.result(kFailed);
  const unsigned status = GetBasicstatus();
  const auto link = [&](unsigned bit) { return (status & bit) != 0 ? "link" : "unlink"; };
  reply.text("wanstatus", link(ZELTO_STATUS_WAN));
  reply.text("netstatus", link(ZELTO_STATUS_ONLINE));
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int terminalnumber() {
  return guarded(0, [] {
    const auto devices = terminals::read();
    if (devices.outcome == terminals::Outcome::kNotLocked) {
      std::fprintf(stderr, "flock for terminalnumber failed!\n");
    }
    return static_cast<int>(devices.lines.size());
  });
}

int bs_GetRouteStatus(const char* request, char* out) {
  return answer({.type = "getrouterstatus", .unparsed_status = 0}, request, out, add_status);
}
