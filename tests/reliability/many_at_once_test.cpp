// Many front ends at once on one router: nothing that was acknowledged is lost.
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <set>
#include <sstream>
#include <thread>

#include "support/effects.h"
#include "support/requests.h"
#include "support/router_test.h"

namespace {

using testing::HasSubstr, testing::Not;
using zelto_test::ask, zelto_test::command, zelto_test::result, zelto_test::with;

constexpr int kFrontEnds = 8;
constexpr int kDefaultSeconds = 2;

struct Command {
  const char* type;
  const char* members;
};

// A setting that one front end alone changes, all the time. TURN is the number of the change.
struct Setting {
  Command change;
  const char* getter;
  const char* seen;  // what the getter then tells
};
constexpr Setting kSettings[kFrontEnds] = {
    {{"setdmz", R"("enable":"1","ip":"192.168.10.TURN")"}, "getdmz", R"("ip":"192.168.10.TURN")"},
    {{"set_remote_manage", R"("remote_manage_port":"1TURN")"}, "get_remote_manage", R"("1TURN")"},
    {{"setpptpinfo",
      R"("Switch":"on","domain":"vpnTURN","username":"u","password":"p","MTU":"1400","netmode":"DHCP")"},
     "getpptpinfo",
     R"("vpnTURN")"},
    {{"setwlancfg", R"("wlanssid":"Home TURN")"}, "getwlancfg", R"("Home TURN")"},
    {{"set5wlancfg", R"("wlan5ssid":"Home TURN")"}, "get5wlancfg", R"("Home TURN")"},
    {{"setvisitorinfo", R"("gssidenable":1,"gssid":"Guest TURN","gpsw":"welcome!")"},
     "getvisitorinfo",
     R"("Guest TURN")"},
    {{"setvisitor5info", R"("g5ssidenable":1,"g5ssid":"Guest TURN","g5psw":"welcome!")"},
     "getvisitor5info",
     R"("Guest TURN")"},
    {{"setcwmpcfg",
      R"("enable":"1","url":"http://acs/TURN","username":"u","password":"p","manufacturer":"Z","oui":"00AABB","serial":"1")"},
     "getcwmpcfg",
     R"("http://acs/TURN")"},
};

// A list that all change. ME is the front end, ENTRY one of its entries.
struct List {
  Command add;
  Command remove;
  Command getter;
  const char* seen;
};
constexpr List kLists[] = {
    {{"setparentalinfo",
      R"("cfg_type":"add","alias":"ME.ENTRY","mac":"M","accesstime":"1-2","day":"7")"},
     {"setparentalinfo", R"("cfg_type":"del","alias":"ME.ENTRY")"},
     {"getparentalinfo", ""},
     R"("alias":"ME.ENTRY")"},
    {{"setmacblack", R"("mac":"02:AA:00:00:0ME:0ENTRY","enable":1)"},
     {"setmacblack", R"("mac":"02:AA:00:00:0ME:0ENTRY","enable":0)"},
     {"getblacklist", ""},
     R"("mac":"02:AA:00:00:0ME:0ENTRY")"},
    {{"setqos",
      R"("MAC":"02:AA:00:00:0ME:0ENTRY","IP":"192.168.10.9","Up_Speed":"5","Dl_Speed":"5")"},
     {"setqos", R"("MAC":"02:AA:00:00:0ME:0ENTRY","Up_Speed":"0","Dl_Speed":"0")"},
     {"getqos", R"("MAC":"ALL")"},
     R"("MAC":"02:AA:00:00:0ME:0ENTRY")"},
    {{"setforwarding", R"("enable":1,"name":"ME.ENTRY","ip":"all","list0":"1,2,TCP")"},
     {"setforwarding", R"("enable":0,"name":"ME.ENTRY")"},
     {"getforwarding", ""},
     R"("name":"ME.ENTRY")"},
    {{"wifi_schedule_apply", R"("action":"add","week":"1111111","period":"0ME:0ENTRY-09:00")"},
     {"wifi_schedule_apply", R"("action":"del","week":"1111111","period":"0ME:0ENTRY-09:00")"},
     {"wifi_schedule", ""},
     R"("0ME:0ENTRY-09:00")"},
    {{"periodic_restart_apply", R"("action":"add","week":"1111111","timing":"0ME:0ENTRY")"},
     {"periodic_restart_apply", R"("action":"del","week":"1111111","timing":"0ME:0ENTRY")"},
     {"get_periodic_restart", ""},
     R"("0ME:0ENTRY")"},
};
constexpr const char* kKept = "1";
constexpr const char* kPassing = "2";

// One front end: what it does, and what it must find from then on.
class FrontEnd {
 public:
  explicit FrontEnd(int number) : number_(number) {}

  void begin() const {
    for (const auto& list : kLists) add(list, kKept);
  }

  void turn(int turn) const {
    const auto& setting = kSettings[number_];
    const zelto_test::Words words = {{"TURN", std::to_string(turn)}};
    apply(setting.change, words);
    expect_setting(turn);
    for (const auto& list : kLists) {
      add(list, kPassing);
      apply(list.remove, entry(kPassing));
      EXPECT_THAT(told(list), Not(HasSubstr(with(list.seen, entry(kPassing)))));
    }
    // There is no command that tells an alias.
    const auto mac = with("02:AA:00:00:0ME:00", entry(kKept));
    const auto line = mac + " " + std::to_string(turn) + "\n";
    apply({"setalias", R"("mac":"MAC","alias":"TURN")"}, {{"MAC", mac}, words.front()});
  }

  // After the last turn.
  void expect_all(int turn) const {
    expect_setting(turn);
    for (const auto& list : kLists) expect_told(list, kKept);
    EXPECT_THAT(board::read_file("/etc/mac_alias_list"),
                HasSubstr(with("02:AA:00:00:0ME:00 ", entry(kKept)) + std::to_string(turn) + "\n"));
    EXPECT_THAT(board::read_file("/etc/firewall.user"),
                HasSubstr(with("-I INPUT -m mac --mac-source 02:AA:00:00:0ME:01", entry(kKept))));
  }

 private:
  zelto_test::Words entry(const char* name) const {
    return {{"ME", std::to_string(number_)}, {"ENTRY", name}};
  }

  static void apply(const Command& change, const zelto_test::Words& words) {
    EXPECT_EQ(ask(command(change.type, with(change.members, words))), result(change.type, 0));
  }

  static std::string told(const List& list) {
    return ask(command(list.getter.type, list.getter.members));
  }

  void add(const List& list, const char* name) const {
    apply(list.add, entry(name));
    expect_told(list, name);
    expect_told(list, kKept);
  }

  void expect_told(const List& list, const char* name) const {
    EXPECT_THAT(told(list), HasSubstr(with(list.seen, entry(name)))) << list.getter.type;
  }

  void expect_setting(int turn) const {
    const auto& setting = kSettings[number_];
    EXPECT_THAT(ask(command(setting.getter)),
                HasSubstr(with(setting.seen, {{"TURN", std::to_string(turn)}})));
  }

  int number_;
};

std::chrono::seconds duration() {
  const char* seconds = std::getenv("ZELTO_STRESS_SECONDS");
  return std::chrono::seconds(seconds == nullptr ? kDefaultSeconds : std::atoi(seconds));
}

class ManyAtOnce : public zelto_test::RouterTest {
 protected:
  // Lets each front end work in turn until the time is over, counting its turns.
  static void work(int number, std::chrono::steady_clock::time_point end, int& turns) {
    const FrontEnd front_end(number);
    front_end.begin();
    do {
      front_end.turn(++turns);
    } while (std::chrono::steady_clock::now() < end && !HasFailure());
  }

  static void expect_nothing_lost(const int* turns) {
    board::settle();
    int all = 0;
    for (int number = 0; number < kFrontEnds; ++number) {
      FrontEnd(number).expect_all(turns[number]);
      all += turns[number];
    }
    // Nor is anything there twice.
    std::multiset<std::string> sections;
    for (int number = 0; number < 5 * kFrontEnds; ++number) {
      const auto section = "redirect" + std::to_string(number);
      sections.insert(stored("firewall", section.c_str(), "name"));
    }
    sections.erase("(none)");
    EXPECT_EQ(sections.size(), std::size_t{kFrontEnds});
    std::set<std::string> marks;
    std::istringstream limits(board::read_file("/etc/qos_limit_list"));
    for (std::string line; std::getline(limits, line);) marks.insert(line.substr(line.rfind(' ')));
    EXPECT_EQ(marks.size(), std::size_t{kFrontEnds});
    std::printf("%d turns of 14 changes each\n", all);
  }
};

TEST_F(ManyAtOnce, ProcessesLoseNothing) {
  const auto end = std::chrono::steady_clock::now() + duration();
  auto* turns = static_cast<int*>(mmap(nullptr, kFrontEnds * sizeof(int), PROT_READ | PROT_WRITE,
                                       MAP_SHARED | MAP_ANONYMOUS, -1, 0));
  // cppcheck-suppress memleak ; nothing is mapped then
  ASSERT_NE(turns, MAP_FAILED);
  std::array<pid_t, kFrontEnds> children{};
  for (int number = 0; number < kFrontEnds; ++number) {
    children[static_cast<std::size_t>(number)] = fork();
    if (children[static_cast<std::size_t>(number)] != 0) continue;
    work(number, end, turns[number]);
    std::fflush(stdout);  // what has failed
    _exit(HasFailure() ? 1 : 0);
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  expect_nothing_lost(turns);
  munmap(turns, kFrontEnds * sizeof(int));
}

TEST_F(ManyAtOnce, ThreadsLoseNothing) {
  const auto end = std::chrono::steady_clock::now() + duration();
  std::array<int, kFrontEnds> turns{};
  std::vector<std::thread> threads;
  for (int number = 0; number < kFrontEnds; ++number) {
    threads.emplace_back(
        [&, number] { work(number, end, turns[static_cast<std::size_t>(number)]); });
  }
  for (auto& thread : threads) thread.join();
  expect_nothing_lost(turns.data());
}

}  // namespace
