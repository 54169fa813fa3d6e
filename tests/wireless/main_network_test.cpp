// One radio's main network: name, security, switch and hidden flag.

#include <filesystem>

#include <zelto/wireless.h>

#include "wireless/wireless_test.h"

namespace zelto_test {
namespace {

class MainNetwork : public WirelessTest {};

TEST_F(MainNetwork, ReadsNamesAndSecurity) {
  given_route("ssid_2g", std::string(120, 'n'));
  given_driver(k2G, "EncrypType", 0, "TKIPAES");  // shows in the cipher only
  EXPECT_EQ(ask(R"({"type":"getwlancfg"})"),
            R"({"type":"getwlancfg","wlanssid":")" + std::string(99, 'n') +
                R"(","wlanpswencry":"tkipaes","wlanpswmode":"wpawpa2","wlanpsw":"zelto12345"})");
  // 5 GHz has an order of its own, but the 2.4 GHz rows: its own ones lack this mode.
  given_driver(k5G, "AuthMode", 0, "WPA3PSK");
  EXPECT_EQ(ask(R"({"type":"get5wlancfg"})"),
            R"({"type":"get5wlancfg","wlan5ssid":"ZELTO-5G","wlan5psw":"zelto12345",)"
            R"("wlan5pswencry":"aes","wlan5pswmode":"wpa3"})");

  for (const auto& band : kBands) board::remove_file(band.profile);
  given_route("ssid_2g", std::nullopt);
  EXPECT_EQ(ask(R"({"type":"getwlancfg"})"),
            R"({"type":"getwlancfg","wlanssid":"","wlanpswencry":"","wlanpswmode":"",)"
            R"("wlanpsw":""})");
  EXPECT_EQ(ask(R"({"type":"get5wlancfg"})"),
            R"({"type":"get5wlancfg","wlan5ssid":"ZELTO-5G","wlan5psw":"","wlan5pswencry":"",)"
            R"("wlan5pswmode":""})");
  EXPECT_THAT(board::log(), IsEmpty());
}

TEST_F(MainNetwork, StoresNameModeAndPassphraseInOrder) {
  const std::string apply = " | start wifi_setup.sh wifi_master_arguments 2.4G &";
  for (const auto& band : kBands) {
    const auto set = [&](const std::string& members) {
      return " | " + WirelessTest::set("setwlancfg", members, band);
    };
    EXPECT_EQ(set(R"("wlanpsw":"a key","wlanpswmode":"wpa2wpa3","wlanssid":"A")"),
              band(" | uci ssid_2g=A | wifi 2.4G SSID1=A, " + security("wpa2wpa3", 0) +
                   ", WPAPSK1=a key" + apply));
    for (const auto& [mode, keys] : kSecurity) {
      const bool known = mode != "wpawpa2-tkipaes";
      EXPECT_EQ(set(R"("wlanpswmode":")" + mode + "\""),
                band((known ? " | wifi 2.4G " + security(mode, 0) : "") + apply));
    }
    EXPECT_EQ(set(R"("wlanpswmode":"shared","wlanssid":1)"), band(apply));
    for (const char* state : {"0", "2", ""}) {
      given_driver(band, "WIFIEnable", 0, state);
      EXPECT_EQ(set(R"("wlanssid":"B")"), band(" | uci ssid_2g=B" + apply)) << state;
    }
    EXPECT_THAT(board::log(), IsEmpty());
    given_driver(band, "WIFIEnable", kWhole, std::nullopt);
    EXPECT_EQ(set(R"("wlanssid":"C")"), band(" | uci ssid_2g=C | wifi 2.4G SSID1=C" + apply));
    EXPECT_THAT(board::log(), ElementsAre(band("<3>lib_conf_get_2G WIFIEnable failed!")));
    board::reset();
  }
}

