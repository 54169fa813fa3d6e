// The web pages as seen from the WAN: a port there that leads to the router's web server.

#include <cstddef>
#include <string_view>

#include <zelto/system.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"

namespace zelto {
namespace {

constexpr config::Option kSwitch = {"system", "route", "remote_manage_switch"};
constexpr config::Option kPort = {"system", "route", "remote_manage_port"};
constexpr const char* kSection = "remote_web_manage";
constexpr std::size_t kLongestPort = 7;

void close_port() {
  config::remove_section("firewall", kSection);
}

void open_port(std::string_view port) {
  close_port();
  config::add_section("firewall", "redirect", kSection);
  config::write_section("firewall", kSection,
                        {{"target", "DNAT"},
                         {"src", "wan"},
                         {"dest", "lan"},
                         {"src_dport", port},
                         {"dest_port", "80"},
                         {"proto", "tcp"}});
}

void finish(Reply& reply) {
  reply.result(kDone);
  shell::run("/etc/init.d/firewall restart &");
}

void refuse(const char* command, Reply& reply) {
  log::refused(command);
  reply.result(kFailed);
}

void show(const Request& /*request*/, Reply& reply) {
  reply.text("Switch", config::read(kSwitch).value_or("0"));
  reply.text("remote_manage_port", config::read_or_empty(kPort, kLongestPort));
}

void change_switch(const Request& request, Reply& reply) {
  const auto state = request.text("Switch");
  if (!state) return reply.result(kFailed);
  if (!text::is_storable(*state, config::kLongestValue)) {
    return refuse("remote_manage_switch", reply);
  }
  config::write(kSwitch, *state);
  if (text::to_int(*state) != 1) {
    close_port();
  } else if (const auto port = config::read(kPort, kLongestPort)) {
    open_port(*port);
  }
  finish(reply);
}

// Opens the port as well, whatever the switch says.
void change_port(const Request& request, Reply& reply) {
  const auto port = request.text("remote_manage_port");
  if (!port) return reply.result(kFailed);
  // A rule without a port would take all of them.
  if (port->empty() || !text::is_storable(*port, kLongestPort)) {
    return refuse("set_remote_manage", reply);
  }
  config::write(kPort, *port);
  open_port(*port);
  finish(reply);
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_get_remote_manage(const char* request, char* out) {
  return answer({.type = "get_remote_manage", .unparsed_log = "json is NULL\n"}, request, out,
                show);
}

int bs_remote_manage_switch(const char* request, char* out) {
  return answer({.type = "remote_manage_switch"}, request, out, change_switch);
}

int bs_set_remote_manage(const char* request, char* out) {
  return answer({.type = "set_remote_manage"}, request, out, change_port);
}
