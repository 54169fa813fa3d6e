// The networks around, the joined one, and the front page's status.

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <chrono>
#include <future>
#include <thread>

#include <zelto/network.h>
#include <zelto/zeltoapi.h>

#include "support/effects.h"
#include "support/router_test.h"

namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using zelto_test::ask;
using zelto_test::call;
using zelto_test::expect_effects;
using zelto_test::Lines;

constexpr const char* kScan = R"({"type":"getrepeaterinfo"})";
constexpr const char* kFailed = R"({"type":"getrepeaterinfo","result":1})";

const std::string kClientsUp = "run ifconfig {apcli0, apclii0} up\n";
const std::string kSurvey =
    "uci set system.route.7663_wifi_scan=1\nrun ifconfig rai0 up\n"
    "start iwpriv apcli0 set PartialScanNumOfCh=1;iwpriv apcli0 set PartialScan=1;sleep 20;"
    "iwpriv apcli0 get_site_survey > /tmp/2G_list &\n"
    "start iwpriv apclii0 set PartialScanNumOfCh=2;iwpriv apclii0 set PartialScan=1;sleep 20;"
    "iwpriv apclii0 get_site_survey > /tmp/5G_list &\n";
const std::string kCleanUp =
    "uci set system.route.7663_wifi_scan=0\nrun iwpriv {apcli0, apclii0} set PartialScan=0\n";

// One network, as drivers print it and as replies show it.
struct Network {
  std::string ssid = "Home";
  int signal = 50;
  int channel = 6;
  std::string bssid = "02:bb:00:00:00:01";
  std::string security = "WPA2PSK/AES";
  std::string extension = "ABOVE";

  std::string line() const {
    char text[256] = "";
    std::snprintf(text, sizeof text, "%-4d%-33s%-19s %-22s %-8d %-8s %-6s %-3s%-3s\n", channel,
                  ssid.c_str(), bssid.c_str(), security.c_str(), signal, "11b/g/n",
                  extension.c_str(), "In", "NO");
    return text;
  }
  // `name` is the SSID in JSON, where it differs.
  std::string entry(const std::string& band, const std::string& name = "") const {
    return R"({"channel":)" + std::to_string(channel) + R"(,"ssid":")" +
           (name.empty() ? ssid : name) + R"(","bssid":")" + bssid + R"(","security":")" +
           security + R"(","signal":)" + std::to_string(signal) + R"(,"ext_ch":")" + extension +
           R"(","wifi_type":")" + band + "\"}";
  }
};

// The 5 GHz driver numbers the lines, and prints one line more above them.
void given_air(const std::string& lines_2g, const std::string& lines_5g) {
  board::write_file("/var/board/survey-apcli0", "\nCh  SSID\n" + lines_2g);
  std::string numbered;
  for (std::size_t at = 0; at < lines_5g.size(); at = lines_5g.find('\n', at) + 1) {
    numbered += "1   " + lines_5g.substr(at, lines_5g.find('\n', at) + 1 - at);
  }
  board::write_file("/var/board/survey-apclii0", "\nTotal=2\nNo  Ch  SSID\n" + numbered);
}

std::string list_of(const Lines& entries) {
  std::string text = R"({"type":"getrepeaterinfo","list":[)";
  for (const auto& entry : entries) text += (&entry == &entries.front() ? "" : ",") + entry;
  return text + "]}";
}

class Survey : public zelto_test::RouterTest {
 protected:
  static void expect_no_files() {
    for (const char* file : {"/tmp/2G_list", "/tmp/5G_list"}) {
      EXPECT_EQ(board::quiet({"test", "-e", file}), 1) << file;
    }
  }
};

