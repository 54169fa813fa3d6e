// One radio's main network: name, security, switch and hidden flag.

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include <zelto/wireless.h>

#include "api/envelope.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"
#include "wireless/security.h"

namespace zelto::wireless {
namespace {

// These commands have always kept silent about a text that is not JSON.
constexpr Command silent(const char* type) {
  return {.type = type, .unparsed_status = 0, .unparsed_log = nullptr};
}

// Names of one radio's members.
struct Names {
  const Radio& radio;
  const char* ssid;
  const char* passphrase;
  const char* cipher;
  const char* mode;
};
const Names kNames2G = {k2G, "wlanssid", "wlanpsw", "wlanpswencry", "wlanpswmode"};
const Names kNames5G = {k5G, "wlan5ssid", "wlan5psw", "wlan5pswencry", "wlan5pswmode"};

// ---- getwlancfg, get5wlancfg

std::string read_or_empty(const Radio& radio, const char* key, driver::Index index) {
  return driver::read_or_empty(radio.profile, key, index);
}

void add_ssid(const Names& names, Reply& reply) {
  reply.text(names.ssid, config::read_or_empty(names.radio.main.ssid, kLongestText));
}

void add_passphrase(const Names& names, Reply& reply) {
  reply.text(names.passphrase,
             read_or_empty(names.radio, names.radio.main.passphrase_key, driver::kWhole));
}

// Both radios by the rows of the 2.4 GHz fields.
void add_security(const Names& names, Reply& reply) {
  const auto spelled = [&](const char* field, const char* key) {
    return web_spelling(field, read_or_empty(names.radio, key, names.radio.main.index));
  };
  reply.text(names.cipher, spelled("wlanpswencry", "EncrypType"));
  reply.text(names.mode, spelled("wlanpswmode", "AuthMode"));
}

// ---- setwlancfg, set5wlancfg

void change_network(const char* type, const Names& names, const Request& request, Reply& reply) {
  const auto& radio = names.radio;
  const auto ssid = request.text(names.ssid);
  const auto passphrase = request.text(names.passphrase);
  if (!is_text_or_missing(ssid) || !is_text_or_missing(passphrase)) {
    log::refused(type);
    return reply.result(kFailed);
  }
  if (ssid) {
    const bool on_air = switch_state(radio) == kOn;
    store_ssid(radio, radio.main, *ssid, on_air);
  }
  if (const auto mode = request.text(names.mode)) {
    write_security(radio, radio.main, *mode, Tkip::kRefused);
  }
  if (passphrase) {
    driver::write(radio.profile, radio.main.passphrase_key, driver::kWhole,
                  std::string(*passphrase));
  }
  reply.result(kDone);
  reply.afterwards([&radio] {
    shell::start(std::string("wifi_setup.sh wifi_master_arguments ") + radio.band + " &");
  });
}

int set_network(const char* type, const Names& names, const char* request, char* out) {
  Command command = silent(type);
  command.is_silent_without_type = true;
  return answer(command, request, out, [&](const Request& parsed, Reply& reply) {
    change_network(type, names, parsed, reply);
  });
}

// ---- switches

int get_switch(const char* type, const Radio& radio, const char* request, char* out) {
  return answer(silent(type), request, out, [&](const Request&, Reply& reply) {
    const auto state = read_or_empty(radio, "WIFIEnable", radio.main.index);
    reply.number("radioon", text::to_int(state) == 1 ? 1 : 0);
  });
}

// What switches a set of radios: one alone, which ends their coupling, or both.
struct Switch {
  std::array<const Radio*, 2> radios;  // the second may be null
  const char* band;
};
const Switch kSwitch2G = {{&k2G, nullptr}, "2.4G"};
const Switch kSwitch5G = {{&k5G, nullptr}, "5.8G"};
const Switch kSwitchBoth = {{&k2G, &k5G}, "all"};

template <typename Work>
void for_each_radio(const Switch& what, const Work& work) {
  for (const Radio* radio : what.radios) {
    if (radio != nullptr) work(*radio);
  }
}

void switch_radios(const Switch& what, const std::string& state) {
  const bool leaves_radios_on = schedule_leaves_radios_on();
  const bool both = &what == &kSwitchBoth;
  if (both) config::write(kDualSwitch, kOn);
  for_each_radio(what, [&](const Radio& radio) { config::write(radio.main.enabled, state); });
  if (!both) config::write(kDualSwitch, kOff);
  if (!leaves_radios_on) return;

  const bool on = state != kOff;
  for_each_radio(what, [&](const Radio& radio) {
    driver::write(radio.profile, "WIFIEnable", radio.main.index, state);
  });
  for_each_radio(what, [&](const Radio& radio) {
    if (on) {
      show_name(radio, stored_hidden(radio));
    } else {
      take_name_away(radio);
    }
  });
  shell::start(std::string("wifi_setup.sh ") +
               (on ? "wifi_master_enable " : "wifi_master_disable ") + what.band + " &");
}

int set_switch(const char* type, const Switch& what, const char* request, char* out) {
  return answer(silent(type), request, out, [&](const Request& parsed, Reply& reply) {
    const auto state = parsed.integer("radioon");
    if (!state) {
      reply.status(-1);
      return reply.result(kFailed);
    }
    switch_radios(what, std::to_string(*state));
    reply.result(kDone);
  });
}

// ---- commands whose "type" says which radio is meant

template <typename What, std::size_t kCount>
const What* find_by_type(const std::array<std::pair<std::string_view, const What*>, kCount>& names,
                         const Request& request) {
  for (const auto& [type, what] : names) {
    if (request.type() == type) return what;
  }
  return nullptr;
}

// A flag that is there and can be stored; one that cannot is logged.
bool is_acceptable_flag(const char* member, const std::optional<std::string>& flag) {
  if (!flag || is_flag(*flag)) return flag.has_value();
  log::refused(member);
  return false;
}

void change_switches(const Request& request, Reply& reply) {
  static const std::array<std::pair<std::string_view, const Switch*>, 3> kTypes = {
      {{"set2gswitch", &kSwitch2G}, {"set5gswitch", &kSwitch5G}, {"setAllswitch", &kSwitchBoth}}};
  const Switch* what = find_by_type(kTypes, request);
  const auto state = request.text_or_integer("radioon");
  if (what == nullptr || !is_acceptable_flag("radioon", state)) {
    return reply.result(kFailed);
  }
  switch_radios(*what, *state);
  reply.result(kDone);
}

void add_hidden(const Request& request, Reply& reply) {
  constexpr std::size_t kLongestShown = 63;
  static const std::array<std::pair<std::string_view, const Radio*>, 2> kTypes = {
      {{"gethide2", &k2G}, {"gethide5", &k5G}}};
  const Radio* radio = find_by_type(kTypes, request);
  if (radio == nullptr) return reply.result(kFailed);
  reply.text("enable", config::read_or_empty(radio->main.hidden, kLongestShown));
}

void hide(const Radio& radio, const std::string& hidden) {
  const bool on_air = switch_state(radio) == kOn;
  config::write(radio.main.hidden, hidden);
  if (!on_air) return;
  hide_on_air(radio, hidden);
  shell::start(std::string("/sbin/wifi_setup.sh wifi_master_arguments ") + radio.band);
}

void change_hidden(const Request& request, Reply& reply) {
  static const std::array<std::pair<std::string_view, const Switch*>, 3> kTypes = {
      {{"sethide2", &kSwitch2G}, {"sethide5", &kSwitch5G}, {"sethideall", &kSwitchBoth}}};
  const Switch* what = find_by_type(kTypes, request);
  const auto hidden = request.text_or_integer("enable");
  if (what == nullptr || !is_acceptable_flag("enable", hidden)) {
    return reply.result(kFailed);
  }
  for_each_radio(*what, [&](const Radio& radio) { hide(radio, *hidden); });
  config::write(kDualSwitch, what == &kSwitchBoth ? kOn : kOff);
  reply.result(kDone);
}

}  // namespace
}  // namespace zelto::wireless