TEST_F(MainNetwork, ShowsSwitchAndHiddenFlag) {
  const std::pair<std::optional<std::string>, const char*> switches[] = {
      {"1", "1"}, {"0", "0"}, {"2", "0"}, {"", "0"}, {std::nullopt, "0"}};
  const std::pair<std::optional<std::string>, std::string> flags[] = {
      {"1", "1"}, {"0", "0"}, {std::nullopt, ""}, {std::string(70, '1'), std::string(63, '1')}};
  for (const auto& band : kBands) {
    for (const auto& [state, shown] : switches) {
      given_driver(band, "WIFIEnable", state ? 0 : kWhole, state);
      EXPECT_EQ(ask(band(R"({"type":"getswitchwifi"})")),
                band(command("getswitchwifi", R"("radioon":)" + std::string(shown))));
    }
    for (const auto& [flag, shown] : flags) {
      given_route(band("hidden_2g"), flag);
      EXPECT_EQ(ask(band(R"({"type":"gethide2"})")),
                band(command("gethide2", R"("enable":")" + shown + "\"")));
    }
  }
  EXPECT_THAT(board::log(), IsEmpty());
}

TEST_F(MainNetwork, SwitchesOneRadioAndEndsTheCoupling) {
  const std::string off = std::string(" | wifi 2.4G WIFIEnable[0]=0, SSID1=") + kOff2G +
                          ", HideSSID[0]=1 | start wifi_setup.sh wifi_master_disable 2.4G &";
  const std::string on =
      " | wifi 2.4G WIFIEnable[0]=1, SSID1=ZELTO-2.4G, HideSSID[0]=7 | "
      "start wifi_setup.sh wifi_master_enable 2.4G &";
  const std::tuple<std::string, char, std::optional<std::string>, std::string> cases[] = {
      {"0", '0', "0", off},         {"1", '1', "0", on},     {"0", '0', "1", ""},
      {"1", '1', std::nullopt, ""}, {"\"1\"", '1', "0", on}, {"\"0\"", '0', "00", ""},
  };
  for (const auto& band : kBands) {
    given_route(band("hidden_2g"), "7");
    for (const auto& [value, state, schedule, driver_stores] : cases) {
      given_schedule(schedule);
      for (const char* type : {"setswitchwifi", "set2gswitch"}) {
        if (type == std::string("setswitchwifi") && value.size() > 1) continue;  // takes no text
        EXPECT_EQ(set(type, R"("radioon":)" + value, band),
                  band(std::string("uci switch_2g=") + state + ", dualSwitch=0" + driver_stores));
      }
    }
  }
}

TEST_F(MainNetwork, SwitchesBothRadiosAndCouplesThem) {
  const std::string stored = "uci dualSwitch=1, switch_2g=1, switch_5g=1";
  given_route("hidden_2g", std::nullopt);
  given_route("hidden_5g", "1");
  for (const char* on : {R"("radioon":1)", R"("radioon":"1")"}) {
    EXPECT_EQ(set("setAllswitch", on),
              stored +
                  " | wifi 2.4G WIFIEnable[0]=1 | wifi 5G WIFIEnable[0]=1 | "
                  "wifi 2.4G SSID1=ZELTO-2.4G, HideSSID[0]= | "
                  "wifi 5G SSID1=ZELTO-5G, HideSSID[0]=1 | "
                  "start wifi_setup.sh wifi_master_enable all &");
  }
  const std::string off = std::string("wifi 2.4G SSID1=") + kOff2G + ", HideSSID[0]=1 | ";
  EXPECT_EQ(set("setAllswitch", R"("radioon":0)"),
            "uci dualSwitch=1, switch_2g=0, switch_5g=0 | wifi 2.4G WIFIEnable[0]=0 | "
            "wifi 5G WIFIEnable[0]=0 | " +
                off + k5G(off) + "start wifi_setup.sh wifi_master_disable all &");
  given_schedule("1");
  EXPECT_EQ(set("setAllswitch", R"("radioon":1)"), stored);
}

