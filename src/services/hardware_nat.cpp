// The switch chip's NAT, and the firewall marks that tell it how urgent a packet is.

#include <array>
#include <cstddef>
#include <string>

#include <zelto/services.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"

namespace zelto {
namespace {

constexpr config::Option kSwitch = {"mtkhnat", "global", "enable"};
constexpr config::Option kSwitchCopy = {"system", "route", "mtkhnat"};
constexpr std::size_t kLongestSwitch = 31;

struct Mark {
  const char* dscp_class;
  const char* mark;
};
constexpr std::array<Mark, 4> kMarks = {{{"BE", "0"}, {"CS2", "2"}, {"CS4", "4"}, {"CS6", "6"}}};

void change_rule(const char* action, const Mark& mark, const char* errors) {
  shell::run(std::string("iptables -t mangle ") + action + " FORWARD -m dscp --dscp-class " +
             mark.dscp_class + " -j MARK --set-mark " + mark.mark + errors);
}

// Before rules are added as well: so there is never more than one of each.
void delete_rules() {
  for (const auto& mark : kMarks) change_rule("-D", mark, " 2>/dev/null");
}

void switch_on() {
  shell::run("/etc/init.d/mtkhnat start");
  shell::run("echo 1 > /sys/kernel/debug/hnat/hook_toggle");
  delete_rules();
  for (const auto& mark : kMarks) change_rule("-A", mark, "");
}

void switch_off() {
  shell::run("echo 0 > /sys/kernel/debug/hnat/hook_toggle");
  shell::run("/etc/init.d/mtkhnat stop");
  delete_rules();
  shell::start("/etc/init.d/terminal_list stop;sleep 1;/etc/init.d/terminal_list start &");
}

void change(const Request& request, Reply& reply) {
  const auto state = request.text("status");
  if (!state) return reply.result(kDone);
  if (!text::is_storable(*state, kLongestSwitch)) {
    log::refused("sethwnat");
    return reply.result(kFailed);
  }
  config::write(kSwitch, *state);
  config::write(kSwitchCopy, *state);
  if (text::to_int(*state) != 0) {
    switch_on();
  } else {
    switch_off();
  }
  reply.result(kDone);
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetHwNat(const char* request, char* out) {
  return answer({.type = "gethwnat"}, request, out, [](const Request&, Reply& reply) {
    reply.text("status", config::read_or_empty(kSwitch, kLongestSwitch));
  });
}

int bs_SetHwNat(const char* request, char* out) {
  console::trace("bs_SetHwNat", request == nullptr ? "" : request);
  return answer({.type = "sethwnat"}, request, out, change);
}