using namespace zelto;
using namespace zelto::wireless;

int bs_GetWlanCfg(const char* request, char* out) {
  return answer(silent("getwlancfg"), request, out, [](const Request&, Reply& reply) {
    add_ssid(kNames2G, reply);
    add_security(kNames2G, reply);
    add_passphrase(kNames2G, reply);
  });
}

int bs_Get5WlanCfg(const char* request, char* out) {
  return answer(silent("get5wlancfg"), request, out, [](const Request&, Reply& reply) {
    add_ssid(kNames5G, reply);
    add_passphrase(kNames5G, reply);
    add_security(kNames5G, reply);
  });
}

int bs_SetWlanCfg(const char* request, char* out) {
  return set_network("setwlancfg", kNames2G, request, out);
}

int bs_Set5WlanCfg(const char* request, char* out) {
  return set_network("set5wlancfg", kNames5G, request, out);
}

int bs_GetWifiStat(const char* request, char* out) {
  return get_switch("getswitchwifi", k2G, request, out);
}

int bs_Get5WifiStat(const char* request, char* out) {
  return get_switch("get5switchwifi", k5G, request, out);
}

int bs_SetWifiStat(const char* request, char* out) {
  return set_switch("setswitchwifi", kSwitch2G, request, out);
}

int bs_Set5WifiStat(const char* request, char* out) {
  return set_switch("set5switchwifi", kSwitch5G, request, out);
}

int bs_SetWifiSwitchAll(const char* request, char* out) {
  return answer({.type = "setAllswitch", .echoes_type = true, .accepts_any_type = true}, request,
                out, change_switches);
}

int bs_GetSSIDHide(const char* request, char* out) {
  return answer({.type = "gethide2", .echoes_type = true, .accepts_any_type = true}, request, out,
                add_hidden);
}

int bs_SetSSIDHide(const char* request, char* out) {
  return answer({.type = "sethide2", .echoes_type = true, .accepts_any_type = true}, request, out,
                change_hidden);
}