TEST_F(MainNetwork, SettersNeedTheirMember) {
  const std::pair<const char*, CommandHandler> switches[] = {{"setswitchwifi", bs_SetWifiStat},
                                                             {"set5switchwifi", bs_Set5WifiStat}};
  for (const auto& [type, handler] : switches) {
    for (const char* members : {"", R"("radioon":"1")"}) {
      const auto [status, reply] = call(handler, command(type, members).c_str());
      EXPECT_EQ(status, -1) << type << members;
      EXPECT_EQ(reply, failed(type));
      EXPECT_EQ(ask(command(type, members)), reply) << "the dispatcher passes it on all the same";
    }
  }
  for (const char* type : {"set2gswitch", "setAllswitch", "sethide2", "sethideall"}) {
    EXPECT_EQ(ask(command(type, R"("radioon":true,"enable":[])")), failed(type));
  }
  EXPECT_EQ(effects(), "");
}

TEST_F(MainNetwork, HidesOneRadioOrBoth) {
  const std::string hidden =
      "uci hidden_2g=1 | wifi 2.4G HideSSID[0]=1 | run iwpriv ra0 set HideSSID=\"1\" | ";
  const std::string apply = " | start /sbin/wifi_setup.sh wifi_master_arguments 2.4G";
  for (const auto& band : kBands) {
    const auto hide = [&](const std::string& flag) {
      return set("sethide2", R"("enable":)" + flag, band);
    };
    EXPECT_EQ(hide("1"), band(hidden + "uci dualSwitch=0" + apply));
    EXPECT_EQ(hide("\"1\""), band(hidden + "uci dualSwitch=0" + apply));
    given_driver(band, "WIFIEnable", 0, "0");
    EXPECT_EQ(hide("1"), band("uci hidden_2g=1, dualSwitch=0"));
    EXPECT_THAT(board::log(), IsEmpty());
    given_driver(band, "WIFIEnable", kWhole, std::nullopt);
    EXPECT_EQ(hide("1"), band(hidden + "uci dualSwitch=0" + apply));
    EXPECT_THAT(board::log(), ElementsAre(band("<3>lib_conf_get_2G WIFIEnable failed!")));
    board::reset();
  }
  const auto* const both = R"("enable":"1")";
  EXPECT_THAT(set("sethideall", both),
              testing::StartsWith(hidden + k5G(hidden) + "uci dualSwitch=1 | start "));
  given_driver(k2G, "WIFIEnable", 0, "0");
  EXPECT_EQ(set("sethideall", both),
            "uci hidden_2g=1, " + k5G(hidden).substr(4) + "uci dualSwitch=1" + k5G(apply));
}

TEST_F(MainNetwork, NothingIsRunFromAHiddenFlag) {
  // The flag, as it is sent, and in the journal, which shows a backslash twice.
  const std::tuple<const char*, std::string, std::string> flags[] = {
      {R"("|>/x")", R"(\"|>/x\")", R"("\\"|>/x\\"")"},
      {R"($(>/x))", R"($(>/x))", R"x("\\$(>/x)")x"},
      {R"(`>/x`)", R"(`>/x`)", R"("\\`>/x\\`")"},
      {R"(\$$\)", R"(\\$$\\)", R"("\\\\\\$\\$\\\\")"},
      {R"( 1  ')", R"( 1  ')", R"(" 1  '")"},
  };
  for (const auto& [flag, json, journal] : flags) {
    const std::string received = std::string("iwpriv rai0 set HideSSID=") + flag + "\n";
    const auto run = HasSubstr("run iwpriv rai0 set HideSSID=" + journal + " | ");
    board::reset();
    EXPECT_THAT(set("sethide5", R"("enable":")" + json + "\""), run);
    EXPECT_THAT(board::read_file("/var/log/firmware.log"), HasSubstr(received));
    EXPECT_EQ(driver(k5G, "HideSSID", 0), flag);
    // The other radio's, out of the configuration.
    board::reset();
    given_route("hidden_2g", flag);
    EXPECT_THAT(set("setwlancfgall", R"("dualSwitch":"1","wlanssid":"A")"), run);
    EXPECT_THAT(board::read_file("/var/log/firmware.log"), HasSubstr(received));
    EXPECT_FALSE(std::filesystem::exists("/x"));
  }
}

}  // namespace
}  // namespace zelto_test
