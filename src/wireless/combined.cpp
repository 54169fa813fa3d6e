// Both radios' main networks in one request.

#include <optional>

#include <zelto/wireless.h>

#include "api/envelope.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"
#include "wireless/power.h"
#include "wireless/security.h"

namespace {

namespace config = zelto::config;
namespace driver = zelto::driver;
namespace shell = zelto::shell;
namespace text = zelto::text;
namespace wireless = zelto::wireless;
using wireless::Radio;
using zelto::answer;
using zelto::Object;
using zelto::Reply;
using zelto::Request;

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
  entry.text("wlanssid", config::read(radio.main.ssid).value_or(""));
  entry.text("wlanpswencry", wireless::web_spelling("wlanpswencry", facts.cipher));
  entry.text("wlanpswmode", wireless::web_mode(facts.authentication, facts.cipher));
  entry.text("wlanpsw", facts.passphrase);
  entry.number("ssidhide", text::to_int(config::read(radio.main.hidden).value_or("")));
  if (const auto level = wireless::power_level(facts.transmit_power)) entry.number("power", *level);
}

void add_configurations(const Request& /*request*/, Reply& reply) {
  const auto dual = config::read(wireless::kDualSwitch).value_or("");
  reply.text("dualSwitch", dual.empty() ? wireless::kOff : dual);

  const auto facts_2g = read_facts(wireless::k2G);
  const auto facts_5g = facts_2g ? read_facts(wireless::k5G) : std::nullopt;
  if (!facts_5g) return reply.result(zelto::kFailed);
  auto configurations = reply.list("configurations");
  add_configuration(wireless::k2G, *facts_2g, configurations.add());
  add_configuration(wireless::k5G, *facts_5g, configurations.add());
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
const Band kBand2G = {wireless::k2G, "wlanssid", "wlanpsw", "power", "wlanpswmode"};
const Band kBand5G = {wireless::k5G, "wlanssid_5", "wlanpsw_5", "power_5", "wlanpswmode_5"};

bool is_acceptable(const Request& request) {
  const auto dual = request.text("dualSwitch");
  if (dual && !text::is_storable(*dual, config::kLongestValue)) return false;
  for (const auto* band : {&kBand2G, &kBand5G}) {
    if (!wireless::is_text_or_missing(request.text(band->ssid)) ||
        !wireless::is_text_or_missing(request.text(band->passphrase))) {
      return false;
    }
  }
  return true;
}

// Returns the radio's switch as the driver has it; empty when no SSID was sent.
std::string store(const Request& request, const Band& band) {
  std::string state;
  if (const auto ssid = request.text(band.ssid)) {
    state = wireless::switch_state(band.radio);
    wireless::store_ssid(band.radio, band.radio.main, *ssid, state == wireless::kOn);
  }
  if (const auto passphrase = request.text(band.passphrase)) {
    driver::write(band.radio.profile, band.radio.main.passphrase_key, driver::kWhole,
                  std::string(*passphrase));
  }
  if (const auto level = request.integer(band.power)) wireless::write_power(band.radio, *level);
  if (const auto mode = request.text(band.mode)) {
    wireless::write_security(band.radio, band.radio.main, *mode, wireless::Tkip::kAccepted);
  }
  return state;
}

// Lets the 5 GHz radio take over the other one's hidden flag. Returns that flag.
std::string follow_hidden(const std::string& state_2g) {
  const auto hidden = wireless::stored_hidden(wireless::k2G);
  if (hidden == wireless::stored_hidden(wireless::k5G)) return hidden;
  config::write(wireless::k5G.main.hidden, hidden);
  if (state_2g == wireless::kOn) wireless::hide_on_air(wireless::k5G, hidden);
  return hidden;
}

// Lets the 5 GHz radio take over the other one's switch. Returns the command that applies it; none
// while the schedule holds the radios off.
const char* follow_switch(const std::string& state_2g, const std::string& hidden) {
  const auto& radio = wireless::k5G;
  const bool leaves_radios_on = wireless::schedule_leaves_radios_on();
  config::write(radio.main.enabled, state_2g);
  if (!leaves_radios_on) return nullptr;

  driver::write(radio.profile, "WIFIEnable", radio.main.index, state_2g);
  if (state_2g == wireless::kOff) {
    wireless::take_name_away(radio);
    return "wifi_setup.sh wifi_master_disable 5.8G &";
  }
  wireless::show_name(radio, hidden);
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
    zelto::log::refused("setwlancfgall");
    return reply.result(zelto::kFailed);
  }
  const std::string dual(request.text("dualSwitch").value_or(""));
  if (request.text("dualSwitch")) config::write(wireless::kDualSwitch, dual);
  const auto state_2g = store(request, kBand2G);
  const auto state_5g = store(request, kBand5G);
  reply.result(zelto::kDone);
  reply.afterwards([=] { apply(dual == wireless::kOn, state_2g, state_5g); });
}

}  // namespace

int bs_GetWifiInfoAll(const char* request, char* out) {
  return answer({.type = "getwlancfgall"}, request, out, add_configurations);
}

int bs_SetWifiAll(const char* request, char* out) {
  return answer({.type = "setwlancfgall"}, request, out, change_both);
}
