#include "wireless/wireless_test.h"

#include <regex>
#include <sstream>

#include <platform/wifi_conf.h>

namespace zelto_test {

const Band kBands[2] = {
    {"/etc/wireless/mt7628/mt7628.dat", lib_conf_get_2G, lib_conf_set_2G, false},
    {"/etc/wireless/mt7663/mt7663.dat", lib_conf_get_5G, lib_conf_set_5G, true},
};

namespace {

// What 2.4 GHz has, and 5 GHz in its place.
constexpr const char* kTwins =
    "wifi 2.4G >wifi 5G |ZELTO-2.4G>ZELTO-5G|ZELTO-Guest>ZELTO-Guest-5G|2.4G>5.8G|2.4g>5g|_2g>_5g|"
    " ra0> rai0|get_2G>get_5G|wlancfg>5wlancfg|switchwifi>5switchwifi|2gswitch>5gswitch|"
    "hide2>hide5|2channel>5channel|visitorinfo>visitor5info|pamode>pa5mode|wlanssid>wlan5ssid|"
    "wlanpsw>wlan5psw|gssid>g5ssid|gpsw>g5psw|";

void replace_all(std::string& text, const std::string& from, const std::string& to) {
  for (auto at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
    text.replace(at, from.size(), to);
  }
}

}  // namespace

std::string Band::operator()(std::string text) const {
  if (!is_twin) return text;
  std::istringstream twins(kTwins);
  for (std::string word, other;
       std::getline(twins, word, '>') && std::getline(twins, other, '|');) {
    replace_all(text, word, other);
  }
  replace_all(text, kOff2G, kOff5G);
  return text;
}

const std::vector<std::pair<std::string, std::string>> kSecurity = {
    {"open", "AuthMode#=OPEN, EncrypType#=NONE, RekeyMethod#=DISABLE, PMFMFPC#=0, PMFMFPR#=0"},
    {"wpa2", "AuthMode#=WPA2PSK, EncrypType#=AES, RekeyMethod#=TIME, PMFMFPC#=0, PMFMFPR#=0"},
    {"wpa3", "AuthMode#=WPA3PSK, EncrypType#=AES, RekeyMethod#=TIME, PMFMFPC#=1, PMFMFPR#=1"},
    {"wpawpa2-tkipaes",
     "AuthMode#=WPAPSKWPA2PSK, EncrypType#=TKIPAES, RekeyMethod#=TIME, PMFMFPR#=0, PMFMFPC#=0"},
    {"wpawpa2",
     "AuthMode#=WPAPSKWPA2PSK, EncrypType#=AES, RekeyMethod#=TIME, PMFMFPC#=0, PMFMFPR#=0"},
    {"wpa2wpa3",
     "AuthMode#=WPA2PSKWPA3PSK, EncrypType#=AES, RekeyMethod#=TIME, PMFMFPC#=1, PMFMFPR#=0"},
};

std::string security(const std::string& mode, int index) {
  for (auto [name, keys] : kSecurity) {
    if (name != mode) continue;
    replace_all(keys, "#", "[" + std::to_string(index) + "]");
    return keys;
  }
  return "no such mode";
}

void WirelessTest::given_driver(const Band& band, const std::string& key, int index,
                                const std::optional<std::string>& value) {
  if (value) {
    ASSERT_EQ(band.set(key.c_str(), index, value->c_str()), 0);
  } else {
    const std::regex line("\n" + key + "=[^\n]*");
    board::write_file(band.profile, std::regex_replace(board::read_file(band.profile), line, ""));
  }
  board::clear_journal();
}

std::string WirelessTest::driver(const Band& band, const char* key, int index) {
  std::string buffer(WIFI_CONF_VALUE_SIZE, '\0');
  return band.get(key, index, buffer.data()) == 0 ? buffer.c_str() : "(none)";
}

std::string WirelessTest::effects() {
  static const std::regex kStore(R"((uci|wifi \S+) set (?:system\.route\.)?([^]*))");
  std::string all;
  std::string started;
  std::string place;  // of the store before
  for (const auto& line : board::journal()) {
    std::smatch store;
    if (line.starts_with("start ")) {
      started += " | " + line;
    } else if (!std::regex_match(line, store, kStore)) {
      all += " | " + line;
      place.clear();
    } else {
      all += (store[1] == place ? "," : " | " + store.str(1)) + " " + store.str(2);
      place = store[1];
    }
  }
  board::clear_journal();
  all += started;
  return all.empty() ? all : all.substr(3);
}

std::string WirelessTest::effects(const std::string& request, const std::string& reply) {
  board::clear_journal();
  EXPECT_EQ(ask(request), reply) << request;
  return effects();
}

}  // namespace zelto_test
