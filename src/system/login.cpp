// Login of the web pages, and the tokens it issues.

#include <cstddef>
#include <string>
#include <string_view>

#include <zelto/system.h>
#include <zelto/zeltoapi.h>

#include "api/boundary.h"
#include "api/config.h"
#include "api/envelope.h"
#include "api/files.h"
#include "api/shell.h"
#include "api/text.h"

namespace zelto {
namespace {

constexpr config::Option kUser = {"system", "route", "routeusr"};
constexpr config::Option kPassword = {"system", "route", "routepwd"};
constexpr config::Option kFirstLogin = {"system", "route", "webLoginFirst"};

constexpr std::size_t kLongestUser = 31;
constexpr std::size_t kLongestPassword = 127;
constexpr std::size_t kLongestWord = 7;
constexpr std::size_t kLongestToken = 64;
constexpr std::size_t kTokenLine = 255;

constexpr const char* kTokenFile = "/tmp/token";

// Neither a member that its field cannot hold nor a stored value is ever cut to match.
bool matches(const Request& request, const char* member, const config::Option& option,
             std::size_t longest) {
  const auto presented = request.text(member).value_or("");
  return presented.size() <= longest && presented == config::read_or_empty(option, longest + 1);
}

std::string mint_token() {
  const auto digest = shell::capture(
      R"(cat /proc/uptime | awk '{print $1}' | md5sum | awk '{print $1}' | tr -d '\n')",
      kLongestToken);
  std::string token = digest ? digest->text : "";
  shell::run("echo " + shell::word(token) + " >> " + kTokenFile);
  return token;
}

// The operation mode, and the band of the uplink where that is a radio.
void add_mode(Reply& reply) {
  const auto mode = config::read(config::kOperationMode);
  reply.text("defmode", mode.value_or("router"));
  const auto add_band = [&](const config::Option& option) {
    reply.text("wifiType", config::read_or_empty(option, kLongestWord));
  };
  if (mode == "repeater") add_band({"internet", "repeater", "repeater_type"});
  if (mode == "wisp") add_band({"internet", "wisp", "wisp_type"});
}

void log_in(const Request& request, Reply& reply) {
  if (!matches(request, "user", kUser, kLongestUser) ||
      !matches(request, "pass", kPassword, kLongestPassword)) {
    return reply.result(kFailed);
  }
  reply.text("token", mint_token());
  reply.number("first_login", text::to_int(config::read_or_empty(kFirstLogin, kLongestWord)));
  add_mode(reply);
  reply.result(kDone);
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_loginauth(const char* request, char* out) {
  return answer({.type = "loginauth", .unparsed_status = 0}, request, out, log_in);
}

int check_auth(const char* token) {
  if (token == nullptr) return 0;
  return guarded(0, [&] {
    const auto file = files::open(kTokenFile);
    if (!file) return 0;
    while (const auto line = files::read_line(file.get(), kTokenLine)) {
      if (line->front() == '\0') continue;
      if (text::without_last(*line).find(token) != std::string_view::npos) return 1;
    }
    return 0;
  });
}
