// The guest network of each radio.

#include "wireless/wireless_test.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using zelto_test::ask;
using zelto_test::command;
using zelto_test::done;
using zelto_test::failed;
using zelto_test::k2G;
using zelto_test::k5G;
using zelto_test::kBands;
using zelto_test::kWhole;
using zelto_test::security;

class Guest : public zelto_test::WirelessTest {};

TEST_F(Guest, ReadsOneRadio) {
  for (const auto* band : kBands) {
    given_driver(*band, "WIFIEnable", kWhole, "0;1");
    EXPECT_EQ(ask((*band)(R"({"type":"getvisitorinfo"})")),
              (*band)(R"({"type":"getvisitorinfo","gssidenable":1,"gssid":"ZELTO-Guest",)"
                      R"("gpsw":"guest12345"})"));
    given_driver(*band, "WIFIEnable", kWhole, "1");  // no element for the guests
    given_driver(*band, "WPAPSK2", kWhole, std::nullopt);
    given_route((*band)("ssid_2g_guest"), std::nullopt);
    EXPECT_EQ(ask((*band)(R"({"type":"getvisitorinfo"})")),
              (*band)(R"({"type":"getvisitorinfo","gssidenable":0,"gssid":"","gpsw":""})"));
  }
  EXPECT_THAT(board::log(), IsEmpty());
}

TEST_F(Guest, ChangesOneRadioInMixedMode) {
  const std::string apply = " | start wifi_setup.sh wifi_guest_arguments 2.4G &";
  const std::string names = R"("gssid":"A","gpsw":"a key")";
  const std::string mixed =
      "WPAPSK2=a key, AuthMode[1]=WPAPSKWPA2PSK, PMFMFPR[1]=0, PMFMFPC[1]=0, EncrypType[1]=AES, "
      "RekeyMethod[1]=TIME | uci ssid_2g_guest=A";
  const struct {
    std::string members;
    std::string free;
    std::string held;  // by the schedule
  } cases[] = {
      {R"("gssidenable":1,)" + names,
       " | wifi 2.4G WIFIEnable[1]=1 | uci switch_2g_guest=1 | wifi 2.4G SSID2=A, " + mixed,
       " | uci switch_2g_guest=1 | wifi 2.4G " + mixed},
      {R"("gssidenable":0,)" + names, " | wifi 2.4G WIFIEnable[1]=0 | uci switch_2g_guest=0",
       " | uci switch_2g_guest=0"},
      {R"("gssidenable":2)", " | wifi 2.4G WIFIEnable[1]=2 | uci switch_2g_guest=2",
       " | uci switch_2g_guest=2"},
      {R"("gssidenable":1,"gssid":"A")", "", ""},
      {R"("gssidenable":1,"gssid":7,"gpsw":"a key")", "", ""},
      {R"("gssidenable":"1",)" + names, "", ""},
      {names, "", ""},
  };
  for (const auto* band : kBands) {
    for (const auto& c : cases) {
      const auto set = [&] {
        const auto* const type = "setvisitorinfo";
        return " | " + effects((*band)(command(type, c.members)),
                               (*band)(c.free.empty() ? failed(type) : done(type)));
      };
      given_schedule("0");
      EXPECT_EQ(set(), (*band)(c.free + apply));
      for (const auto& state : {std::optional<std::string>("1"), {}}) {
        given_schedule(state);
        EXPECT_EQ(set(), c.held.empty() ? " | " : (*band)(c.held));
      }
    }
  }
}

TEST_F(Guest, ReadsBothRadios) {
  given_driver(k2G, "WIFIEnable", 1, "1");
  given_driver(k2G, "AuthMode", 1, "WPAPSKWPA2PSK");
  given_driver(k2G, "EncrypType", 1, "TKIPAES");
  given_driver(k5G, "AuthMode", 1, "WPAPSKWPA2PSK");
  given_driver(k5G, "WPAPSK2", kWhole, "");
  given_route("hidden_2g_guest", "1");
  given_route("hidden_5g_guest", std::nullopt);
  EXPECT_EQ(ask(R"({"type":"multi_ssid"})"),
            R"({"type":"multi_ssid","list":[{"type":"2.4g","Switch":1,"ssid":"ZELTO-Guest",)"
            R"("encryption":"wpawpa2-tkipaes","pwd":"guest12345","encry_alg":"aes",)"
            R"("ssid_hide":"1"},{"type":"5g","Switch":0,"ssid":"ZELTO-Guest-5G",)"
            R"("encryption":"wpawpa2","pwd":"","encry_alg":"aes","ssid_hide":""}]})");
  for (const auto* band : kBands) {
    for (const std::string key : {"WIFIEnable", "EncrypType", "AuthMode", "WPAPSK2"}) {
      board::reset();
      const bool is_list = key != "WPAPSK2";  // one that ends before the guests' element
      given_driver(*band, key, kWhole, is_list ? std::optional<std::string>("1") : std::nullopt);
      EXPECT_EQ(ask(R"({"type":"multi_ssid"})"), failed("multi_ssid"));
      EXPECT_THAT(board::log(), ElementsAre((*band)("<3>lib_conf_get_2G ") + key + " failed!"));
    }
  }
}

