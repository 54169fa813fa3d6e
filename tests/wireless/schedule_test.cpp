// The Wi-Fi schedule, and with it the library's list files.

#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <sstream>

#include "wireless/wireless_test.h"

namespace zelto_test {
namespace {

constexpr const char* kPath = "/etc/wifi_schedule_list";
constexpr const char* kReplace =
    "run rm -rf /etc/wifi_schedule_list;mv /tmp/wifi_schedule_list /etc/wifi_schedule_list";
const std::string kDone = done("wifi_schedule_apply");
const std::string kFailed = failed("wifi_schedule_apply");

class Schedule : public WirelessTest {
 protected:
  static void given_list(const std::string& content) { board::write_file(kPath, content); }
};

std::string change(const std::string& action, const std::string& period, const std::string& week) {
  return command("wifi_schedule_apply", R"("action":")" + action + R"(","period":")" + period +
                                            R"(","week":")" + week + "\"");
}

std::string shown(const std::string& state, const std::string& entries) {
  return command("wifi_schedule", R"("Switch":")" + state + R"(","list":[)" + entries + "]");
}

TEST_F(Schedule, ReadsTheList) {
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {"22:00-06:00 1,2\n12:00-13:00 7\n",
       R"({"period":"22:00-06:00","week":"1,2"},{"period":"12:00-13:00","week":"7"})"},
      // A line of 13 characters, its end included, is an entry, a shorter one is none.
      {"1:00-2:00 67\n1:00-2:00 6\n\nx\n", R"({"period":"1:00-2:00","week":"67"})"},
      // The last character goes, whatever it is.
      {"1:00-2:00 678", R"({"period":"1:00-2:00","week":"67"})"},
      {"1:00-2:00 67", ""},
      {"  1:00-2:00   67  x\nalonealonealone\n",
       R"({"period":"1:00-2:00","week":"67"},{"period":"alonealonealone","week":""})"},
  };
  for (const auto& [content, entries] : cases) {
    given_list(content);
    EXPECT_EQ(ask(R"({"type":"wifi_schedule"})"), shown("0", entries));
  }
  board::remove_file(kPath);
  EXPECT_EQ(set("wifi_schedule_switch", R"("Switch":"on")"), "uci wifi_schedule=on");
  EXPECT_EQ(
      effects(command("wifi_schedule_switch", R"("Switch":1)"), failed("wifi_schedule_switch")),
      "");
  EXPECT_EQ(ask(R"({"type":"wifi_schedule"})"), shown("on", ""));
  given_route("wifi_schedule", std::nullopt);
  EXPECT_EQ(ask(R"({"type":"wifi_schedule"})"), shown("0", ""));
  EXPECT_THAT(board::log(), IsEmpty());
}

TEST_F(Schedule, AddsOnceAndDeletesAllThatEqual) {
  const std::tuple<const char*, std::string, std::string> cases[] = {
      {"add", "", "22:00-06:00 135\n"},
      {"add", "1:00-2:00 67\nshort\n", "1:00-2:00 67\nshort\n22:00-06:00 135\n"},
      {"add", "22:00-06:00 135\n", "22:00-06:00 135\n"},
      {"add", "22:00-06:00 1357\n", "22:00-06:00 1357\n22:00-06:00 135\n"},
      // Behind a line without an end.
      {"add", "1:00-2:00 678", "1:00-2:00 678\n22:00-06:00 135\n"},
      {"del", "22:00-06:00 135\n1:00-2:00 67\n22:00-06:00 135\n", "1:00-2:00 67\n"},
      // Lines too short to be an entry go with it.
      {"remove", "x\n1:00-2:00 67\n\n", "1:00-2:00 67\n"},
      {"ADD", "22:00-06:00  135\n22:00-06:00 1357\n", "22:00-06:00  135\n22:00-06:00 1357\n"},
      {"", "22:00-06:00 135\n", ""},
  };
  for (const auto& [action, before, after] : cases) {
    given_list(before);
    EXPECT_EQ(effects(change(action, "22:00-06:00", "135"), kDone),
              action == std::string("add") ? "" : kReplace);
    EXPECT_EQ(board::read_file(kPath), after) << before;
    EXPECT_TRUE(std::filesystem::exists(kPath)) << before;
  }
  EXPECT_THAT(board::log(), IsEmpty());
}

