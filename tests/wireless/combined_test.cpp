// Both radios' main networks in one request.

#include "wireless/wireless_test.h"

namespace zelto_test {
namespace {

class Combined : public WirelessTest {
 protected:
  static std::string set(const std::string& members) {
    return WirelessTest::set("setwlancfgall", members);
  }
};

TEST_F(Combined, ReadsBothRadiosFromTheirStores) {
  given_driver(k2G, "WIFIEnable", 0, "0");
  given_driver(k2G, "EncrypType", 0, "TKIPAES");
  given_driver(k2G, "TxPower", kWhole, "40");
  given_driver(k2G, "SSID1", kWhole, "driver's");
  given_driver(k5G, "AuthMode", 0, "WPA2PSKWPA3PSK");
  given_driver(k5G, "WPAPSK1", kWhole, "");
  given_driver(k5G, "TxPower", kWhole, "60");
  given_route("ssid_5g", std::nullopt);
  given_route("hidden_2g", "1");
  given_route("hidden_5g", std::nullopt);
  given_route("dualSwitch", "1");
  EXPECT_EQ(ask(R"({"type":"getwlancfgall"})"),
            R"({"type":"getwlancfgall","dualSwitch":"1","configurations":[)"
            R"({"radio":"2.4G","enable":0,"wlanssid":"ZELTO-2.4G","wlanpswencry":"tkipaes",)"
            R"("wlanpswmode":"wpawpa2-tkipaes","wlanpsw":"zelto12345","ssidhide":1,"power":0},)"
            R"({"radio":"5G","enable":1,"wlanssid":"","wlanpswencry":"aes",)"
            R"("wlanpswmode":"wpa2wpa3","wlanpsw":"","ssidhide":0,"power":1}]})");
  EXPECT_EQ(effects(), "");

  const std::tuple<const char*, const char*, const char*, std::string, std::string> cases[] = {
      {"WPAPSKWPA2PSK", "TKIP", "100", R"("tkip","wlanpswmode":"wpawpa2")", R"(,"power":2)"},
      {"WPA2PSK", "TKIPAES", "10", R"("tkipaes","wlanpswmode":"wpa2")", ""},
      {"ODD", "", "", R"("","wlanpswmode":"ODD")", ""},
  };
  for (const auto& [authentication, cipher, power, shown, level] : cases) {
    for (const auto& band : kBands) {
      board::reset();
      given_driver(band, "AuthMode", 0, authentication);
      given_driver(band, "EncrypType", 0, cipher);
      given_driver(band, "TxPower", kWhole, power);
      EXPECT_THAT(ask(R"({"type":"getwlancfgall"})"),
                  HasSubstr(band("ZELTO-2.4G\",") + R"("wlanpswencry":)" + shown +
                            R"(,"wlanpsw":"zelto12345","ssidhide":0)" + level + "}"));
    }
  }
}

TEST_F(Combined, AFailedReadEndsTheReply) {
  for (const auto& band : kBands) {
    for (const std::string key : {"WIFIEnable", "EncrypType", "AuthMode", "WPAPSK1", "TxPower"}) {
      board::reset();
      given_route("dualSwitch", std::nullopt);
      given_driver(band, key, kWhole, std::nullopt);
      for (int ask_again = 0; ask_again < 2; ++ask_again) {
        EXPECT_EQ(ask(R"({"type":"getwlancfgall"})"),
                  R"({"type":"getwlancfgall","dualSwitch":"0","result":1})");
        board::remove_file(band.profile);
      }
      EXPECT_THAT(board::log(), ElementsAre(band("<3>lib_conf_get_2G ") + key + " failed!",
                                            band("<3>lib_conf_get_2G WIFIEnable failed!")));
    }
  }
}

TEST_F(Combined, StoresWhatIsSentInOrder) {
  EXPECT_EQ(set(R"("wlanpswmode_5":"wpa3","power_5":2,"wlanpsw_5":"key 5","wlanssid_5":"Name 5",)"
                R"("wlanpswmode":"wpawpa2-tkipaes","power":0,"wlanpsw":"key 2",)"
                R"("wlanssid":"Name 2","dualSwitch":"0")"),
            "uci dualSwitch=0, ssid_2g=Name 2 | wifi 2.4G SSID1=Name 2, WPAPSK1=key 2, "
            "TxPower=40, PERCENTAGEenable=1, " +
                security("wpawpa2-tkipaes", 0) +
                " | uci ssid_5g=Name 5 | wifi 5G SSID1=Name 5, WPAPSK1=key 5, TxPower=100, "
                "PERCENTAGEenable=0, " +
                security("wpa3", 0) + " | start wifi_setup.sh wifi_master_arguments all &");
  for (const auto& [mode, keys] : kSecurity) {
    EXPECT_EQ(set(R"("power":1,"wlanpswmode_5":")" + mode + "\""),
              "wifi 2.4G TxPower=60, PERCENTAGEenable=1 | wifi 5G " + security(mode, 0) +
                  " | start wifi_setup.sh wifi_master_arguments all &");
  }
  // Modes and levels that are none, members of the wrong type.
  for (const char* members :
       {R"("wlanpswmode":"wpa","wlanpswmode_5":"shared")", R"("wlanpswmode":"WPA2")",
        R"("power":3,"power_5":-1)", R"("power":"2","power_5":40)",
        R"("wlanssid":7,"wlanpsw_5":false,"dualSwitch":1,"wlanpswmode":null)"}) {
    EXPECT_EQ(set(members), "start wifi_setup.sh wifi_master_arguments all &") << members;
  }
}

TEST_F(Combined, ARadioWithoutSwitchCountsAsOn) {
  given_driver(k2G, "WIFIEnable", kWhole, std::nullopt);
  given_driver(k5G, "WIFIEnable", kWhole, "");  // read, and off
  EXPECT_EQ(set(R"("wlanssid":"A","wlanssid_5":"B")"),
            "uci ssid_2g=A | wifi 2.4G SSID1=A | uci ssid_5g=B | "
            "start wifi_setup.sh wifi_master_arguments all &");
  board::remove_file(k5G.profile);
  set(R"("wlanssid_5":"C")");
  EXPECT_THAT(board::log(), ElementsAre("<3>lib_conf_get_2G WIFIEnable failed!",
                                        "<3>lib_conf_get_5G WIFIEnable failed!"));
}

TEST_F(Combined, TheSecondRadioFollowsTheFirst) {
  const std::string all = " | start wifi_setup.sh wifi_master_arguments all &";
  const std::string off_alone = " | uci dualSwitch=1, ssid_2g=A, ssid_5g=B | wifi 5G SSID1=B";
  const std::string switched_off =
      std::string(" | wifi 5G WIFIEnable[0]=0, SSID1=") + kOff5G +
      ", HideSSID[0]=1 | start wifi_setup.sh wifi_master_disable 5.8G &";
  const std::string enable =
      " | start wifi_setup.sh wifi_master_arguments 2.4G;wifi_setup.sh wifi_master_enable 5.8G &";
  const std::string on_alone = " | uci dualSwitch=1, ssid_2g=A | wifi 2.4G SSID1=A | uci ssid_5g=B";
  const std::string both = R"("dualSwitch":"1","wlanssid":"A","wlanssid_5":"B")";
  // States are WIFIEnable of 2.4 and 5 GHz, hidden of 2.4 and 5 GHz.
  const std::tuple<std::string, std::string, std::optional<std::string>, std::string> cases[] = {
      {both, "0100", "0", off_alone + " | uci switch_5g=0" + switched_off},
      {both, "0110", "0", off_alone + " | uci hidden_5g=1, switch_5g=0" + switched_off},
      {both, "0100", "1", off_alone + " | uci switch_5g=0"},
      {both, "0100", "00", off_alone + " | uci switch_5g=0"},
      {both, "0100", std::nullopt, off_alone + " | uci switch_5g=0"},
      {both, "1011", "0",
       on_alone + ", switch_5g=1 | wifi 5G WIFIEnable[0]=1, SSID1=B, HideSSID[0]=1" + enable},
      {both, "1001", "0",
       on_alone +
           ", hidden_5g=0 | wifi 5G HideSSID[0]=0 | run iwpriv rai0 set HideSSID=\"0\" | "
           "uci switch_5g=1 | wifi 5G WIFIEnable[0]=1, SSID1=B, HideSSID[0]=0" +
           enable},
      // The schedule gates switches only.
      {both, "1110", "1",
       on_alone +
           " | wifi 5G SSID1=B | uci hidden_5g=1 | wifi 5G HideSSID[0]=1 | "
           "run iwpriv rai0 set HideSSID=\"1\"" +
           all},
      // A radio whose name was not sent has the empty switch here.
      {R"("dualSwitch":"1")", "0110", "0", " | uci dualSwitch=1, hidden_5g=1" + all},
      {R"("dualSwitch":"1","wlanssid":"A")", "0000", "0",
       " | uci dualSwitch=1, ssid_2g=A, switch_5g=0" + switched_off},
      {R"("dualSwitch":"1","wlanssid_5":"B")", "0100", "0",
       " | uci dualSwitch=1, ssid_5g=B | wifi 5G SSID1=B | uci switch_5g= | "
       "wifi 5G WIFIEnable[0]=, SSID1=B, HideSSID[0]=0" +
           enable},
      // Coupled is who sends exactly "1", whatever is stored.
      {R"("dualSwitch":"01","wlanssid":"A")", "0110", "0", " | uci dualSwitch=01, ssid_2g=A" + all},
      {R"("wlanssid":"A")", "0110", "0", " | uci ssid_2g=A" + all},
  };
  for (const auto& [members, states, schedule, expected] : cases) {
    board::reset();
    given_driver(k2G, "WIFIEnable", 0, states.substr(0, 1));
    given_driver(k5G, "WIFIEnable", 0, states.substr(1, 1));
    given_route("hidden_2g", states.substr(2, 1));
    given_route("hidden_5g", states.substr(3, 1));
    given_route("dualSwitch", "1");
    given_schedule(schedule);
    EXPECT_EQ(" | " + set(members), expected) << members << states;
  }
}

}  // namespace
}  // namespace zelto_test
