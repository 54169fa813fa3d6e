// The guest network of each radio.

#include "wireless/wireless_test.h"

namespace zelto_test {
namespace {

const std::string kDone = done("multi_ssid_apply");
const std::string kFailed = failed("multi_ssid_apply");

class Guest : public WirelessTest {};

TEST_F(Guest, ReadsOneRadio) {
  for (const auto& band : kBands) {
    given_driver(band, "WIFIEnable", kWhole, "0;1");
    EXPECT_EQ(ask(band(R"({"type":"getvisitorinfo"})")),
              band(R"({"type":"getvisitorinfo","gssidenable":1,"gssid":"ZELTO-Guest",)"
                   R"("gpsw":"guest12345"})"));
    given_driver(band, "WIFIEnable", kWhole, "1");  // no element for the guests
    given_driver(band, "WPAPSK2", kWhole, std::nullopt);
    given_route(band("ssid_2g_guest"), std::nullopt);
    EXPECT_EQ(ask(band(R"({"type":"getvisitorinfo"})")),
              band(R"({"type":"getvisitorinfo","gssidenable":0,"gssid":"","gpsw":""})"));
  }
  EXPECT_THAT(board::log(), IsEmpty());
}

TEST_F(Guest, ChangesOneRadioInMixedMode) {
  const std::string apply = " | start wifi_setup.sh wifi_guest_arguments 2.4G &";
  const std::string names = R"("gssid":"A","gpsw":"a key")";
  const std::string mixed =
      "WPAPSK2=a key, AuthMode[1]=WPAPSKWPA2PSK, PMFMFPR[1]=0, PMFMFPC[1]=0, EncrypType[1]=AES, "
      "RekeyMethod[1]=TIME | uci ssid_2g_guest=A";
  // What is sent, and its effects: freely, and while the schedule has the radio.
  const std::tuple<std::string, std::string, std::string> cases[] = {
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
  for (const auto& band : kBands) {
    for (const auto& [members, free, held] : cases) {
      const auto request = band(command("setvisitorinfo", members));
      const auto reply = band(free.empty() ? failed("setvisitorinfo") : done("setvisitorinfo"));
      given_schedule("0");
      EXPECT_EQ(" | " + effects(request, reply), band(free + apply));
      for (const auto& state : {std::optional<std::string>("1"), {}}) {
        given_schedule(state);
        EXPECT_EQ(" | " + effects(request, reply), held.empty() ? " | " : band(held));
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
  for (const auto& band : kBands) {
    for (const std::string key : {"WIFIEnable", "EncrypType", "AuthMode", "WPAPSK2"}) {
      board::reset();
      const bool is_list = key != "WPAPSK2";  // one that ends before the guests' element
      given_driver(band, key, kWhole, is_list ? std::optional<std::string>("1") : std::nullopt);
      EXPECT_EQ(ask(R"({"type":"multi_ssid"})"), failed("multi_ssid"));
      EXPECT_THAT(board::log(), ElementsAre(band("<3>lib_conf_get_2G ") + key + " failed!"));
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

// What an entry for 2.4 GHz stores when the schedule leaves the radio free.
std::string stores(const std::string& on, const std::string& name, const std::string& flag,
                   const std::string& hidden, const std::string& keys) {
  return "wifi 2.4G WIFIEnable[1]=" + on + " | uci switch_2g_guest=" + on +
         ", ssid_2g_guest=Name 2.4g | wifi 2.4G SSID2=" + name + ", WPAPSK2=Key 2.4g | " +
         "uci hidden_2g_guest=" + flag + " | wifi 2.4G HideSSID[1]=" + hidden + keys + " | ";
}

TEST_F(Guest, ChangesBothRadiosInEitherOrder) {
  const std::string start = "start wifi_setup.sh wifi_guest_arguments all &";
  const std::string off_2g = "E9E476DC869F4311CEBA1FB7F6A291E8";
  const std::string off_5g = "85DCF176FACFF0EADFE394597A324ED5";
  const std::string held =
      "ssid_2g_guest=Name 2.4g | wifi 2.4G WPAPSK2=Key 2.4g | uci hidden_2g_guest=0 | wifi 2.4G ";
  const auto first = entry("2.4g", 0, "0", "wpawpa2-tkipaes");
  const auto second = entry("5g", 1, "0", "wpa3");
  const auto security_2g = security("wpawpa2-tkipaes", 1);
  const auto security_5g = security("wpa3", 1);
  for (const auto& entries : {first + "," + second, second + "," + first}) {
    given_schedule("0");
    EXPECT_EQ(effects(apply(entries), kDone),
              stores("0", off_2g, "0", "1", ", " + security_2g) +
                  k5G(stores("1", "Name 2.4g", "0", "0", ", " + security_5g)) + start);
    given_schedule("1");
    EXPECT_EQ(effects(apply(entries), kDone), "uci switch_2g_guest=0, " + held + security_2g +
                                                  " | uci switch_5g_guest=1, " + k5G(held) +
                                                  security_5g);
  }
  given_schedule("0");
  for (const auto& [mode, keys] : kSecurity) {
    EXPECT_EQ(effects(apply(entry("2.4g", 1, "1", mode) + "," + entry("5g", 2, "0", "wpa")), kDone),
              stores("1", "Name 2.4g", "1", "1", ", " + security(mode, 1)) +
                  k5G(stores("2", off_5g, "0", "1", "")) + start);
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
    EXPECT_EQ(effects(apply(list), kFailed), "") << list;
  }
  for (const char* members : {"", R"("list":{})"}) {
    EXPECT_EQ(effects(command("multi_ssid_apply", members), kFailed), "");
  }
}

}  // namespace
}  // namespace zelto_test