TEST_F(Survey, ListsTheBoardsAir) {
  const auto* const office = R"({"channel":149,"ssid":"Office","bssid":"02:bb:00:00:00:12",)"
                             R"("security":"WPA3PSK/AES","signal":83,"ext_ch":"ABOVE",)"
                             R"("wifi_type":"5.8G"})";
  const std::string stop_2g = "run iwpriv apcli0 {ap_scan_running, set ApCliAutoConnect=0}\n";
  const std::string stop_5g = "run iwpriv apclii0 set ApCliAutoConnect=0\n";
  const struct {
    const char* mode;
    std::optional<std::string> band;
    std::string stop;
  } cases[] = {
      {"router", "2.4G", ""},        {"AP", "2.4G", ""},
      {"wisp", "2.4G", stop_2g},     {"wisp", "5.8G", stop_5g},
      {"repeater", "2.4G", stop_2g}, {"repeater", {}, stop_5g},
  };
  for (const auto& c : cases) {
    board::reset();
    // Only the mode's own band counts.
    given("internet", "wisp", "wisp_type", "x");
    given("internet", "repeater", "repeater_type", "x");
    if (!c.stop.empty()) given("internet", c.mode, (c.mode + std::string("_type")).c_str(), c.band);
    given_mode(c.mode);
    EXPECT_EQ(
        ask(kScan),
        list_of({Network{"Neighbour", 78}.entry("2.4G"),
                 Network{"Cafe Upstairs", 41, 11, "02:bb:00:00:00:02", "OPEN/NONE", "BELOW"}.entry(
                     "2.4G"),
                 office, Network{"Neighbour-5G", 65, 36, "02:bb:00:00:00:11"}.entry("5.8G")}));
    expect_effects(kClientsUp + c.stop + kSurvey + kCleanUp, c.mode);
    expect_no_files();
  }
}

TEST_F(Survey, ReadsNamesByColumn) {
  const std::string full(33, 'f');
  const struct {
    std::string name;
    std::string shown;  // empty: not taken
  } cases[] = {
      {full, full},  // nothing cut yet: the whole field
      {"Cafe  Upstairs", "Cafe  Upstairs"},
      {full, full.substr(0, 14)},  // ends where the name above did
      {"Half full " + std::string(23, 'h'), "Half full"},
      {"", ""},
      {" leading", ""},
      {std::string(32, 'n'), std::string(32, 'n')},
      {"Caf\xc3\xa9 \xe2\x98\x95", "Caf\xc3\xa9 \xe2\x98\x95"},
      {"latin \xe9", "latin \xef\xbf\xbd"},
      {R"x(";$(touch /tmp/owned);")x", R"x(\";$(touch /tmp/owned);\")x"},
      {"'`touch /tmp/owned`\\", R"x('`touch /tmp/owned`\\)x"},
      {"bell\x07 tab\t escape\x1b[2J", R"x(bell\u0007 tab\t escape\u001b[2J)x"},
      {"%s%n%n", "%s%n%n"},
  };
  for (const std::string band : {"2.4G", "5.8G"}) {
    std::string air = "\n";
    Lines shown;
    for (const auto& c : cases) {
      air += Network{c.name}.line();
      if (!c.shown.empty()) shown.push_back(Network{}.entry(band, c.shown));
    }
    band == "2.4G" ? given_air(air, "") : given_air("", air);
    EXPECT_EQ(ask(kScan), list_of(shown));
    EXPECT_EQ(board::quiet({"test", "-e", "/tmp/owned"}), 1);
  }
}

TEST_F(Survey, TakesOddLinesForWhatTheyAre) {
  const std::string whole = Network{"Cut", 78}.line();
  const std::size_t signal_column = whole.find("78");
  const std::size_t extension_column = whole.find("ABOVE");
  std::string air = "no line of a survey\nx   " + whole.substr(4);  // no channel
  Lines entries;
  for (std::size_t length = 0; length < whole.size(); ++length) {
    air += whole.substr(0, length) + "\n";
    if (length <= signal_column) continue;
    Network cut{"Cut", length == signal_column + 1 ? 7 : 78};
    cut.extension =
        length <= extension_column ? "" : cut.extension.substr(0, length - extension_column);
    entries.push_back(cut.entry("2.4G"));
  }
  std::rotate(entries.begin(), entries.begin() + 1, entries.end());  // the weak one comes last
  const Network long_words{"Long", -4, 1, std::string(30, 'b'), std::string(40, 's'), "extension"};
  const Network cut_words{"Long", -4, 1, std::string(23, 'b'), std::string(23, 's'), "extensi"};
  for (const auto& network : {cut_words, Network{"Far", -90}, Network{"Equal", -90}}) {
    entries.push_back(network.entry("5.8G"));
  }
  given_air(air, Network{"Far", -90}.line() + long_words.line() + Network{"Equal", -90}.line());
  EXPECT_EQ(ask(kScan), list_of(entries));
}

