// Where the wireless commands keep to the common rules, and where each departs from them.

#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <set>

#include <zelto/wireless.h>

#include "wireless/wireless_test.h"

namespace {

using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using zelto_test::ask;
using zelto_test::call;
using zelto_test::command;
using zelto_test::failed;
using zelto_test::kBands;
using zelto_test::kWhole;

// What stands under "type" when the request's is wrong or missing.
enum class Type { kOwn, kEchoed, kOwnOrSilence };

constexpr const char* kUsual = "<3>json data is NULL!";
constexpr const char* kSilence = nullptr;

const struct {
  std::vector<std::string> types;
  CommandHandler handler;
  Type answered = Type::kOwn;
  int unparsed_status = -1;
  const char* unparsed_log = kUsual;
  std::string always = "";  // runs whatever "type" is
} kHandlers[] = {
    {{"getwlancfgall"}, bs_GetWifiInfoAll},
    {{"setwlancfgall"}, bs_SetWifiAll},
    {{"getwlancfg"}, bs_GetWlanCfg, Type::kOwn, 0, kSilence},
    {{"get5wlancfg"}, bs_Get5WlanCfg, Type::kOwn, 0, kSilence},
    {{"setwlancfg"}, bs_SetWlanCfg, Type::kOwnOrSilence, 0, kSilence},
    {{"set5wlancfg"}, bs_Set5WlanCfg, Type::kOwnOrSilence, 0, kSilence},
    {{"getswitchwifi"}, bs_GetWifiStat, Type::kOwn, 0, kSilence},
    {{"get5switchwifi"}, bs_Get5WifiStat, Type::kOwn, 0, kSilence},
    {{"setswitchwifi"}, bs_SetWifiStat, Type::kOwn, 0, kSilence},
    {{"set5switchwifi"}, bs_Set5WifiStat, Type::kOwn, 0, kSilence},
    {{"set2gswitch", "set5gswitch", "setAllswitch"}, bs_SetWifiSwitchAll, Type::kEchoed},
    {{"gethide2", "gethide5"}, bs_GetSSIDHide, Type::kEchoed},
    {{"sethide2", "sethide5", "sethideall"}, bs_SetSSIDHide, Type::kEchoed},
    {{"getchannelall"}, bs_GetChannelAll},
    {{"setchannelall"},
     bs_SetChannelAll,
     Type::kEchoed,
     -1,
     kUsual,
     "start wifi_setup.sh wifi_model;wifi_setup.sh wifi_channel all &"},
    {{"get2channel"}, bs_GetAdvChannel},
    {{"get5channel"}, bs_Get5AdvChannel},
    {{"set2channel"}, bs_SetAdvChannel, Type::kEchoed},
    {{"set5channel"}, bs_Set5AdvChannel, Type::kEchoed},
    {{"getvisitorinfo"}, bs_GetVisitorInfo},
    {{"getvisitor5info"}, bs_GetVisitor5Info},
    {{"setvisitorinfo"},
     bs_SetVisitorInfo,
     Type::kOwn,
     -1,
     kUsual,
     "start wifi_setup.sh wifi_guest_arguments 2.4G &"},
    {{"setvisitor5info"},
     bs_SetVisitor5Info,
     Type::kOwn,
     -1,
     kUsual,
     "start wifi_setup.sh wifi_guest_arguments 5.8G &"},
    {{"multi_ssid"}, bs_GetMultiWifi},
    {{"multi_ssid_apply"}, bs_SetMultiWifi},
    {{"getpamode"}, bs_GetPaMode},
    {{"getpa5mode"}, bs_GetPa5Mode},
    {{"setpamode"},
     bs_SetPaMode,
     Type::kOwn,
     -1,
     kUsual,
     "start wifi_setup.sh wifi_txpower 2.4G &"},
    {{"setpa5mode"},
     bs_SetPa5Mode,
     Type::kOwn,
     -1,
     kUsual,
     "start wifi_setup.sh wifi_txpower 5.8G &"},
    {{"getWifiMode"}, bs_GetWifiMode, Type::kEchoed},
    {{"setWifiMode"}, bs_SetWifiMode, Type::kEchoed},
    {{"wifi_schedule"}, bs_GetWifiScheduleData, Type::kOwn, -1, "<3>json is NULL"},
    {{"wifi_schedule_apply"}, bs_SetWifiScheduleData},
    {{"wifi_schedule_switch"}, bs_SetWifiScheduleSwitch},
};

class Envelope : public zelto_test::WirelessTest {};

TEST_F(Envelope, AllNamesAreLiveAndAnUnparsedRequestTouchesNothing) {
  std::set<std::string> names;
  std::vector<std::string> logged;
  for (const auto& handler : kHandlers) {
    for (const auto& type : handler.types) {
      names.insert(type);
      const auto* row = std::find_if(std::begin(zelto_handle), std::end(zelto_handle),
                                     [&](const CommandEntry& entry) { return entry.name == type; });
      ASSERT_NE(row, std::end(zelto_handle)) << type;
      EXPECT_EQ(row->handler, handler.handler) << type;
    }
    const auto [status, reply] = call(handler.handler, "{");
    EXPECT_EQ(status, handler.unparsed_status) << handler.types[0];
    EXPECT_EQ(reply, "untouched") << handler.types[0];
    if (handler.unparsed_log != nullptr) logged.emplace_back(handler.unparsed_log);
  }
  EXPECT_EQ(names.size(), 39U);
  EXPECT_THAT(board::log(), ElementsAreArray(logged));
  EXPECT_EQ(effects(), "");
}

TEST_F(Envelope, AWrongTypeRunsOnlyWhatAlwaysRuns) {
  const std::string members =
      R"("radioon":0,"enable":1,"wlanssid":"x","wlan5ssid":"x","pamode":1,"pa5mode":1,)"
      R"("channel":"3","htbw":1,"gssidenable":0,"g5ssidenable":0,"Switch":"1","action":"del"})";
  for (const auto& handler : kHandlers) {
    // These two do not look at "type".
    if (handler.handler == bs_GetWifiMode || handler.handler == bs_SetWifiMode) continue;
    const auto own = failed(handler.types[0]);
    const bool echoes = handler.answered == Type::kEchoed;
    const auto wrong = call(handler.handler, (R"({"type":"other",)" + members).c_str());
    EXPECT_EQ(wrong.status, 0) << own;
    EXPECT_EQ(wrong.reply, echoes ? failed("other") : own);
    EXPECT_EQ(effects(), handler.always) << own;
    const auto missing = call(handler.handler, ("{" + members).c_str());
    EXPECT_EQ(missing.status, 0) << own;
    EXPECT_EQ(missing.reply, handler.answered == Type::kOwnOrSilence ? "untouched"
                             : echoes                                ? R"({"result":1})"
                                                                     : own);
    EXPECT_EQ(effects(), handler.always) << own;
  }
  EXPECT_THAT(board::log(), IsEmpty());
}

// Lets a handler die of writing its reply.
void run_up_to_the_reply(CommandHandler handler, const std::string& request) {
  constexpr int kDiedWriting = 77;
  void* out = mmap(nullptr, ZELTO_REPLY_SIZE, PROT_READ, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  ASSERT_NE(out, MAP_FAILED);
  const pid_t child = fork();
  if (child == 0) {
    static_cast<void>(signal(SIGSEGV, [](int) { _exit(kDiedWriting); }));
    handler(request.c_str(), static_cast<char*>(out));
    _exit(0);
  }
  int status = -1;
  EXPECT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(WEXITSTATUS(status), kDiedWriting) << request;
  munmap(out, ZELTO_REPLY_SIZE);
}

TEST_F(Envelope, CommandsRunOnTheirSideOfTheReply) {
  const struct {
    CommandHandler handler;
    std::string request;
    bool runs_before;
  } cases[] = {
      {bs_SetWifiStat, R"({"type":"setswitchwifi","radioon":1})", true},
      {bs_Set5WifiStat, R"({"type":"set5switchwifi","radioon":0})", true},
      {bs_SetWifiSwitchAll, R"({"type":"setAllswitch","radioon":1})", true},
      {bs_SetAdvChannel, R"({"type":"set2channel"})", true},
      {bs_Set5AdvChannel, R"({"type":"set5channel"})", true},
      {bs_SetWifiMode, R"({"twoWifiMode":2,"fiveWifiMode":2})", true},
      {bs_SetWifiAll, R"({"type":"setwlancfgall"})", false},
      {bs_SetWlanCfg, R"({"type":"setwlancfg"})", false},
      {bs_Set5WlanCfg, R"({"type":"set5wlancfg"})", false},
      {bs_SetChannelAll, R"({"type":"setchannelall"})", false},
      {bs_SetVisitorInfo, R"({"type":"setvisitorinfo"})", false},
      {bs_SetVisitor5Info, R"({"type":"setvisitor5info"})", false},
      {bs_SetPaMode, R"({"type":"setpamode"})", false},
      {bs_SetPa5Mode, R"({"type":"setpa5mode"})", false},
  };
  for (const auto& c : cases) {
    run_up_to_the_reply(c.handler, c.request);
    const auto before = effects();
    call(c.handler, c.request.c_str());
    const auto all = effects();
    EXPECT_THAT(all, HasSubstr("start wifi_setup.sh ")) << c.request;
    EXPECT_EQ(before, c.runs_before ? all : "") << c.request;
  }
}

TEST_F(Envelope, RefusesWhatCannotBeStoredBeforeTheFirstStore) {
  const std::string guests =
      R"("list":[{"type":"2.4g","Switch":1,"ssid":"a","pwd":"b","ssid_hide":"0",)"
      R"("encryption":"x"},{"type":"5g","Switch":1,"ssid":"a","encryption":"x",)";
  const struct {
    std::string type;
    std::string members;
    std::string always = "";
  } cases[] = {
      {"setwlancfgall", R"("wlanssid":"fine","wlanpsw_5":"a\nb")"},
      {"setwlancfgall", R"("wlanpsw":"fine","wlanssid_5":"a\rb")"},
      {"setwlancfgall", R"("wlanssid":"fine","dualSwitch":"1\n")"},
      {"setwlancfg", R"("wlanssid":"fine","wlanpsw":"a\nb")"},
      {"set5wlancfg", R"("wlan5psw":"fine","wlan5ssid":")" + std::string(100, 'x') + "\""},
      {"set2gswitch", R"("radioon":"1\n")"},
      {"setAllswitch", R"("radioon":"1;0")"},
      {"sethideall", R"("enable":"1;1")"},
      {"sethide5", R"("enable":"12345678")"},
      {"set2channel", R"("channel":6,"countrycode":"U\nS")"},
      {"setchannelall", R"("channel":"6","htbw_5":"1\n")",
       "start wifi_setup.sh wifi_model;wifi_setup.sh wifi_channel all &"},
      {"setvisitor5info", R"("g5ssidenable":1,"g5ssid":"fine","g5psw":"a\nb")",
       "start wifi_setup.sh wifi_guest_arguments 5.8G &"},
      {"multi_ssid_apply", guests + R"("ssid_hide":"0","pwd":"b\n"}])"},
      {"multi_ssid_apply", guests + R"("ssid_hide":"1;1","pwd":"b"}])"},
      {"wifi_schedule_apply", R"("action":"add","period":"22:00\n06:00","week":"12345")"},
      {"wifi_schedule_switch", R"("Switch":"1\n")"},
  };
  std::size_t refused = 0;
  for (const auto& c : cases) {
    EXPECT_EQ(effects(command(c.type, c.members), failed(c.type)), c.always) << c.members;
    EXPECT_THAT(board::log(), testing::SizeIs(++refused)) << c.members;
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
    ask(command("setwlancfgall", R"("wlanssid")" + value + R"(,"wlanpsw_5")" + value));
    ask(command("setwlancfg", R"("wlanpsw")" + value));
    ask(command("set5wlancfg", R"("wlan5ssid")" + value));
    for (const auto* band : kBands) {
      const std::string names = R"("gssid")" + value + R"(,"gpsw")" + value;
      ask((*band)(command("setvisitorinfo", R"("gssidenable":1,)" + names)));
      EXPECT_EQ(ask((*band)(command("getvisitorinfo", ""))),
                (*band)(command("getvisitorinfo", R"("gssidenable":1,)" + names)));
      EXPECT_THAT(ask(command("getwlancfgall", "")),
                  HasSubstr(R"("wlanssid")" + value + R"(,"wlanpswencry":"aes",)"));
      ask((*band)(command("setswitchwifi", R"("radioon":0)")));
      EXPECT_NE(driver(*band, "SSID1", kWhole), text);
      ask((*band)(command("setswitchwifi", R"("radioon":1)")));
      for (const char* key : {"SSID1", "WPAPSK1", "SSID2", "WPAPSK2"}) {
        EXPECT_EQ(driver(*band, key, kWhole), text);
      }
    }
  }
  board::settle();
  EXPECT_FALSE(std::filesystem::exists("/ran"));
}

}  // namespace
