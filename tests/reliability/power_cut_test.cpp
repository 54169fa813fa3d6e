// What is left of a file when its writer is killed before any of its system calls, when everything
// ends at once, and when the disk is full or nothing more can be opened at any moment.
#include <dirent.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>

#include <platform/wifi_conf.h>

#include "gateway/sessions.h"
#include "reliability/traced.h"
#include "support/requests.h"
#include "support/router_test.h"

namespace reliability {
namespace {

namespace fs = std::filesystem;
using testing::Contains;
using zelto_test::ask;
using zelto_test::command;

constexpr int kMostPoints = 12;

// The content of every file that may be written; a missing one has none.
using Files = std::map<std::string, std::string>;

Files all_files() {
  Files files;
  for (const char* folder : {"/etc", "/mnt", "/tmp"}) {
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
      if (entry.is_regular_file()) files[entry.path()] = board::read_file(entry.path());
    }
  }
  return files;
}

void restore(const Files& files) {
  for (const auto& [path, content] : all_files()) {
    if (!files.contains(path)) fs::remove(path);
  }
  for (const auto& [path, content] : files) {
    if (!fs::exists(path) || board::read_file(path) != content) board::write_file(path, content);
  }
}

std::optional<std::string> at(const Files& files, const std::string& path) {
  const auto found = files.find(path);
  return found == files.end() ? std::nullopt : std::optional(found->second);
}

// How a list gets into its place: by the firmware's command, which may take the old one away first.
enum class Move { kNone, kMoved, kRemovedFirst };

// A kind of writing, which can be done again and then leaves the same.
struct Writing {
  const char* name;
  std::function<bool()> before;  // what it finds
  std::function<bool()> action;
  std::vector<std::string> files;  // each of them is to be whole, in its old or in its new state
  Move move = Move::kNone;
  bool tells = true;  // whether the reply says what became of it
};

std::function<bool()> request(const std::string& type, const std::string& members) {
  return [=] { return ask(command(type, members)).ends_with("\"result\":0}"); };
}

const auto kNothing = [] { return true; };
const std::string kDevice = R"("mac":"02:AA:00:00:00:01")";
const std::string kRule = R"("cfg_type":"add","mac":"02:AA:00:00:00:01","day":"7","alias":"a")";
const std::string kMapping = R"("enable":1,"name":"a","list0":"1,2,TCP","ip":")";
const std::string kLimit = R"("IP":"192.168.10.9","MAC":"02:AA:00:00:00:01","Dl_Speed":"5")";
const std::string kRestart = R"("week":"1111111","timing":"03:00")";
const std::string kTime = R"("week":"1111111","period":"01:00-02:00")";

const Writing kWritings[] = {
    {"option set",
     kNothing,
     [] { return easy_uci_set_option_string("network", "lan", "ipaddr", "10.0.0.1") == 0; },
     {"/etc/config/network"}},
    {"option deleted",
     kNothing,
     [] { return easy_uci_set_option_string("network", "lan", "ipaddr", "") == 0; },
     {"/etc/config/network"}},
    {"section added",
     kNothing,
     [] { return easy_uci_add_section("network", "t", "s") == 0; },
     {"/etc/config/network"}},
    {"first section of a package",
     kNothing,
     [] { return easy_uci_add_section("fresh", "t", "s") == 0; },
     {"/etc/config/fresh"}},
    {"radio key",
     kNothing,
     [] { return lib_conf_set_2G("SSID1", -1, "other") == 0; },
     {"/etc/wireless/mt7628/mt7628.dat"}},
    {"device limited",
     request("setqos", kLimit + R"(,"Up_Speed":"1")"),
     request("setqos", kLimit + R"(,"Up_Speed":"2")"),
     {"/etc/qos_limit_list"},
     Move::kRemovedFirst},
    {"device blocked",
     kNothing,
     [] {  // anew, as one that is listed already is left alone
       ask(command("setmacblack", kDevice + R"(,"enable":0)"));
       return request("setmacblack", kDevice + R"(,"enable":1)")();
     },
     {"/etc/blacklist", "/etc/firewall.user"}},
    {"device let in",
     request("setmacblack", kDevice + R"(,"enable":1)"),
     request("setmacblack", kDevice + R"(,"enable":0)"),
     {"/etc/blacklist", "/etc/firewall.user"},
     Move::kMoved,
     /*tells=*/false},
    {"device renamed",
     request("setalias", kDevice + R"(,"alias":"old")"),
     request("setalias", kDevice + R"(,"alias":"new")"),
     {"/etc/mac_alias_list"},
     Move::kMoved},
    {"parental rule changed",
     request("setparentalinfo", kRule + R"(,"accesstime":"1-2")"),
     request("setparentalinfo", kRule + R"(,"alias_old":"a","accesstime":"3-4")"),
     {"/etc/parental_list"},
     Move::kMoved},
    {"port forwarding changed",
     request("setforwarding", kMapping + R"(192.168.10.8")"),
     request("setforwarding", kMapping + R"(192.168.10.9")"),
     {"/etc/port_forward_list"},
     Move::kMoved},
    {"Wi-Fi time added",
     kNothing,
     request("wifi_schedule_apply", R"("action":"add",)" + kTime),
     {"/etc/wifi_schedule_list"}},
    {"Wi-Fi time removed",
     request("wifi_schedule_apply", R"("action":"add",)" + kTime),
     request("wifi_schedule_apply", R"("action":"del",)" + kTime),
     {"/etc/wifi_schedule_list"},
     Move::kRemovedFirst},
    {"restart time removed",
     request("periodic_restart_apply", R"("action":"add",)" + kRestart),
     request("periodic_restart_apply", R"("action":"del",)" + kRestart),
     {"/etc/periodic_restart_list"},
     Move::kRemovedFirst},
    {"FTP account",
     request("setftpcfg", R"("ftpuser":"anna","ftppasswd":"p")"),
     request("setftpcfg", R"("ftpuser":"anna","ftppasswd":"other")"),
     {"/mnt/sda1/.ftp_user_pass"}},
    {"login at the gateway", kNothing, [] { return !gateway::start_session("").empty(); }, {}},
};

