// Remote management by the provider (TR-069).

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>

#include <zelto/services.h>

#include "api/config.h"
#include "api/envelope.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"

namespace zelto {
namespace {

constexpr const char* kPackage = "easycwmp";
constexpr std::size_t kLongestValue = 511;
constexpr const char* kEnable = "enable";

// A setting lies in the first section of its type.
struct Setting {
  const char* member;
  const char* section_type;
  const char* option;
};
constexpr std::array<Setting, 7> kSettings = {{
    {kEnable, "local", "enable"},
    {"url", "acs", "url"},
    {"username", "acs", "username"},
    {"password", "acs", "password"},
    {"manufacturer", "device", "manufacturer"},
    {"oui", "device", "oui"},
    {"serial", "device", "serial_number"},
}};

std::string stored(const Setting& setting) {
  const auto section = config::section_of_type(kPackage, setting.section_type, 0);
  if (!section) return {};
  return config::read_or_empty({kPackage, section->c_str(), setting.option}, kLongestValue);
}

void show(const Request& /*request*/, Reply& reply) {
  for (const auto& setting : kSettings) reply.text(setting.member, stored(setting));
}

// A member that is missing leaves its option as it is.
void store(const Request& request, const Setting& setting) {
  const auto value = request.text(setting.member);
  if (!value) return;
  const auto section = config::section_of_type(kPackage, setting.section_type, 0);
  if (section) config::write({kPackage, section->c_str(), setting.option}, *value);
}

bool is_acceptable(const Request& request) {
  const auto fits = [&](const Setting& setting) {
    return text::is_storable(request.text(setting.member).value_or(""), kLongestValue);
  };
  return request.text(kEnable) && std::all_of(kSettings.begin(), kSettings.end(), fits);
}

int store_all(const Request& request) {
  if (request.type() != "setcwmpcfg") return kFailed;
  if (!is_acceptable(request)) {
    log::refused("setcwmpcfg");
    return kFailed;
  }
  for (const auto& setting : kSettings) store(request, setting);
  return kDone;
}

// Whatever the "type" was.
void switch_daemon(std::string_view state) {
  shell::start(state == "1" ? "/etc/init.d/easycwmpd restart &" : "/etc/init.d/easycwmpd stop &");
}

void change(const Request& request, Reply& reply) {
  reply.result(store_all(request));
  if (const auto state = request.text(kEnable)) {
    reply.afterwards([state = std::string(*state)] { switch_daemon(state); });
  }
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetCwmpCfg(const char* request, char* out) {
  return answer({.type = "getcwmpcfg"}, request, out, show);
}

int bs_SetCwmpCfg(const char* request, char* out) {
  return answer({.type = "setcwmpcfg", .accepts_any_type = true}, request, out, change);
}