// An entry of "multi_ssid_apply".
std::string entry(const std::string& type, int on, const std::string& hidden,
                  const std::string& mode) {
  return R"({"type":")" + type + R"(","Switch":)" + std::to_string(on) + R"(,"ssid":"Name )" +
         type + R"(","pwd":"Key )" + type + R"(","ssid_hide":")" + hidden + R"(","encryption":")" +
         mode + "\"}";
}

std::string apply(const std::string& entries) {
  return command("multi_ssid_apply", R"("list":[)" + entries + "]");
}

TEST_F(Guest, ChangesBothRadiosInEitherOrder) {
  const auto off_2g = entry("2.4g", 0, "0", "wpawpa2-tkipaes");
  const auto on_5g = entry("5g", 1, "0", "wpa3");
  const auto security_2g = security("wpawpa2-tkipaes", 1);
  const auto security_5g = security("wpa3", 1);
  for (const auto& entries : {off_2g + "," + on_5g, on_5g + "," + off_2g}) {
    given_schedule("0");
    EXPECT_EQ(effects(apply(entries), done("multi_ssid_apply")),
              "wifi 2.4G WIFIEnable[1]=0 | uci switch_2g_guest=0, ssid_2g_guest=Name 2.4g | "
              "wifi 2.4G SSID2=E9E476DC869F4311CEBA1FB7F6A291E8, WPAPSK2=Key 2.4g | "
              "uci hidden_2g_guest=0 | wifi 2.4G HideSSID[1]=1, " +
                  security_2g +
                  " | wifi 5G WIFIEnable[1]=1 | uci switch_5g_guest=1, ssid_5g_guest=Name 5g | "
                  "wifi 5G SSID2=Name 5g, WPAPSK2=Key 5g | "
                  "uci hidden_5g_guest=0 | wifi 5G HideSSID[1]=0, " +
                  security_5g + " | start wifi_setup.sh wifi_guest_arguments all &");
    given_schedule("1");
    EXPECT_EQ(effects(apply(entries), done("multi_ssid_apply")),
              "uci switch_2g_guest=0, ssid_2g_guest=Name 2.4g | wifi 2.4G WPAPSK2=Key 2.4g | "
              "uci hidden_2g_guest=0 | wifi 2.4G " +
                  security_2g +
                  " | uci switch_5g_guest=1, ssid_5g_guest=Name 5g | wifi 5G WPAPSK2=Key 5g | "
                  "uci hidden_5g_guest=0 | wifi 5G " +
                  security_5g);
  }
  given_schedule("0");
  for (const auto& [mode, keys] : zelto_test::kSecurity) {
    EXPECT_EQ(effects(apply(entry("2.4g", 1, "1", mode) + "," + entry("5g", 2, "0", "wpa")),
                      done("multi_ssid_apply")),
              "wifi 2.4G WIFIEnable[1]=1 | uci switch_2g_guest=1, ssid_2g_guest=Name 2.4g | "
              "wifi 2.4G SSID2=Name 2.4g, WPAPSK2=Key 2.4g | "
              "uci hidden_2g_guest=1 | wifi 2.4G HideSSID[1]=1, " +
                  security(mode, 1) +
                  " | wifi 5G WIFIEnable[1]=2 | uci switch_5g_guest=2, ssid_5g_guest=Name 5g | "
                  "wifi 5G SSID2=85DCF176FACFF0EADFE394597A324ED5, WPAPSK2=Key 5g | "
                  "uci hidden_5g_guest=0 | wifi 5G HideSSID[1]=1 | "
                  "start wifi_setup.sh wifi_guest_arguments all &");
  }
}

TEST_F(Guest, ARequestForBothRadiosMustBeWhole) {
  const auto whole = entry("2.4g", 1, "0", "wpa2");
  std::vector<std::string> lists = {"", whole, whole + ",[]", whole + ",null", "7," + whole};
  for (const char* member : {"Switch", "ssid\"", "pwd", "ssid_hide", "encryption"}) {
    auto part = entry("5g", 1, "0", "wpa2");
    part.replace(part.find(member), 1, "x");
    lists.push_back(whole + "," + part);
  }
  for (const auto& list : lists) {
    EXPECT_EQ(effects(apply(list), failed("multi_ssid_apply")), "") << list;
  }
  for (const char* members : {"", R"("list":{})"}) {
    EXPECT_EQ(effects(command("multi_ssid_apply", members), failed("multi_ssid_apply")), "");
  }
}

}  // namespace