TEST_F(Survey, ACrowdedBandKeepsTheStrongestThatFit) {
  constexpr std::size_t kCrowd = 300;
  constexpr std::size_t kTaken = 255;
  for (const std::string band : {"2.4G", "5.8G"}) {
    std::string air;
    std::vector<Network> taken;
    for (std::size_t i = 0; i < kCrowd; ++i) {
      Network network{"N" + std::to_string(i), static_cast<int>(i % 7)};
      if (i == kTaken - 1) network.signal = 99;  // the last that is taken
      if (i == kTaken) network.signal = 100;
      air += Network{""}.line() + network.line();
      if (i < kTaken) taken.push_back(network);
    }
    std::stable_sort(taken.begin(), taken.end(),
                     [](const auto& a, const auto& b) { return a.signal > b.signal; });
    // The other band's networks come behind, or none of them.
    band == "2.4G" ? given_air(air, Network{"Other", 99}.line()) : given_air("", air);
    const auto reply = ask(kScan);
    Lines shown;
    for (const auto& network : taken) {
      shown.push_back(network.entry(band));
      if (list_of(shown).size() > reply.size()) break;
    }
    constexpr std::size_t kReserve = 64;
    EXPECT_GT(list_of(shown).size(), ZELTO_REPLY_SIZE - kReserve) << "one more would have fitted";
    shown.pop_back();
    EXPECT_EQ(reply, list_of(shown));
    EXPECT_LT(reply.size(), std::size_t{ZELTO_REPLY_SIZE});
    EXPECT_THAT(board::log(),
                ElementsAre("<3>the reply of getrepeaterinfo is too long and was cut!"));
    board::reset();
  }
}

TEST_F(Survey, SortsNoMoreThanThereAre) {
  const auto list = std::make_unique<ScanList>();
  for (const int count : {-5, 0, 100, 1000}) {
    for (int i = 0; i < ZELTO_SCAN_CAPACITY; ++i) list->records[i].signal = i;
    list->count = count;
    sort_scan_list(list.get());
    const int used = std::clamp(count, 0, ZELTO_SCAN_CAPACITY);
    for (int i = 0; i < ZELTO_SCAN_CAPACITY; ++i) {
      EXPECT_EQ(list->records[i].signal, i < used ? used - 1 - i : i);
    }
  }
  sort_scan_list(nullptr);
}

TEST_F(Survey, AsksWhetherAScanRuns) {
  const std::pair<const char*, int> cases[] = {
      {R"(apcli0 ap_scan_running:\n1\n)", 1},
      {R"(1\n0\n1\n)", 0},
      {R"(x\n12 y)", 12},
      {R"(x\ny\n)", 0},
      {"", 0},
  };
  for (const auto& [answer, running] : cases) {
    board::write_file("/usr/sbin/iwpriv", std::string("#!/bin/sh\nprintf '") + answer + "'\n");
    EXPECT_EQ(check_ap_scan_running(), running) << answer;
  }
  const zelto_test::NoDescriptors none;
  EXPECT_EQ(check_ap_scan_running(), -1);
}

