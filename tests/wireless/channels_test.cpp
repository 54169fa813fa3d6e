// Channel, country and bandwidth.

#include <filesystem>

#include <zelto/wireless.h>

#include "wireless/wireless_test.h"

namespace zelto_test {
namespace {

const std::string kTuneAll = " | start wifi_setup.sh wifi_model;wifi_setup.sh wifi_channel all &";
const std::string kTune2G =
    " | start wifi_setup.sh wifi_master_enable 2.4G;wifi_setup.sh wifi_guest_arguments 2.4G &";
const std::string kTune5G = " | start wifi_setup.sh wifi_channel 5.8G &";

class Channels : public WirelessTest {
 protected:
  // What iwconfig says of a running interface.
  static void given_running(const std::string& report) {
    board::write_file("/usr/sbin/iwconfig", "#!/bin/sh\n" + report + "\n");
    std::filesystem::permissions("/usr/sbin/iwconfig", std::filesystem::perms::owner_all);
  }
  static std::string set(const std::string& type, const std::string& members) {
    return " | " + WirelessTest::set(type, members);
  }

  // A value for both radios in one request, where all are texts, then for each in its own.
  static void expect_stores(const std::string& member, const std::string& value,
                            const std::string& all_2g, const std::string& in_2g,
                            const std::string& in_5g, const char* channel_before = "6") {
    const auto text = R"(":")" + value + "\"";
    const auto single = "\"" + member + (member == "countrycode" ? text : "\":" + value);
    const std::tuple<const char*, std::string, std::string> requests[] = {
        {"setchannelall", "\"" + member + "_5" + text + ",\"" + member + text,
         all_2g + in_5g + kTuneAll},
        {"set2channel", single, in_2g + kTune2G},
        {"set5channel", single, in_5g + kTune5G}};
    for (const auto& [type, members, expected] : requests) {
      for (const auto& band : kBands) given_driver(band, "Channel", kWhole, channel_before);
      EXPECT_EQ(set(type, members), expected);
    }
  }
};

TEST_F(Channels, Reads) {
  given_running("[ $1 = ra0 ] && echo 'Mode:Managed  Channel=6  x' || echo ' M  Channel=149 x'");
  const std::string fields_2g =
      R"("channel":0,"curchannel":6,"countrycode":"US","htbw":0,"curbw":0)";
  const std::string all = R"({"type":"getchannelall","configurations":[{"radio":"2.4G",)" +
                          fields_2g + R"(},{"radio":"5G",)";
  const std::string fields_5g =
      R"("channel":0,"curchannel":149,"countrycode":"US","htbw":0,"curbw":0})";
  EXPECT_EQ(effects(R"({"type":"getchannelall"})", all + fields_5g + "]}"),
            "run iwconfig ra0 | grep Channel | awk '{print $2}' | cut -f2 -d\\\\= | "
            "run iwconfig rai0 | grep Channel | awk '{print $2}' | cut -f2 -d\\\\=");
  EXPECT_EQ(ask(R"({"type":"get2channel"})"), command("get2channel", fields_2g));

  given_driver(k5G, "Channel", kWhole, "36");
  given_driver(k5G, "autobw", kWhole, "3");
  given_driver(k5G, "CountryCode", kWhole, "");
  const std::string fixed_5g =
      R"("channel":36,"curchannel":36,"countrycode":"","htbw":3,"curbw":3})";
  EXPECT_EQ(ask(R"({"type":"getchannelall"})"), all + fixed_5g + "]}");
  EXPECT_EQ(effects(R"({"type":"get5channel"})", R"({"type":"get5channel",)" + fixed_5g), "");

  given_running("echo 'x Channel=none'");
  EXPECT_THAT(ask(R"({"type":"get2channel"})"), HasSubstr(R"("channel":0,"curchannel":0,)"));
  // Without a shell the other radio's channel stands in; a tool that runs and fails said 0.
  given_driver(k2G, "Channel", kWhole, "11");
  given_driver(k5G, "Channel", kWhole, "0");
  EXPECT_THAT(ask(R"({"type":"getchannelall"})"), HasSubstr(R"("5G","channel":0,"curchannel":0,)"));
  std::filesystem::rename("/bin/sh", "/bin/sh-away");
  const auto both = ask(R"({"type":"getchannelall"})");
  const auto one = ask(R"({"type":"get5channel"})");
  std::filesystem::rename("/bin/sh-away", "/bin/sh");
  EXPECT_THAT(both, HasSubstr(R"("radio":"5G","channel":0,"curchannel":11,)"));
  EXPECT_THAT(one, HasSubstr(R"("channel":0,"curchannel":0,)"));
}

TEST_F(Channels, AFailedReadIsTold) {
  const std::string fields = R"("channel":1,"curchannel":1,"countrycode":"US","htbw":0,"curbw":0)";
  for (const auto& band : kBands) {
    for (const std::string key : {"CountryCode", "Channel", ""}) {
      board::reset();
      if (key.empty()) board::remove_file(band.profile);
      if (!key.empty()) given_driver(band, key, kWhole, std::nullopt);
      EXPECT_EQ(ask(band(R"({"type":"get2channel"})")), band(failed("get2channel")));
      EXPECT_EQ(ask(R"({"type":"getchannelall"})"), failed("getchannelall"));
      const auto line = band("<3>lib_conf_get_2G ") + (key.empty() ? "Channel" : key) + " failed!";
      EXPECT_THAT(board::log(), ElementsAre(line, line));
    }
    // The bandwidth comes last: what was read before it stands.
    board::reset();
    for (const auto& either : kBands) given_driver(either, "Channel", kWhole, "1");
    given_driver(band, "autobw", kWhole, std::nullopt);
    EXPECT_EQ(ask(band(R"({"type":"get2channel"})")),
              band(command("get2channel", fields + R"(,"result":1)")));
  }
  EXPECT_EQ(ask(R"({"type":"getchannelall"})"),
            R"({"type":"getchannelall","configurations":[{"radio":"2.4G",)" + fields +
                R"(},{"radio":"5G",)" + fields + R"(}],"result":1})");
}

TEST_F(Channels, SetsTheChannel) {
  const std::string to_b_only = "WirelessMode[0]=1, WirelessMode[1]=1, ";
  const std::string to_others = "WirelessMode[0]=9, WirelessMode[1]=9, ";
  const struct {
    const char* before;
    std::string channel;
    std::string modes;
    std::string lower_half;
    std::string automatic_2g;
    std::string automatic_5g;
  } cases[] = {
      {"6", "14", to_b_only, "0", "0", "0"},  {"14", "1", to_others, "1", "0", "0"},
      {"14", "14", to_b_only, "0", "0", "0"}, {"14", "0", to_others, "1", "2", "3"},
      {"6", "9", "", "1", "0", "0"},          {"", "10", "", "0", "0", "0"},
  };
  for (const auto& c : cases) {
    const auto set_2g = " | wifi 2.4G " + c.modes + "Channel=" + c.channel;
    const auto automatic = ", AutoChannelSelect=" + c.automatic_2g;
    expect_stores(
        "channel", c.channel,
        set_2g + ", PERCENTAGEenable=0, HT_EXTCHA=" + c.lower_half + automatic, set_2g + automatic,
        " | wifi 5G Channel=" + c.channel + ", AutoChannelSelect=" + c.automatic_5g, c.before);
  }
}

TEST_F(Channels, SetsTheCountry) {
  const std::tuple<std::string, std::string, std::string> regions[] = {
      {"US", "0", "7"}, {"JP", "5", "6"}, {"FR", "1", "2"}, {"TW", "0", "8"},  {"IE", "1", "1"},
      {"HK", "1", "0"}, {"CN", "1", "0"}, {"DE", "5", "7"}, {"TWN", "5", "7"}, {"CNX", "5", "7"},
      {"cn", "5", "7"}, {"F", "5", "7"},  {"", "5", "7"},
  };
  for (const auto& [code, in_2g, in_5g] : regions) {
    const auto set_2g = " | wifi 2.4G CountryCode=" + code + ", CountryRegion=" + in_2g;
    expect_stores("countrycode", code, set_2g, set_2g,
                  " | wifi 5G CountryCode=" + code + ", CountryRegionABand=" + in_5g);
  }
}

TEST_F(Channels, SetsTheBandwidth) {
  const std::string wide =
      ", HT_BW=1, HT_BSSCoexistence=1, VHT_BW=1, WirelessMode[0]=14, WirelessMode[1]=14";
  const std::tuple<std::string, std::string, std::string> keys[] = {
      {"0", ", HT_BW=1, HT_BSSCoexistence=1", wide},
      {"1", ", HT_BW=0, HT_BSSCoexistence=0",
       ", HT_BW=0, HT_BSSCoexistence=1, VHT_BW=0, WirelessMode[0]=8, WirelessMode[1]=8"},
      {"2", ", HT_BW=1, HT_BSSCoexistence=0",
       ", HT_BW=1, HT_BSSCoexistence=0, VHT_BW=0, WirelessMode[0]=14, WirelessMode[1]=14"},
      {"3", "", wide},
      {"4", "", ""},
  };
  for (const auto& [bandwidth, in_2g, in_5g] : keys) {
    const auto set_2g = " | wifi 2.4G autobw=" + bandwidth + in_2g;
    expect_stores("htbw", bandwidth, set_2g, set_2g, " | wifi 5G autobw=" + bandwidth + in_5g);
  }
}

TEST_F(Channels, TextsForBothRadiosNumbersForOne) {
  EXPECT_EQ(set("setchannelall", R"("channel":6,"htbw":1,"channel_5":36,"htbw_5":1)"), kTuneAll);
  EXPECT_EQ(set("set2channel", R"("channel":"6","htbw":"1","countrycode":7)"), kTune2G);
  EXPECT_EQ(set("set5channel", R"("htbw":-1,"countrycode":"JP","channel":-7)"),
            " | wifi 5G Channel=-7, AutoChannelSelect=0, CountryCode=JP, CountryRegionABand=6, "
            "autobw=-1" +
                kTune5G);
}

TEST_F(Channels, ARadioThatIsTheUplinkIsNotTuned) {
  const std::string tune = " | start wifi_setup.sh wifi_model;wifi_setup.sh wifi_channel ";
  using Option = std::optional<std::string>;
  const std::tuple<Option, Option, Option, std::string, std::string> cases[] = {
      {"router", "2.4G", "2.4G", kTuneAll, ""},
      {"repeate", "2.4G", "2.4G", kTuneAll, ""},
      {std::nullopt, "2.4G", "2.4G", kTuneAll, "operationmode"},
      {"wisp", "2.4G", "5.8G", tune + "5.8G &", ""},
      {"wisp", "5.8G", "2.4G", tune + "2.4G &", ""},
      {"wisp", "5G", "2.4G", " | ", ""},
      {"wisp", std::nullopt, "2.4G", kTuneAll, "wisp_type"},
      {"repeater", "5.8G", "2.4G", tune + "5.8G &", ""},
      {"repeater", "2.4G", "5.8G", tune + "2.4G &", ""},
      {"repeater", "2.4G", "x", " | ", ""},
      {"repeater", "2.4G", std::nullopt, kTuneAll, "repeater_type"},
  };
  for (const auto& [mode, wisp, repeater, tuned, failure] : cases) {
    board::reset();
    given_route("operationmode", mode);
    given("internet", "wisp", "wisp_type", wisp);
    given("internet", "repeater", "repeater_type", repeater);
    EXPECT_EQ(set("setchannelall", ""), tuned);
    EXPECT_EQ(call(bs_SetChannelAll, "{}").reply, R"({"result":1})");
    EXPECT_EQ(" | " + effects(), tuned);
    EXPECT_THAT(board::log(), SizeIs(failure.empty() ? 0 : 2));
    EXPECT_THAT(board::log(), Each("<3>uci get " + failure + " error!"));
  }
}

}  // namespace
}  // namespace zelto_test
