// Where the wireless commands keep to the common rules, and where each departs from them.

#include <filesystem>
#include <iterator>
#include <set>
#include <sstream>

#include <zelto/wireless.h>

#include "wireless/wireless_test.h"

namespace zelto_test {
namespace {

// What stands under "type" when the request's is wrong or missing.
enum class Type { kOwn, kEchoed, kOwnOrSilence };

constexpr const char* kUsual = "<3>json data is NULL!";
constexpr const char* kSilence = nullptr;  // and 0 is returned

const std::string kStart = "start wifi_setup.sh ";
const std::string kTuneAll = kStart + "wifi_model;wifi_setup.sh wifi_channel all &";
const std::string kGuest = kStart + "wifi_guest_arguments ";
const std::string kPower = kStart + "wifi_txpower ";

std::vector<std::string> words(const std::string& text) {
  std::istringstream stream(text);
  return {std::istream_iterator<std::string>(stream), {}};
}

// Every command; those that answer alike stand together.
const struct {
  std::vector<std::string> types;
  Type answered = Type::kOwn;
  std::string always = "";  // runs whatever "type" is
  const char* unparsed_log = kUsual;
} kCommands[] = {
    {words("getwlancfgall setwlancfgall getchannelall get2channel get5channel getvisitorinfo "
           "getvisitor5info multi_ssid multi_ssid_apply getpamode getpa5mode wifi_schedule_apply "
           "wifi_schedule_switch")},
    {words("getwlancfg get5wlancfg getswitchwifi get5switchwifi setswitchwifi set5switchwifi"),
     Type::kOwn, "", kSilence},
    {words("setwlancfg set5wlancfg"), Type::kOwnOrSilence, "", kSilence},
    {words("set2gswitch set5gswitch setAllswitch gethide2 gethide5 sethide2 sethide5 sethideall "
           "set2channel set5channel getWifiMode setWifiMode"),
     Type::kEchoed},
    {{"setchannelall"}, Type::kEchoed, kTuneAll},
    {{"setvisitorinfo"}, Type::kOwn, kGuest + "2.4G &"},
    {{"setvisitor5info"}, Type::kOwn, kGuest + "5.8G &"},
    {{"setpamode"}, Type::kOwn, kPower + "2.4G &"},
    {{"setpa5mode"}, Type::kOwn, kPower + "5.8G &"},
    {{"wifi_schedule"}, Type::kOwn, "", "<3>json is NULL"},
};

CommandHandler handler_of(const std::string& type) {
  const auto* row = std::find_if(std::begin(zelto_handle), std::end(zelto_handle),
                                 [&](const CommandEntry& entry) { return entry.name == type; });
  return row == std::end(zelto_handle) ? nullptr : row->handler;
}

class Envelope : public WirelessTest {};

TEST_F(Envelope, AllNamesAreLiveAndAnUnparsedRequestTouchesNothing) {
  std::set<std::string> names;
  std::vector<std::string> logged;
  for (const auto& commands : kCommands) {
    for (const auto& type : commands.types) {
      names.insert(type);
      ASSERT_NE(handler_of(type), nullptr) << type;
      const auto [status, reply] = call(handler_of(type), "{");
      EXPECT_EQ(status, commands.unparsed_log == kSilence ? 0 : -1) << type;
      EXPECT_EQ(reply, "untouched") << type;
      if (commands.unparsed_log != kSilence) logged.emplace_back(commands.unparsed_log);
    }
  }
  EXPECT_EQ(names.size(), 39U);
  EXPECT_THAT(board::log(), ElementsAreArray(logged));
  EXPECT_EQ(effects(), "");
}

TEST_F(Envelope, AWrongTypeRunsOnlyWhatAlwaysRuns) {
  const std::string members =
      R"("radioon":0,"enable":1,"wlanssid":"x","wlan5ssid":"x","pamode":1,"pa5mode":1,)"
      R"("channel":"3","htbw":1,"gssidenable":0,"g5ssidenable":0,"Switch":"1","action":"del"})";
  for (const auto& commands : kCommands) {
    const bool echoes = commands.answered == Type::kEchoed;
    for (const auto& type : commands.types) {
      if (type.ends_with("WifiMode")) continue;  // these two do not look at "type"
      const auto without = echoes ? R"({"result":1})" : failed(type);
      const bool is_silent = commands.answered == Type::kOwnOrSilence;
      const std::pair<std::string, std::string> cases[] = {
          {R"({"type":"other",)", failed(echoes ? "other" : type)},
          {"{", is_silent ? "untouched" : without}};
      for (const auto& [start, expected] : cases) {
        const auto [status, reply] = call(handler_of(type), (start + members).c_str());
        EXPECT_EQ(status, 0) << type;
        EXPECT_EQ(reply, expected);
        EXPECT_EQ(effects(), commands.always) << type;
      }
    }
  }
  EXPECT_THAT(board::log(), IsEmpty());
}

TEST_F(Envelope, CommandsRunOnTheirSideOfTheReply) {
  static const char kUnwritable[ZELTO_REPLY_SIZE] = {};
  const std::tuple<CommandHandler, const char*, bool> cases[] = {
      {bs_SetWifiStat, R"({"type":"setswitchwifi","radioon":1})", true},
      {bs_SetWifiSwitchAll, R"({"type":"setAllswitch","radioon":1})", true},
      {bs_SetAdvChannel, R"({"type":"set2channel"})", true},
      {bs_SetWifiMode, R"({"twoWifiMode":2,"fiveWifiMode":2})", true},
      {bs_SetWifiAll, R"({"type":"setwlancfgall"})", false},
      {bs_SetWlanCfg, R"({"type":"setwlancfg"})", false},
      {bs_SetChannelAll, R"({"type":"setchannelall"})", false},
      {bs_SetVisitorInfo, R"({"type":"setvisitorinfo"})", false},
      {bs_SetPaMode, R"({"type":"setpamode"})", false},
  };
  for (const auto& [handler, request, runs_before] : cases) {
    EXPECT_DEATH(handler(request, const_cast<char*>(kUnwritable)), "") << "writes its reply";
    const auto before = effects();
    call(handler, request);
    const auto all = effects();
    EXPECT_THAT(all, HasSubstr(kStart)) << request;
    EXPECT_EQ(before, runs_before ? all : "") << request;
  }
}

TEST_F(Envelope, RefusesWhatCannotBeStoredBeforeTheFirstStore) {
  const std::string guests =
      R"("list":[{"type":"2.4g","Switch":1,"ssid":"a","pwd":"b","ssid_hide":"0",)"
      R"("encryption":"x"},{"type":"5g","Switch":1,"ssid":"a","encryption":"x",)";
  const std::tuple<std::string, std::string, std::string> cases[] = {
      {"setwlancfgall", R"("wlanssid":"fine","wlanpsw_5":"a\nb")", ""},
      {"setwlancfgall", R"("wlanpsw":"fine","wlanssid_5":"a\rb")", ""},
      {"setwlancfgall", R"("wlanssid":"fine","dualSwitch":"1\n")", ""},
      {"setwlancfg", R"("wlanssid":"fine","wlanpsw":"a\nb")", ""},
      {"set5wlancfg", R"("wlan5psw":"fine","wlan5ssid":")" + std::string(100, 'x') + "\"", ""},
      {"set2gswitch", R"("radioon":"1\n")", ""},
      {"setAllswitch", R"("radioon":"1;0")", ""},
      {"sethideall", R"("enable":"1;1")", ""},
      {"sethide5", R"("enable":"12345678")", ""},
      {"set2channel", R"("channel":6,"countrycode":"U\nS")", ""},
      {"setchannelall", R"("channel":"6","htbw_5":"1\n")", kTuneAll},
      {"setvisitor5info", R"("g5ssidenable":1,"g5ssid":"a","g5psw":"a\nb")", kGuest + "5.8G &"},
      {"multi_ssid_apply", guests + R"("ssid_hide":"0","pwd":"b\n"}])", ""},
      {"multi_ssid_apply", guests + R"("ssid_hide":"1;1","pwd":"b"}])", ""},
      {"wifi_schedule_apply", R"("action":"add","period":"22:00\n06:00","week":"12345")", ""},
      {"wifi_schedule_switch", R"("Switch":"1\n")", ""},
  };
  std::size_t refused = 0;
  for (const auto& [type, members, always] : cases) {
    EXPECT_EQ(effects(command(type, members), failed(type)), always) << members;
    EXPECT_THAT(board::log(), testing::SizeIs(++refused)) << members;
  }
}

// Pages see a name as it was sent, the driver has it byte for byte, also after off and on, and
// nothing of it is run.
TEST_F(Envelope, NamesAndPassphrasesHoldAnyCharacter) {
  const std::pair<std::string, std::string> texts[] = {
      {R"(it's \"quoted\";b=c #d\\)", R"(it's "quoted";b=c #d\)"},
      {R"( $(>/ran) `>/ran` && >/ran|)", R"( $(>/ran) `>/ran` && >/ran|)"},
      {"\xc3\xbc\xe6\x97\xa5\xf0\x9f\x8f\xa0", "\xc3\xbc\xe6\x97\xa5\xf0\x9f\x8f\xa0"},
      {std::string(99, 'x'), std::string(99, 'x')},
  };
  for (const auto& [json, text] : texts) {
    const std::string value = ":\"" + json + "\"";
    const std::string names = R"("gssid")" + value + R"(,"gpsw")" + value;
    ask(command("setwlancfgall", R"("wlanssid")" + value + R"(,"wlanpsw_5")" + value));
    ask(command("setwlancfg", R"("wlanpsw")" + value));
    ask(command("set5wlancfg", R"("wlan5ssid")" + value));
    for (const auto& band : kBands) {
      ask(band(command("setvisitorinfo", R"("gssidenable":1,)" + names)));
      EXPECT_EQ(ask(band(command("getvisitorinfo", ""))),
                band(command("getvisitorinfo", R"("gssidenable":1,)" + names)));
      EXPECT_THAT(ask(command("getwlancfgall", "")),
                  HasSubstr(R"("wlanssid")" + value + R"(,"wlanpswencry":"aes",)"));
      ask(band(command("setswitchwifi", R"("radioon":0)")));
      EXPECT_NE(driver(band, "SSID1", kWhole), text);
      ask(band(command("setswitchwifi", R"("radioon":1)")));
      for (const char* key : {"SSID1", "WPAPSK1", "SSID2", "WPAPSK2"}) {
        EXPECT_EQ(driver(band, key, kWhole), text);
      }
    }
  }
  board::settle();
  EXPECT_FALSE(std::filesystem::exists("/ran"));
}

}  // namespace
}  // namespace zelto_test