TEST_F(Survey, WaitsForOthersButNotForEver) {
  given("system", "route", "wifi_do_action", "1");
  auto begin = std::chrono::steady_clock::now();
  EXPECT_EQ(ask(kScan), kFailed);
  EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(600)) << "sixty seconds";
  expect_effects(kClientsUp + kCleanUp, "others at work for ever");

  board::clear_journal();
  std::thread others([] {
    std::this_thread::sleep_for(milliseconds(200));
    easy_uci_set_option_string("system", "route", "wifi_do_action", "0");
  });
  EXPECT_NE(ask(kScan), kFailed);
  others.join();
  expect_effects(kClientsUp + "uci set system.route.wifi_do_action=0\n" + kSurvey + kCleanUp,
                 "others done");

  EXPECT_THAT(board::log(), IsEmpty());
  given("system", "route", "wifi_do_action", std::nullopt);
  EXPECT_NE(ask(kScan), kFailed);
  EXPECT_THAT(board::log(), ElementsAre("<3>get system.route.wifi_do_action failed!"));
}

TEST_F(Survey, WaitsForTheFilesButNotForEver) {
  const std::pair<const char*, const char*> cases[] = {{"apcli0", "2G"}, {"apclii0", "5G"}};
  for (const auto& [interface, name] : cases) {
    board::reset();
    board::remove_file(std::string("/var/board/survey-") + interface);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(ask(kScan), kFailed);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, milliseconds(500)) << "20 and 30 seconds";
    expect_effects(kClientsUp + kSurvey + kCleanUp, name);
    EXPECT_THAT(board::console(),
                MatchesRegex(std::string("zeltoapi.c:bs_GetApcliScanInfo:[0-9]+:fopen /tmp/") +
                             name + "_list failed!\n\n"));
    expect_no_files();
  }
  board::reset();
  board::write_file(
      "/usr/sbin/iwpriv",
      "#!/bin/sh\ncase $2 in get_site_survey) /bin/sleep 15; cat /var/board/survey-$1;; "
      "esac\n");
  EXPECT_NE(ask(kScan), kFailed) << "late, but there";
}

TEST_F(Survey, CleansUpWhateverWasAskedFor) {
  const struct {
    const char* request;
    std::string effects;
  } cases[] = {{R"({"type":"getconnetsta"})", kClientsUp + kCleanUp},
               {R"({"type":1})", kCleanUp},
               {"{}", kCleanUp}};
  for (const auto& c : cases) {
    board::reset();
    board::write_file("/tmp/2G_list", "old");
    EXPECT_EQ(call(bs_GetApcliScanInfo, c.request).reply, kFailed);
    expect_effects(c.effects, c.request);
    expect_no_files();
  }
  board::reset();
  for (auto* const handler : {bs_GetApcliScanInfo, bs_ConnetSta}) {
    EXPECT_EQ(call(handler, "{").status, -1);
    EXPECT_EQ(call(handler, "{").reply, "untouched");
  }
  EXPECT_THAT(board::journal(), IsEmpty());
  EXPECT_THAT(board::console(),
              MatchesRegex("(zeltoapi.c:bs_GetApcliScanInfo:[0-9]+:json data is NULL!\n\n){2}"
                           "(zeltoapi.c:bs_ConnetSta:[0-9]+:json data is NULL!\n\n){2}"));
}

TEST_F(Survey, NamesTheJoinedNetwork) {
  given("internet", "wisp", "ApCliSsid", "Up \"one\"");
  given("internet", "repeater", "ApCliSsid", "Up two");
  given("system", "route", "superior_bssid", "02:bb:00:00:00:01");
  const std::string mac = R"(","mac":"02:bb:00:00:00:01"})";
  const std::pair<const char*, std::string> cases[] = {
      {"wisp", R"("ssid":"Up \"one\")" + mac},
      {"repeater", R"("ssid":"Up two)" + mac},
      {"router", R"("ssid":"NULL","mac":"NULL"})"},
      {"WISP", R"("ssid":"NULL","mac":"NULL"})"},
  };
  for (const auto& [mode, members] : cases) {
    given_mode(mode);
    EXPECT_EQ(ask(R"({"type":"getconnetsta"})"), R"({"type":"getconnetsta",)" + members);
  }
  given("system", "route", "superior_bssid", std::nullopt);
  given_mode("wisp");
  EXPECT_THAT(ask(R"({"type":"getconnetsta"})"), testing::EndsWith(R"(,"mac":""})"));
  given("system", "route", "operationmode", std::nullopt);
  EXPECT_EQ(ask(R"({"type":"getconnetsta"})"), R"({"type":"getconnetsta","result":1})");
  EXPECT_THAT(board::console(),
              MatchesRegex("zeltoapi.c:bs_ConnetSta:[0-9]+:uci get system.route.operationmode "
                           "failed!\n\n"));
}

