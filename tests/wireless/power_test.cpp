// Transmit power and wireless mode.

#include <zelto/wireless.h>

#include "wireless/wireless_test.h"

namespace zelto_test {
namespace {

class Power : public WirelessTest {};

TEST_F(Power, ReadsTheLevel) {
  const std::pair<std::optional<std::string>, std::string> cases[] = {{"40", R"("pamode":0)"},
                                                                      {"60", R"("pamode":1)"},
                                                                      {"100", R"("pamode":2)"},
                                                                      {"10", ""},
                                                                      {"", ""},
                                                                      {std::nullopt, ""}};
  for (const auto& band : kBands) {
    for (const auto& [power, member] : cases) {
      given_driver(band, "TxPower", kWhole, power);
      EXPECT_EQ(ask(band(R"({"type":"getpamode"})")), band(command("getpamode", member)));
    }
  }
  EXPECT_THAT(board::log(), testing::IsEmpty());
}

TEST_F(Power, SetsTheLevelAndTellsTheRadioInEveryCase) {
  const std::tuple<const char*, const char*, std::string> cases[] = {
      {R"("pamode":0)", R"("result":0)", "wifi 2.4G TxPower=40, PERCENTAGEenable=1 | "},
      {R"("pamode":1)", R"("result":0)", "wifi 2.4G TxPower=60, PERCENTAGEenable=1 | "},
      {R"("pamode":2)", R"("result":0)", "wifi 2.4G TxPower=100, PERCENTAGEenable=0 | "},
      {R"("pamode":5)", R"("result":0)", ""},
      {R"("pamode":-1)", R"("result":0)", ""},
      {R"("pamode":"1")", R"("result":1)", ""},
      {"", R"("result":1)", ""},
  };
  for (const auto& band : kBands) {
    for (const auto& [members, result, stores] : cases) {
      EXPECT_EQ(effects(band(command("setpamode", members)), band(command("setpamode", result))),
                band(stores + "start wifi_setup.sh wifi_txpower 2.4G &"));
    }
  }
}

TEST_F(Power, ReadsTheWirelessModes) {
  using Mode = std::optional<std::string>;
  const std::tuple<Mode, Mode, const char*> cases[] = {
      {"9;16", "14;17", R"("twoWifiMode":0,"fiveWifiMode":0)"},
      {"1;1", "17;14", R"("twoWifiMode":0,"fiveWifiMode":1)"},
      {"16", "14", R"("twoWifiMode":1,"fiveWifiMode":0)"},
      {"14", "9", ""},
      {"17", "16", ""},
      {"9", "1", R"("twoWifiMode":0)"},
      {std::nullopt, "17", R"("fiveWifiMode":1)"},
      {"", std::nullopt, ""},
  };
  for (const auto& [mode_2g, mode_5g, members] : cases) {
    given_driver(k2G, "WirelessMode", kWhole, mode_2g);
    given_driver(k5G, "WirelessMode", kWhole, mode_5g);
    for (const char* type : {"getWifiMode", "any"}) {
      EXPECT_EQ(call(bs_GetWifiMode, command(type, "").c_str()).reply, command(type, members));
    }
  }
}

TEST_F(Power, SetsTheWirelessModes) {
  const std::string old_2g = "wifi 2.4G WirelessMode[0]=9, WirelessMode[1]=9 | ";
  const std::string new_2g = "wifi 2.4G WirelessMode[0]=16, WirelessMode[1]=16 | ";
  const std::string old_5g = "wifi 5G WirelessMode[0]=14, WirelessMode[1]=14 | ";
  const std::string new_5g = "wifi 5G WirelessMode[0]=17, WirelessMode[1]=17 | ";
  const std::pair<const char*, std::string> cases[] = {
      {R"("twoWifiMode":1)", new_2g + old_5g},
      {R"("fiveWifiMode":1)", old_2g + new_5g},
      {R"("fiveWifiMode":0,"twoWifiMode":0)", old_2g + old_5g},
      {R"("fiveWifiMode":"1","twoWifiMode":2)", old_5g},
      {R"("fiveWifiMode":-1,"twoWifiMode":1)", new_2g},
  };
  std::string traced;
  for (const char* type : {"setWifiMode", "any"}) {
    for (const auto& [members, stores] : cases) {
      const auto reply = command(type, R"("result":0)");
      EXPECT_EQ(call(bs_SetWifiMode, command(type, members).c_str()).reply, reply);
      EXPECT_EQ(effects(), stores +
                               "start wifi_setup.sh wifi_master_enable all;"
                               "wifi_setup.sh wifi_guest_arguments all &");
      traced += "zeltoapi.c:bs_SetWifiMode:15033:out:" + reply + "\n\n";
    }
  }
  EXPECT_EQ(board::console(), traced);
}

}  // namespace
}  // namespace zelto_test
