// The host that receives what the WAN sends unasked.

#include <string_view>

#include <zelto/services.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"

namespace zelto {
namespace {

constexpr config::Option kSwitch = {"system", "route", "dmzenable"};
constexpr config::Option kHost = {"system", "route", "dmzip"};
constexpr const char* kSection = "dmz";

void show(const Request& /*request*/, Reply& reply) {
  const auto state = config::read_or_empty(kSwitch);
  reply.text("enable", state.empty() ? "0" : state);
  reply.text("ip", config::read_or_empty(kHost));
}

void expose(std::string_view host) {
  config::write(kHost, host);
  config::remove_section("firewall", kSection);
  config::add_section("firewall", "redirect", kSection);
  config::write_section("firewall", kSection,
                        {{"src", "wan"}, {"proto", "all"}, {"dest_ip", host}, {"target", "DNAT"}});
}

void change(const Request& request, Reply& reply) {
  const auto state = request.text("enable");
  if (!state) return reply.result(kFailed);
  const bool is_on = text::to_int(*state) != 0;
  const auto host = request.text("ip").value_or("");
  if (!text::is_storable(*state, config::kLongestValue) ||
      (is_on && (host.empty() || !text::is_storable(host, config::kLongestValue)))) {
    log::refused("setdmz");
    return reply.result(kFailed);
  }
  config::write(kSwitch, *state);
  if (is_on) {
    expose(host);
  } else {
    config::remove_section("firewall", kSection);
  }
  reply.result(kDone);
  shell::run("/etc/init.d/firewall restart &");
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetDMZInfo(const char* request, char* out) {
  return answer({.type = "getdmz"}, request, out, show);
}

int bs_SetDMZInfo(const char* request, char* out) {
  return answer({.type = "setdmz"}, request, out, change);
}
