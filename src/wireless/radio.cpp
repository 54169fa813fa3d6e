#include "wireless/radio.h"

#include <array>
#include <cstddef>
#include <string_view>

#include <zelto/fields.h>

#include "api/shell.h"
#include "api/text.h"

namespace zelto::wireless {

const Radio k2G = {
    .profile = driver::k2G,
    .name = "2.4G",
    .band = "2.4G",
    .interface = "ra0",
    .main = {.index = driver::kMain,
             .ssid_key = "SSID1",
             .passphrase_key = "WPAPSK1",
             .placeholder = "095460F1071109BBE3C7E494BBBC8BDE",
             .ssid = {"system", "route", "ssid_2g"},
             .hidden = {"system", "route", "hidden_2g"},
             .enabled = {"system", "route", "switch_2g"}},
    .guest = {.index = driver::kGuest,
              .ssid_key = "SSID2",
              .passphrase_key = "WPAPSK2",
              .placeholder = "E9E476DC869F4311CEBA1FB7F6A291E8",
              .ssid = {"system", "route", "ssid_2g_guest"},
              .hidden = {"system", "route", "hidden_2g_guest"},
              .enabled = {"system", "route", "switch_2g_guest"}},
};

const Radio k5G = {
    .profile = driver::k5G,
    .name = "5G",
    .band = "5.8G",
    .interface = "rai0",
    .main = {.index = driver::kMain,
             .ssid_key = "SSID1",
             .passphrase_key = "WPAPSK1",
             .placeholder = "C7CBAF4186660BA55327A196D352A33D",
             .ssid = {"system", "route", "ssid_5g"},
             .hidden = {"system", "route", "hidden_5g"},
             .enabled = {"system", "route", "switch_5g"}},
    .guest = {.index = driver::kGuest,
              .ssid_key = "SSID2",
              .passphrase_key = "WPAPSK2",
              .placeholder = "85DCF176FACFF0EADFE394597A324ED5",
              .ssid = {"system", "route", "ssid_5g_guest"},
              .hidden = {"system", "route", "hidden_5g_guest"},
              .enabled = {"system", "route", "switch_5g_guest"}},
};

bool is_text_or_missing(const std::optional<std::string_view>& text) {
  return !text || text::is_storable(*text, kLongestText);
}

bool is_flag(const std::string& text) {
  return driver::is_element(text, kLongestFlag);
}

std::string switch_state(const Radio& radio) {
  return driver::read_or_log(radio.profile, "WIFIEnable", radio.main.index).value_or(kOn);
}

bool schedule_leaves_radios_on() {
  return config::read({"system", "route", "wifi_schedule_set_wifi_disable"}, kLongestFlag) == kOff;
}

void store_ssid(const Radio& radio, const Network& network, std::string_view ssid, bool on_air) {
  const std::string name(ssid);
  config::write(network.ssid, name);
  if (on_air) driver::write(radio.profile, network.ssid_key, driver::kWhole, name);
}

namespace {

void set_name(const Radio& radio, const std::string& ssid, const std::string& hidden) {
  driver::write(radio.profile, radio.main.ssid_key, driver::kWhole, ssid);
  driver::write(radio.profile, "HideSSID", radio.main.index, hidden);
}

}  // namespace

void show_name(const Radio& radio, const std::string& hidden) {
  constexpr std::size_t kLongestSsid = 255;
  set_name(radio, config::read_or_empty(radio.main.ssid, kLongestSsid), hidden);
}

void take_name_away(const Radio& radio) {
  set_name(radio, radio.main.placeholder, kOn);
}

std::string stored_hidden(const Radio& radio) {
  return config::read_or_empty(radio.main.hidden, kLongestFlag);
}

void hide_on_air(const Radio& radio, const std::string& hidden) {
  driver::write(radio.profile, "HideSSID", radio.main.index, hidden);
  shell::run(std::string("iwpriv ") + radio.interface + " set HideSSID=\"" +
             shell::inside_double_quotes(hidden) + "\"");
}

void write_mode(const Radio& radio, const char* mode) {
  driver::write(radio.profile, "WirelessMode", driver::kMain, mode);
  driver::write(radio.profile, "WirelessMode", driver::kGuest, mode);
}

void settle_channel_14(const std::string& new_channel) {
  constexpr int kChannel14 = 14;
  constexpr const char* kModeOfChannel14 = "1";  // 802.11b is all that is allowed there
  constexpr const char* kModeOfOthers = "9";
  const auto before = driver::read_or_empty(k2G.profile, "Channel", driver::kWhole);
  if (text::to_int(new_channel) == kChannel14) {
    write_mode(k2G, kModeOfChannel14);
  } else if (text::to_int(before) == kChannel14) {
    write_mode(k2G, kModeOfOthers);
  }
}

std::string web_spelling(const char* field, const std::string& stored) {
  std::array<char, ZELTO_FIELD_VALUE_SIZE> value{};
  text::copy(stored, value.data(), value.size());
  translate_lcmd(field, value.data());
  return value.data();
}

std::string web_mode(const std::string& authentication, const std::string& cipher) {
  const auto mode = web_spelling("wlanpswmode", authentication);
  return mode == "wpawpa2" && cipher == "TKIPAES" ? "wpawpa2-tkipaes" : mode;
}

}  // namespace zelto::wireless