TEST_F(Schedule, AddsOnlyWhatItsReadersWouldFind) {
  const std::pair<std::string, std::string> cases[] = {
      {"22:00 06:00", "12345"},     {"22:00-06:00", "1 2 3"},     {"22:00-06:00", ""},
      {"", "1234567890123"},        {std::string(24, '2'), "1"},  {"22:00-06:00", "1\\t2"},
      {"22:00-06:00", "123\\n456"}, {"22", std::string(24, '1')}, {"1:00-2:00", "6"},
  };
  for (const auto& [period, week] : cases) {
    EXPECT_EQ(ask(change("add", period, week)), kFailed) << period << " " << week;
  }
  for (const char* members :
       {R"("period":"22:00-06:00","week":"12345")", R"("action":"add","period":"22:00-06:00")",
        R"("action":1,"period":"22:00-06:00","week":"12345")"}) {
    EXPECT_EQ(ask(command("wifi_schedule_apply", members)), kFailed) << members;
  }
  EXPECT_EQ(board::read_file(kPath), "");
  const std::string longest(23, '2');
  EXPECT_EQ(ask(change("add", longest, longest)), kDone);
  EXPECT_EQ(ask(change("add", "1:00-2:00", "67")), kDone);
  EXPECT_EQ(board::read_file(kPath), longest + " " + longest + "\n1:00-2:00 67\n");
}

TEST_F(Schedule, TellsWhichFileFailedAndKeepsTheList) {
  const std::string content = "22:00-06:00 135\n1:00-2:00 67\n";
  const auto add = change("add", "22:00-06:00", "1");
  const auto del = change("del", "22:00-06:00", "135");
  given_list(content);
  ask(R"({"type":"wifi_schedule_switch","Switch":"\n"})");  // the log keeps its socket
  const auto descriptors = open_descriptors();

  ASSERT_EQ(mount(kPath, kPath, nullptr, MS_BIND, nullptr), 0);
  ASSERT_EQ(mount(nullptr, kPath, nullptr, MS_REMOUNT | MS_BIND | MS_RDONLY, nullptr), 0);
  EXPECT_EQ(ask(change("add", "22:00-06:00", "135")), kDone) << "nothing to write";
  EXPECT_EQ(ask(add), kFailed);
  ASSERT_EQ(umount(kPath), 0);
  std::filesystem::create_directory("/tmp/wifi_schedule_list");
  EXPECT_EQ(effects(del, kFailed), "");
  std::filesystem::remove("/tmp/wifi_schedule_list");
  ASSERT_EQ(mount("full", "/tmp", "tmpfs", 0, "size=4k"), 0);
  board::write_file("/tmp/filler", std::string(4096, 'x'));
  EXPECT_EQ(effects(del, kFailed), "");
  ASSERT_EQ(umount("/tmp"), 0);
  EXPECT_EQ(board::read_file(kPath), content);

  board::remove_file(kPath);
  EXPECT_EQ(ask(add), kFailed);
  EXPECT_EQ(effects(del, kFailed), "");
  EXPECT_FALSE(std::filesystem::exists(kPath));
  EXPECT_THAT(board::log(), ElementsAre("<3>wifi_schedule_switch: a value does not fit!",
                                        "<3>fopen /etc/wifi_schedule_list for add error!",
                                        "<3>fopen /tmp/wifi_schedule_list for write error!",
                                        "<3>fopen /tmp/wifi_schedule_list for write error!",
                                        "<3>fopen /etc/wifi_schedule_list for read error!",
                                        "<3>fopen /etc/wifi_schedule_list for read error!"));
  EXPECT_EQ(open_descriptors(), descriptors);
}

// Each process adds entries of its own and takes every other one away again.
TEST_F(Schedule, ManyAtOnceLoseNothing) {
  constexpr int kRounds = 6;
  std::vector<pid_t> children;
  std::vector<std::string> expected;
  for (const std::string process : {"1:0", "2:0", "3:0", "4:0", "5:0", "6:0"}) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    bool succeeded = true;
    for (int round = 0; round < kRounds; ++round) {
      const auto period = process + std::to_string(round) + "-06:00";
      if (round % 2 == 0) expected.push_back(period + " 12345");
      if (child != 0) continue;
      succeeded &= ask(change("add", period, "12345")) == kDone;
      if (round % 2 == 1) succeeded &= ask(change("del", period, "12345")) == kDone;
    }
    if (child == 0) _exit(succeeded ? 0 : 1);
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = -1;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  std::vector<std::string> found;
  std::istringstream list(board::read_file(kPath));
  for (std::string line; std::getline(list, line);) found.push_back(line);
  EXPECT_THAT(found, testing::UnorderedElementsAreArray(expected));
}

}  // namespace
}  // namespace zelto_test
