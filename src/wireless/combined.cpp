// Both radios' main networks in one request.

#include <optional>
#include <string>

#include <zelto/wireless.h>

#include "api/envelope.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"
#include "wireless/power.h"
#include "wireless/security.h"

namespace zelto::wireless {
namespace {

// ---- getwlancfgall

// What the driver says of a radio's main network.
struct DriverFacts {
  std::string enabled;
  std::string cipher;
  std::string authentication;
  std::string passphrase;
  std::string transmit_power;
};

std::optional<DriverFacts> read_facts(const Radio& radio) {
  DriverFacts facts;
  const bool complete = driver::read_all_or_log(
      radio.profile, {{"WIFIEnable", radio.main.index, facts.enabled},
                      {"EncrypType", radio.main.index, facts.cipher},
                      {"AuthMode", radio.main.index, facts.authentication},
                      {radio.main.passphrase_key, driver::kWhole, facts.passphrase},
                      {"TxPower", driver::kWhole, facts.transmit_power}});
  return complete ? std::optional(facts) : std::nullopt;
}

void add_configuration(const Radio& radio, const DriverFacts& facts, Object entry) {
  entry.text("radio", radio.name);
  entry.number("enable", text::to_int(facts.enabled));
  entry.text("wlanssid", config::read_or_empty(radio.main.ssid));
  entry.text("wlanpswencry", web_spelling("wlanpswencry", facts.cipher));
  entry.text("wlanpswmode", web_mode(facts.authentication, facts.cipher));
  entry.text("wlanpsw", facts.passphrase);
  entry.number("ssidhide", text::to_int(config::read_or_empty(radio.main.hidden)));
  if (const auto level = power_level(facts.transmit_power)) entry.number("power", *level);
}

void add_configurations(const Request& /*request*/, Reply& reply) {
  const auto dual = config::read_or_empty(kDualSwitch);
  reply.text("dualSwitch", dual.empty() ? kOff : dual);

  const auto facts_2g = read_facts(k2G);
  const auto facts_5g = facts_2g ? read_facts(k5G) : std::nullopt;
  if (!facts_5g) return reply.result(kFailed);
  auto configurations = reply.list("configurations");
  add_configuration(k2G, *facts_2g, configurations.add());
  add_configuration(k5G, *facts_5g, configurations.add());
}

// ---- setwlancfgall

// The members of a request that belong to one radio.
struct Band {
  const Radio& radio;
  const char* ssid;
  const char* passphrase;
  const char* power;
  const char* mode;
};
const Band kBand2G = {k2G, "wlanssid", "wlanpsw", "power", "wlanpswmode"};
const Band kBand5G = {k5G, "wlanssid_5", "wlanpsw_5", "power_5", "wlanpswmode_5"};

bool is_acceptable(const Request& request) {
  const auto dual = request.text("dualSwitch");
  if (dual && !text::is_storable(*dual, config::kLongestValue)) return false;
  for (const auto* band : {&kBand2G, &kBand5G}) {
    if (!is_text_or_missing(request.text(band->ssid)) ||
        !is_text_or_missing(request.text(band->passphrase))) {
      return false;
    }
  }
  return true;
}

// Returns the radio's switch as the driver has it; empty when no SSID was sent.
std::string store(const Request& request, const Band& band) {
  std::string state;
  if (const auto ssid = request.text(band.ssid)) {
    state = switch_state(band.radio);
    store_ssid(band.radio, band.radio.main, *ssid, state == kOn);
  }
  if (const auto passphrase = request.text(band.passphrase)) {
    driver::write(band.radio.profile, band.radio.main.passphrase_key, driver::kWhole,
                  std::string(*passphrase));
  }
  if (const auto level = request.integer(band.power)) write_power(band.radio, *level);
  if (const auto mode = request.text(band.mode)) {
    write_security(band.radio, band.radio.main, *mode, Tkip::kAccepted);
  }
  return state;
}

// Lets the 5 GHz radio take over the other one's hidden flag. Returns that flag.
std::string follow_hidden(const std::string& state_2g) {
  auto hidden = stored_hidden(k2G);
  if (hidden == stored_hidden(k5G)) return hidden;
  config::write(k5G.main.hidden, hidden);
  if (state_2g == kOn) hide_on_air(k5G, hidden);
  return hidden;
}

// Lets the 5 GHz radio take over the other one's switch. Returns the command that applies it; none
// while the schedule holds the radios off.
const char* follow_switch(const std::string& state_2g, const std::string& hidden) {
  const auto& radio = k5G;
  const bool leaves_radios_on = schedule_leaves_radios_on();
  config::write(radio.main.enabled, state_2g);
  if (!leaves_radios_on) return nullptr;

  driver::write(radio.profile, "WIFIEnable", radio.main.index, state_2g);
  if (state_2g == kOff) {
    take_name_away(radio);
    return "wifi_setup.sh wifi_master_disable 5.8G &";
  }
  show_name(radio, hidden);
  return "wifi_setup.sh wifi_master_arguments 2.4G;wifi_setup.sh wifi_master_enable 5.8G &";
}

void apply(bool coupled, const std::string& state_2g, const std::string& state_5g) {
  const char* command = "wifi_setup.sh wifi_master_arguments all &";
  if (coupled) {
    const auto hidden = follow_hidden(state_2g);
    if (state_2g != state_5g) command = follow_switch(state_2g, hidden);
  }
  if (command != nullptr) shell::start(command);
}

void change_both(const Request& request, Reply& reply) {
  if (!is_acceptable(request)) {
    log::refused("setwlancfgall");
    return reply.result(kFailed);
  }
  const std::string dual(request.text("dualSwitch").value_or(""));
  if (request.text("dualSwitch")) config::write(kDualSwitch, dual);
  const auto state_2g = store(request, kBand2G);
  const auto state_5g = store(request, kBand5G);
  reply.result(kDone);
  reply.afterwards([=] { apply(dual == kOn, state_2g, state_5g); });
}

}  // namespace
}  // namespace zelto::wireless

using namespace zelto;
using namespace zelto::wireless;

int bs_GetWifiInfoAll(const char* request, char* out) {
  return answer({.type = "getwlancfgall"}, request, out, add_configurations);
}

int bs_SetWifiAll(const char* request, char* out) {
  return answer({.type = "setwlancfgall"}, request, out, change_both);
}
