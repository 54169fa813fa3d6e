// Restart and reset, the administrator's account, and commands of the administrator's own.

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include <zelto/system.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"

namespace zelto {
namespace {

constexpr config::Option kUser = {"system", "route", "routeusr"};
constexpr config::Option kPassword = {"system", "route", "routepwd"};
// A longer name could not log in.
constexpr std::size_t kLongestUser = 31;
constexpr std::size_t kLongestPassword = 127;

constexpr std::size_t kLongestCommand = 511;
// A command's output is taken a line or this many bytes at a time, until there is enough.
constexpr std::size_t kOutputPiece = 510;
constexpr std::size_t kEnoughOutput = 6000;
constexpr std::size_t kLongestOutput = 6143;

// The caller has the two seconds to deliver the reply.
void restart(const Request& /*request*/, Reply& reply) {
  reply.result(kDone);
  reply.afterwards(
      [] { shell::start("sleep 2;/etc/init.d/Zelto_Cloud stop;sleep 1;reboot -f &"); });
}

void reset(const Request& /*request*/, Reply& reply) {
  reply.result(kDone);
  reply.afterwards([] {
    shell::start("sleep 2; firstboot -y;/etc/init.d/Zelto_Cloud stop;sleep 1; reboot -f &");
  });
}

// ---- account

void add_account(const Request& /*request*/, Reply& reply) {
  reply.text("routeusr", config::read_or_empty(kUser));
  reply.text("routepwd", config::read_or_empty(kPassword));
}

void change_account(const Request& request, Reply& reply) {
  const auto user = request.text("routeusr");
  const auto password = request.text("routepwd");
  if (!text::is_storable(user.value_or(""), kLongestUser) ||
      !text::is_storable(password.value_or(""), kLongestPassword)) {
    log::refused("setmanpwd");
    return reply.result(kFailed);
  }
  if (password && config::write_or_log(kPassword, *password, "Password")) {
    shell::run("chpasswd.sh root " + shell::word(*password));
  }
  if (user) config::write_or_log(kUser, *user, "Loginusr");
  reply.result(kDone);
}

// ---- commands

// How much of an output is shown: whole pieces until there is enough.
std::size_t shown_length(std::string_view output) {
  std::size_t length = 0;
  while (length < output.size() && length <= kEnoughOutput) {
    const auto rest = output.substr(length);
    length += std::min({rest.find('\n'), rest.size() - 1, kOutputPiece - 1}) + 1;
  }
  return length;
}

void run_command(const Request& request, Reply& reply) {
  const auto command = request.text("cmd");
  if (!command) {
    log::error("json get cmd error!\n");
    return reply.result(kFailed);
  }
  const auto shown = command->substr(0, kLongestCommand);
  auto output = shell::capture(shown, kLongestOutput);
  if (!output) {
    log::error("popen for cmd error!\n");
    return reply.result(kFailed);
  }
  output->text.resize(shown_length(output->text));
  std::erase(output->text, '\0');  // no text of a reply can hold it
  reply.text("cmd", shown);
  reply.text_to_cut("cmdinfo", output->text);
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_do_reboot(const char* request, char* out) {
  return answer({.type = "reboot", .unparsed_status = 0}, request, out, restart);
}

int bs_do_restore(const char* request, char* out) {
  return answer({.type = "restore", .accepts_anything = true}, request, out, reset);
}

int bs_GetManPwd(const char* request, char* out) {
  return answer({.type = "getmanpwd"}, request, out, add_account);
}

int bs_SetManPwd(const char* request, char* out) {
  return answer({.type = "setmanpwd"}, request, out, change_account);
}

int bs_SetCmd(const char* request, char* out) {
  return answer({.type = "setcmd"}, request, out, run_command);
}
