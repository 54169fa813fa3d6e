// The guest network of each radio.

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <zelto/wireless.h>

#include "api/envelope.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"
#include "wireless/security.h"

namespace zelto::wireless {
namespace {

void write_element(const Radio& radio, const char* key, std::string_view value) {
  driver::write(radio.profile, key, radio.guest.index, value);
}

void write_ssid(const Radio& radio, std::string_view ssid) {
  driver::write(radio.profile, radio.guest.ssid_key, driver::kWhole, ssid);
}

void write_passphrase(const Radio& radio, std::string_view passphrase) {
  driver::write(radio.profile, radio.guest.passphrase_key, driver::kWhole, passphrase);
}

// ---- getvisitorinfo, setvisitorinfo and their 5 GHz twins

struct Names {
  const Radio& radio;
  const char* enable;
  const char* ssid;
  const char* passphrase;
};
const Names kNames2G = {k2G, "gssidenable", "gssid", "gpsw"};
const Names kNames5G = {k5G, "g5ssidenable", "g5ssid", "g5psw"};

int get_visitor(const char* type, const Names& names, const char* request, char* out) {
  return answer({.type = type}, request, out, [&](const Request&, Reply& reply) {
    const auto& profile = names.radio.profile;
    const auto& guest = names.radio.guest;
    const auto enabled = driver::read_or_empty(profile, "WIFIEnable", guest.index);
    reply.number(names.enable, text::to_int(enabled));
    reply.text(names.ssid, config::read_or_empty(guest.ssid));
    reply.text(names.passphrase,
               driver::read_or_empty(profile, guest.passphrase_key, driver::kWhole));
  });
}

// Always WPA and WPA2 together.
void write_mixed_security(const Radio& radio) {
  write_element(radio, "AuthMode", "WPAPSKWPA2PSK");
  write_element(radio, "PMFMFPR", "0");
  write_element(radio, "PMFMFPC", "0");
  write_element(radio, "EncrypType", "AES");
  write_element(radio, "RekeyMethod", "TIME");
}

int change_visitor(const char* type, const Names& names, const Request& request,
                   bool leaves_radios_on) {
  const auto& radio = names.radio;
  const auto enable = request.integer(names.enable);
  const auto ssid = request.text(names.ssid);
  const auto passphrase = request.text(names.passphrase);
  if (!enable) return kFailed;
  const bool on = *enable == 1;
  if (on && (!ssid || !passphrase)) return kFailed;
  if (!is_text_or_missing(ssid) || !is_text_or_missing(passphrase)) {
    log::refused(type);
    return kFailed;
  }
  const auto state = std::to_string(*enable);
  if (leaves_radios_on) write_element(radio, "WIFIEnable", state);
  config::write(radio.guest.enabled, state);
  if (on) {
    if (leaves_radios_on) write_ssid(radio, *ssid);
    write_passphrase(radio, *passphrase);
    write_mixed_security(radio);
    config::write(radio.guest.ssid, *ssid);
  }
  return kDone;
}

// The command runs after every answer that the schedule does not forbid, refusals included.
int set_visitor(const char* type, const Names& names, const char* request, char* out) {
  return answer({.type = type, .accepts_any_type = true}, request, out,
                [&](const Request& parsed, Reply& reply) {
                  const bool leaves_radios_on = schedule_leaves_radios_on();
                  reply.result(parsed.type() == type
                                   ? change_visitor(type, names, parsed, leaves_radios_on)
                                   : kFailed);
                  if (!leaves_radios_on) return;
                  reply.afterwards([&names] {
                    shell::start(std::string("wifi_setup.sh wifi_guest_arguments ") +
                                 names.radio.band + " &");
                  });
                });
}

// ---- multi_ssid

struct GuestFacts {
  std::string enabled;
  std::string cipher;
  std::string authentication;
  std::string passphrase;
};

std::optional<GuestFacts> read_facts(const Radio& radio) {
  GuestFacts facts;
  const bool complete = driver::read_all_or_log(
      radio.profile, {{"WIFIEnable", radio.guest.index, facts.enabled},
                      {"EncrypType", radio.guest.index, facts.cipher},
                      {"AuthMode", radio.guest.index, facts.authentication},
                      {radio.guest.passphrase_key, driver::kWhole, facts.passphrase}});
  return complete ? std::optional(facts) : std::nullopt;
}

// What the lists of these commands call a radio.
struct Entry {
  const Radio& radio;
  const char* type;
};
const std::array kEntries = {Entry{k2G, "2.4g"}, Entry{k5G, "5g"}};

void add_entry(const Entry& entry, const GuestFacts& facts, Object object) {
  object.text("type", entry.type);
  object.number("Switch", text::to_int(facts.enabled));
  object.text("ssid", config::read_or_empty(entry.radio.guest.ssid));
  object.text("encryption", web_mode(facts.authentication, facts.cipher));
  object.text("pwd", facts.passphrase);
  object.text("encry_alg", "aes");
  object.text("ssid_hide", config::read_or_empty(entry.radio.guest.hidden));
}

void add_guests(const Request& /*request*/, Reply& reply) {
  const auto facts_2g = read_facts(k2G);
  const auto facts_5g = facts_2g ? read_facts(k5G) : std::nullopt;
  if (!facts_5g) return reply.result(kFailed);
  auto list = reply.list("list");
  add_entry(kEntries[0], *facts_2g, list.add());
  add_entry(kEntries[1], *facts_5g, list.add());
}

// ---- multi_ssid_apply

struct Guest {
  std::string state;
  std::string ssid;
  std::string passphrase;
  std::string hidden;
  std::string encryption;
};

// Nothing when a member is missing or cannot be stored.
std::optional<Guest> parse_guest(const Members& entry) {
  const auto state = entry.integer("Switch");
  const auto ssid = entry.text("ssid");
  const auto passphrase = entry.text("pwd");
  const auto hidden = entry.text("ssid_hide");
  const auto encryption = entry.text("encryption");
  if (!state || !ssid || !passphrase || !hidden || !encryption || !is_text_or_missing(ssid) ||
      !is_text_or_missing(passphrase) || !is_flag(std::string(*hidden))) {
    return std::nullopt;
  }
  return Guest{std::to_string(*state), std::string(*ssid), std::string(*passphrase),
               std::string(*hidden), std::string(*encryption)};
}

void store_guest(const Radio& radio, const Guest& guest, bool leaves_radios_on) {
  const bool on = guest.state == kOn;
  if (leaves_radios_on) write_element(radio, "WIFIEnable", guest.state);
  config::write(radio.guest.enabled, guest.state);
  config::write(radio.guest.ssid, guest.ssid);
  if (leaves_radios_on) write_ssid(radio, on ? guest.ssid : radio.guest.placeholder);
  write_passphrase(radio, guest.passphrase);
  config::write(radio.guest.hidden, guest.hidden);
  if (leaves_radios_on) write_element(radio, "HideSSID", on ? guest.hidden : kOn);
  write_security(radio, radio.guest, guest.encryption, Tkip::kAccepted);
}

void change_guests(const Request& request, Reply& reply) {
  const auto list = request.list("list");
  if (!list || list->size() < kEntries.size()) return reply.result(kFailed);
  const bool in_order = (*list)[0].text("type") == kEntries[0].type;
  const auto guest_2g = parse_guest((*list)[in_order ? 0 : 1]);
  const auto guest_5g = parse_guest((*list)[in_order ? 1 : 0]);
  if (!guest_2g || !guest_5g) {
    log::refused("multi_ssid_apply");
    return reply.result(kFailed);
  }

  const bool leaves_radios_on = schedule_leaves_radios_on();
  store_guest(k2G, *guest_2g, leaves_radios_on);
  store_guest(k5G, *guest_5g, leaves_radios_on);
  reply.result(kDone);
  if (!leaves_radios_on) return;
  reply.afterwards([] { shell::start("wifi_setup.sh wifi_guest_arguments all &"); });
}

}  // namespace
}  // namespace zelto::wireless

using namespace zelto;
using namespace zelto::wireless;

int bs_GetVisitorInfo(const char* request, char* out) {
  return get_visitor("getvisitorinfo", kNames2G, request, out);
}

int bs_GetVisitor5Info(const char* request, char* out) {
  return get_visitor("getvisitor5info", kNames5G, request, out);
}

int bs_SetVisitorInfo(const char* request, char* out) {
  return set_visitor("setvisitorinfo", kNames2G, request, out);
}

int bs_SetVisitor5Info(const char* request, char* out) {
  return set_visitor("setvisitor5info", kNames5G, request, out);
}

int bs_GetMultiWifi(const char* request, char* out) {
  return answer({.type = "multi_ssid"}, request, out, add_guests);
}

int bs_SetMultiWifi(const char* request, char* out) {
  return answer({.type = "multi_ssid_apply"}, request, out, change_guests);
}