TEST_F(Survey, ShowsTheFrontPagesStatus) {
  board::set_address("eth0.2", "10.20.30.40");
  board::write_file("/tmp/wan_speed_file", "128 16\n");
  board::write_file("/tmp/terminal_list", "one\ntwo\nthree\n");
  board::write_file("/tmp/online_file", "online\n");
  const std::string load =
      R"(.+"uptime":"[0-9]+:[0-9]+:[0-9]+:[0-9]+","cpu":"[0-9]+%?","downspeed":"16",)"
      R"("upspeed":"128",)";
  const struct {
    std::optional<std::string> version;
    const char* mode;
    const char* links;
    std::string end;
  } cases[] = {
      {"R1,1.0.3,x\r\n", "router", "20",
       R"("operationmode":"router","ternum":3,"ver":"1.0.3","wanstatus":"link","netstatus":"link".)"},
      {"R1,1.0.3\r\n", "AP", "1f",
       R"("operationmode":"AP","ternum":3,"ver":"1.0.3","wanstatus":"unlink","netstatus":"link".)"},
      {{}, "wisp", "20", R"("operationmode":"wisp","ternum":3,"result":1.)"},
  };
  for (const auto& c : cases) {
    board::remove_file("/etc/FW-Version");
    if (c.version) board::write_file("/etc/FW-Version", *c.version);
    board::write_file("/var/board/switch-83", c.links);
    given_mode(c.mode);
    EXPECT_THAT(ask(R"({"type":"getrouterstatus"})"), MatchesRegex(load + c.end));
  }
  given_mode("router");
  const std::string begin = R"({"type":"getrouterstatus","wanip":")";
  EXPECT_THAT(ask(R"({"type":"getrouterstatus"})"), testing::StartsWith(begin + "10.20.30.40\""));
  given("system", "route", "operationmode", std::nullopt);
  board::set_address("eth0.2", "");
  board::remove_file("/tmp/wan_speed_file");
  EXPECT_THAT(ask(R"({"type":"getrouterstatus"})"),
              MatchesRegex(".+\"wanip\":\"\",.+\"operationmode\":\"router\",.+"));
  EXPECT_EQ(call(bs_GetRouteStatus, "{}").reply, R"({"type":"getrouterstatus","result":1})");
  EXPECT_EQ(call(bs_GetRouteStatus, "{").status, 0);
}

TEST_F(Survey, CountsTerminalsUnderTheirLock) {
  const std::pair<const char*, int> cases[] = {{"a\nb\n", 2}, {"a\nb", 2}, {"", 0}};
  for (const auto& [content, count] : cases) {
    board::write_file("/tmp/terminal_list", content);
    EXPECT_EQ(terminalnumber(), count);
  }
  const int lock = open("/etc/terminal_lock_file", O_RDWR | O_CLOEXEC);
  ASSERT_EQ(flock(lock, LOCK_EX), 0);
  auto counted = std::async(std::launch::async, terminalnumber);
  EXPECT_EQ(counted.wait_for(milliseconds(50)), std::future_status::timeout);
  board::write_file("/tmp/terminal_list", "1\n2\n3\n");
  close(lock);
  EXPECT_EQ(counted.get(), 3);

  board::remove_file("/tmp/terminal_list");
  EXPECT_EQ(terminalnumber(), 0);
  board::write_file("/tmp/terminal_list", "a\n");
  board::remove_file("/etc/terminal_lock_file");
  board::write_file("/etc/terminal_lock_file/is/a/folder", "");
  EXPECT_EQ(terminalnumber(), 0);
}

}  // namespace