class PowerCut : public zelto_test::RouterTest, public testing::WithParamInterface<Writing> {
 protected:
  void SetUp() override {
    RouterTest::SetUp();
    board::add_usb_disk("sda1");
    ASSERT_TRUE(writing_.before());
    board::settle();
    old_ = all_files();
    ASSERT_TRUE(writing_.action());
    board::settle();
    new_ = all_files();
  }

  // Harms every call in turn, or every few of very many. `at_once`: the next writer comes while
  // what the killed one has started goes on.
  void survive(Harm harm, bool may_lose = false, bool at_once = false) {
    harm.follows = harm.follows && writing_.move != Move::kNone;
    restore(old_);
    const int calls = run_harmed(writing_.action, harm, kNone).calls;
    const int step = std::getenv("ZELTO_EVERY_POINT") == nullptr ? 1 + calls / kMostPoints : 1;
    int lost = 0;
    for (int point = 0; point < calls; point += step) {
      SCOPED_TRACE(std::string(harm.name) + " at call " + std::to_string(point));
      restore(old_);
      const auto made = run_harmed(writing_.action, harm, point);
      if (!at_once) {
        board::settle();
        if (may_lose && !at(all_files(), writing_.files.front())) {
          ++lost;
          continue;
        }
        expect_whole(all_files(), made.acknowledged && writing_.tells);
      }
      EXPECT_TRUE(writing_.action()) << "the next one";
      board::settle();
      expect_whole(all_files(), true);
    }
    std::printf("%s, %s%s: %d of %d calls, the list was lost at %d\n", writing_.name, harm.name,
                at_once ? ", next at once" : "", (calls + step - 1) / step, calls, lost);
  }

  void expect_whole(const Files& left, bool must_be_new) const {
    for (const auto& path : writing_.files) {
      const auto is = at(left, path);
      EXPECT_TRUE(is == at(new_, path) || (is == at(old_, path) && !must_be_new))
          << path << (must_be_new ? " is to be new: " : ": ") << is.value_or("missing");
    }
  }

  // What is acknowledged is on the disk: its folder is flushed last.
  void expect_flushed() const {
    restore(old_);
    const auto made = run_harmed(writing_.action, kKill, kNone);
    EXPECT_TRUE(made.acknowledged);
    for (const fs::path path : writing_.files)
      EXPECT_THAT(made.flushed, Contains(path.parent_path()));
  }

  const Writing& writing_ = GetParam();
  Files old_;
  Files new_;
};

TEST_P(PowerCut, LeavesWholeFiles) {
  expect_flushed();
  for (const auto* harm : {&kKill, &kFull, &kNoDescriptor, &kNoDescriptors}) survive(*harm);
  survive(kKill, false, /*at_once=*/true);
  const bool may_lose = writing_.move == Move::kRemovedFirst;
  survive(kStaysFull, may_lose);
  if (writing_.move != Move::kNone) survive(kPowerCut, may_lose);
}

INSTANTIATE_TEST_SUITE_P(Every, PowerCut, testing::ValuesIn(kWritings), [](const auto& writing) {
  std::string name = writing.param.name;
  std::erase_if(name, [](char c) { return c == ' ' || c == '-'; });
  return name;
});

}  // namespace
}  // namespace reliability
