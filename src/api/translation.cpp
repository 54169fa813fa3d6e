// The two spellings of every value that web pages and stores write differently.

#include <cstddef>

#include <zelto/fields.h>

#include "api/text.h"

TranslationRow cmd_str[ZELTO_TRANSLATION_COUNT] = {
    {"wanmode", "dhcp", "DHCP"},
    {"wanmode", "static", "STATIC"},
    {"wanmode", "pppoe", "PPPOE"},
    {"landhcp", "on", "1"},
    {"landhcp", "off", "0"},
    {"wlanpswmode", "wpa", "WPAPSK"},
    {"wlanpswmode", "wpa2", "WPA2PSK"},
    {"wlanpswmode", "wpa3", "WPA3PSK"},
    {"wlanpswmode", "wpawpa2", "WPAPSKWPA2PSK"},
    {"wlanpswmode", "wpa2wpa3", "WPA2PSKWPA3PSK"},
    {"wlanpswmode", "open", "OPEN"},
    {"wlanpswmode", "shared", "SHARED"},
    {"wlanpswencry", "tkip", "TKIP"},
    {"wlanpswencry", "aes", "AES"},
    {"wlanpswencry", "tkipaes", "TKIPAES"},
    {"wlanpswencry", "wep", "WEP"},
    {"wlanpswencry", "none", "NONE"},
    {"wlan5pswmode", "wpa", "WPAPSK"},
    {"wlan5pswmode", "wpa2", "WPA2PSK"},
    {"wlan5pswmode", "wpawpa2", "WPAPSKWPA2PSK"},
    {"wlan5pswmode", "testtesttest", "testtest"},  // keeps the place of a mode 5 GHz does not have
    {"wlan5pswmode", "open", "OPEN"},
    {"wlan5pswmode", "shared", "SHARED"},
    {"wlan5pswencry", "tkip", "TKIP"},
    {"wlan5pswencry", "aes", "AES"},
    {"wlan5pswencry", "tkipaes", "TKIPAES"},
    {"wlan5pswencry", "wep", "WEP"},
    {"wlan5pswencry", "none", "NONE"},
    {"pamode", "0", "10"},
    {"pamode", "1", "60"},
    {"pamode", "2", "100"},
    {"pa5mode", "0", "10"},
    {"pa5mode", "1", "60"},
    {"pa5mode", "2", "100"},
    {"radioon", "1", "0"},  // the store keeps whether the radio is off
    {"radioon", "0", "1"},
};

static_assert(sizeof(TranslationRow) == std::size_t{3} * ZELTO_FIELD_TEXT_SIZE);
static_assert(sizeof cmd_str == ZELTO_TRANSLATION_COUNT * sizeof(TranslationRow));

namespace {

using Spelling = char (TranslationRow::*)[ZELTO_FIELD_TEXT_SIZE];

int translate(const char* field, char* value, Spelling from, Spelling to) {
  if (field == nullptr || value == nullptr) return 0;
  for (const auto& row : cmd_str) {
    if (zelto::text::in_buffer(row.*from) == value && zelto::text::in_buffer(row.field) == field) {
      zelto::text::copy(zelto::text::in_buffer(row.*to), value, ZELTO_FIELD_TEXT_SIZE);
      return 0;
    }
  }
  return 0;
}

}  // namespace

int translate_cmd(const char* field, char* value) {
  return translate(field, value, &TranslationRow::web, &TranslationRow::stored);
}

int translate_lcmd(const char* field, char* value) {
  return translate(field, value, &TranslationRow::stored, &TranslationRow::web);
}
