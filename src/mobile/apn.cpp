// How the modem dials.

#include <algorithm>
#include <array>
#include <cstddef>

#include <zelto/mobile.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/log.h"
#include "api/modem.h"
#include "api/shell.h"
#include "api/text.h"
#include "mobile/answers.h"
#include "mobile/basic_info.h"

namespace zelto::mobile {
namespace {

struct Setting {
  const char* member;
  const char* option;
  const char* fallback;          // shown when unset
  std::size_t longest_shown;     // characters
  std::size_t longest_accepted;  // likewise
};
constexpr std::array<Setting, 8> kSettings = {{
    {"authtype", "authtype", "0", 31, 31},
    {"apn", "apn", "", 63, 63},
    {"username", "username", "", 63, 63},
    {"passwd", "passwd", "", 63, 63},
    {"iptype", "iptype", "0", 63, 31},
    {"profileName", "apnprofile", "", 127, 63},
    {"nettype", "nettype", "0", 255, 31},
    {"enable", "enable", "0", 255, 11},
}};

config::Option stored(const Setting& setting) {
  return {"mobile", "global", setting.option};
}

void add_settings(const Request& /*request*/, Reply& reply) {
  for (const auto& setting : kSettings) {
    const auto value = config::read_or_empty(stored(setting), setting.longest_shown);
    reply.text(setting.member, value.empty() ? setting.fallback : value);
  }
  reply.text("simcardstatus", sim_is_ready() ? "1" : "0");
  reply.text("serviceinfo", service_name(collect().operator_name));
  reply.text("modlever", revision_in(modem::ask("ATI", "Revision:")));
}

void store_settings(const Request& request, Reply& reply) {
  const auto value = [&](const Setting& setting) {
    return request.text(setting.member).value_or("");
  };
  const auto fits = [&](const Setting& setting) {
    return text::is_storable(value(setting), setting.longest_accepted);
  };
  if (!std::all_of(kSettings.begin(), kSettings.end(), fits)) {
    log::refused("setapninfo");
    return reply.result(kFailed);
  }
  for (const auto& setting : kSettings) config::write(stored(setting), value(setting));
  reply.result(kDone);
  reply.afterwards([] { shell::start("/etc/init.d/mob_daemon restart &"); });
}

}  // namespace
}  // namespace zelto::mobile

using namespace zelto;
using namespace zelto::mobile;

int bs_Get_apn_info(const char* request, char* out) {
  return answer({.type = "getapninfo"}, request, out, add_settings);
}

int bs_Set_apn_info(const char* request, char* out) {
  return answer({.type = "setapninfo"}, request, out, store_settings);
}
