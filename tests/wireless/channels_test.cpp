// Channel, country and bandwidth.

#include <filesystem>

#include <zelto/wireless.h>

#include "wireless/wireless_test.h"

namespace {

using testing::Each;
using testing::HasSubstr;
using testing::SizeIs;
using zelto_test::ask;
using zelto_test::command;
using zelto_test::done;
using zelto_test::failed;
using zelto_test::k2G;
using zelto_test::k5G;
using zelto_test::kBands;
using zelto_test::kWhole;

const std::string kTuneAll = " | start wifi_setup.sh wifi_model;wifi_setup.sh wifi_channel all &";
const std::string kTune2G =
    " | start wifi_setup.sh wifi_master_enable 2.4G;wifi_setup.sh wifi_guest_arguments 2.4G &";
const std::string kTune5G = " | start wifi_setup.sh wifi_channel 5.8G &";

class Channels : public zelto_test::WirelessTest {
 protected:
  // What iwconfig says of a running interface.
  static void given_running(const std::string& report) {
    board::write_file("/usr/sbin/iwconfig", "#!/bin/sh\n" + report + "\n");
    std::filesystem::permissions("/usr/sbin/iwconfig", std::filesystem::perms::owner_all);
  }
  static std::string set(const std::string& type, const std::string& members) {
    return " | " + effects(command(type, members), done(type));
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

  for (const char* nothing : {"exit 1", "echo 'x Channel=none'"}) {
    given_running(nothing);
    EXPECT_THAT(ask(R"({"type":"get2channel"})"), HasSubstr(R"("channel":0,"curchannel":0,)"));
  }
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
  for (const auto* band_ : kBands) {
    const auto& band = *band_;
    for (const std::string key : {"CountryCode", "Channel", ""}) {
      board::reset();
      if (key.empty()) {
        board::remove_file(band.profile);
      } else {
        given_driver(band, key, kWhole, std::nullopt);
      }
      EXPECT_EQ(ask(band(R"({"type":"get2channel"})")), band(failed("get2channel")));
      EXPECT_EQ(ask(R"({"type":"getchannelall"})"), failed("getchannelall"));
      EXPECT_THAT(board::log(), SizeIs(2));
      EXPECT_THAT(board::log(),
                  Each(band("<3>lib_conf_get_2G ") + (key.empty() ? "Channel" : key) + " failed!"));
    }
    // The bandwidth comes last: what was read before it stands.
    board::reset();
    given_driver(k2G, "Channel", kWhole, "1");
    given_driver(k5G, "Channel", kWhole, "1");
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
    const char* lower_half;
    std::string automatic_2g;
    std::string automatic_5g;
  } cases[] = {
      {"6", "14", to_b_only, "0", "0", "0"},  {"14", "1", to_others, "1", "0", "0"},
      {"14", "14", to_b_only, "0", "0", "0"}, {"14", "0", to_others, "1", "2", "3"},
      {"6", "9", "", "1", "0", "0"},          {"", "10", "", "0", "0", "0"},
  };
  for (const auto& c : cases) {
    const auto given_before = [&] {
      for (const auto* band : kBands) given_driver(*band, "Channel", kWhole, c.before);
    };
    const auto set_2g = " | wifi 2.4G " + c.modes + "Channel=" + c.channel;
    const auto automatic = ", AutoChannelSelect=" + c.automatic_2g;
    const auto set_5g = " | wifi 5G Channel=" + c.channel + ", AutoChannelSelect=" + c.automatic_5g;
    given_before();
    EXPECT_EQ(
        set("setchannelall",
            R"("channel":")" + c.channel + R"(","channel_5":")" + c.channel + "\""),
        set_2g + ", PERCENTAGEenable=0, HT_EXTCHA=" + c.lower_half + automatic + set_5g + kTuneAll);
    given_before();
    EXPECT_EQ(set("set2channel", R"("channel":)" + c.channel), set_2g + automatic + kTune2G);
    EXPECT_EQ(set("set5channel", R"("channel":)" + c.channel), set_5g + kTune5G);
  }
}

TEST_F(Channels, SetsTheCountry) {
  const struct {
    std::string code;
    std::string region_2g;
    std::string region_5g;
  } cases[] = {
      {"US", "0", "7"}, {"JP", "5", "6"}, {"FR", "1", "2"}, {"TW", "0", "8"},  {"IE", "1", "1"},
      {"HK", "1", "0"}, {"CN", "1", "0"}, {"DE", "5", "7"}, {"TWN", "5", "7"}, {"CNX", "5", "7"},
      {"cn", "5", "7"}, {"F", "5", "7"},  {"", "5", "7"},
  };
  for (const auto& c : cases) {
    const std::string value = R"(":")" + c.code + "\"";
    const auto set_2g = " | wifi 2.4G CountryCode=" + c.code + ", CountryRegion=" + c.region_2g;
    const auto set_5g = " | wifi 5G CountryCode=" + c.code + ", CountryRegionABand=" + c.region_5g;
    EXPECT_EQ(set("setchannelall", R"("countrycode_5)" + value + R"(,"countrycode)" + value),
              set_2g + set_5g + kTuneAll);
    EXPECT_EQ(set("set2channel", R"("countrycode)" + value), set_2g + kTune2G);
    EXPECT_EQ(set("set5channel", R"("countrycode)" + value), set_5g + kTune5G);
  }
}

TEST_F(Channels, SetsTheBandwidth) {
  const std::string wide =
      ", HT_BW=1, HT_BSSCoexistence=1, VHT_BW=1, WirelessMode[0]=14, WirelessMode[1]=14";
  const struct {
    std::string bandwidth;
    std::string keys_2g;
    std::string keys_5g;
  } cases[] = {
      {"0", ", HT_BW=1, HT_BSSCoexistence=1", wide},
      {"1", ", HT_BW=0, HT_BSSCoexistence=0",
       ", HT_BW=0, HT_BSSCoexistence=1, VHT_BW=0, WirelessMode[0]=8, WirelessMode[1]=8"},
      {"2", ", HT_BW=1, HT_BSSCoexistence=0",
       ", HT_BW=1, HT_BSSCoexistence=0, VHT_BW=0, WirelessMode[0]=14, WirelessMode[1]=14"},
      {"3", "", wide},
      {"4", "", ""},
  };
  for (const auto& c : cases) {
    const auto set_2g = " | wifi 2.4G autobw=" + c.bandwidth + c.keys_2g;
    const auto set_5g = " | wifi 5G autobw=" + c.bandwidth + c.keys_5g;
    EXPECT_EQ(
        set("setchannelall", R"("htbw_5":")" + c.bandwidth + R"(","htbw":")" + c.bandwidth + "\""),
        set_2g + set_5g + kTuneAll);
    EXPECT_EQ(set("set2channel", R"("htbw":)" + c.bandwidth), set_2g + kTune2G);
    EXPECT_EQ(set("set5channel", R"("htbw":)" + c.bandwidth), set_5g + kTune5G);
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
  const struct {
    std::optional<std::string> mode;
    std::optional<std::string> wisp;
    std::optional<std::string> repeater;
    std::string command;
    std::string failure = "";
  } cases[] = {
      {"router", "2.4G", "2.4G", kTuneAll},
      {"repeate", "2.4G", "2.4G", kTuneAll},
      {std::nullopt, "2.4G", "2.4G", kTuneAll, "operationmode"},
      {"wisp", "2.4G", "5.8G", tune + "5.8G &"},
      {"wisp", "5.8G", "2.4G", tune + "2.4G &"},
      {"wisp", "5G", "2.4G", " | "},
      {"wisp", std::nullopt, "2.4G", kTuneAll, "wisp_type"},
      {"repeater", "5.8G", "2.4G", tune + "5.8G &"},
      {"repeater", "2.4G", "5.8G", tune + "2.4G &"},
      {"repeater", "2.4G", "x", " | "},
      {"repeater", "2.4G", std::nullopt, kTuneAll, "repeater_type"},
  };
  for (const auto& c : cases) {
    board::reset();
    given_route("operationmode", c.mode);
    given("internet", "wisp", "wisp_type", c.wisp);
    given("internet", "repeater", "repeater_type", c.repeater);
    EXPECT_EQ(set("setchannelall", ""), c.command);
    EXPECT_EQ(zelto_test::call(bs_SetChannelAll, "{}").reply, R"({"result":1})");
    EXPECT_EQ(" | " + effects(), c.command);
    EXPECT_THAT(board::log(), SizeIs(c.failure.empty() ? 0 : 2));
    EXPECT_THAT(board::log(), Each("<3>uci get " + c.failure + " error!"));
  }
}

}  // namespace
