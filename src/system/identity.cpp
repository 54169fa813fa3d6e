// Commands that say what the router is, and what a companion app and the pages need before login.

#include "system/identity.h"

#include <array>
#include <cstddef>

#include <zelto/fields.h>
#include <zelto/system.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/interface.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"

namespace zelto::identity {
namespace {

constexpr std::size_t kEntryLength = 127;

}  // namespace

std::string board_entry(const char* name, const char* fallback) {
  const auto entry =
      shell::capture(std::string("nvram get zelto ") + name + R"( | tr -d '\n')", kEntryLength);
  return entry && !entry->text.empty() ? entry->text : fallback;
}

std::string model() {
  return board_entry("Model", "ZELTO");
}

std::string firmware_version() {
  std::array<char, ZELTO_FIELD_VALUE_SIZE> version{};
  GetFWVersion("", version.data());
  return version.data();
}

std::string cloud_key() {
  return config::read_or_empty({"system", "route", "CloudKey"});
}

}  // namespace zelto::identity

namespace zelto {
namespace {

constexpr std::size_t kLongestLanguage = 15;
constexpr std::size_t kClockSize = 32;

void add_language(const Request& /*request*/, Reply& reply) {
  const auto stored = config::read({"luci", "main", "lang"}, kLongestLanguage);
  if (!stored) return reply.result(kFailed);
  log::error("get_info:" + *stored + "\n");
  if (*stored == "auto" || *stored == "en") return reply.text("language", "en");
  reply.text("language", *stored == "zh_cn" ? "zhcn" : "unknown");
}

void add_host(const Request& /*request*/, Reply& reply) {
  reply.text("hostname", identity::model());
  reply.text("hostmac", interface::hardware_address("br-lan").value_or(""));
  reply.text("hostkey", identity::cloud_key());
  reply.text("hostpwd", config::read_or_empty({"system", "route", "routepwd"}));
  reply.text("hostmodel", identity::firmware_version());
  reply.text("wlanssid", config::read_or_empty({"system", "route", "ssid_2g"}));
  reply.text("hosttype", "router");
}

void add_time(const Request& /*request*/, Reply& reply) {
  std::array<char, kClockSize> date{};
  std::array<char, kClockSize> uptime{};
  get_system_current_time(date.data(), uptime.data());
  reply.text("systime", date.data());
  reply.text("uptime", uptime.data());
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_getLanguage_info(const char* request, char* out) {
  return answer({.type = "getlanguage"}, request, out, add_language);
}

int bs_GetHostInfo(const char* request, char* out) {
  return answer({.type = "gethostinfo", .unparsed_traced_as = "bs_GetHostInfo"}, request, out,
                add_host);
}

int bs_GetSysTimeInfo(const char* request, char* out) {
  return answer({.type = "getsystimeinfo", .echoes_type = true}, request, out, add_time);
}
