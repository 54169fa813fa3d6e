// Limits on the speed of devices.

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>

#include <zelto/services.h>

#include "access/access_test.h"

namespace zelto_test {
namespace {

constexpr const char* kList = "/etc/qos_limit_list";
const std::string kMac = "02:AA:00:00:00:02";
const std::string kIp = "192.168.10.101";
const std::string kReplace =
    "run rm -rf /etc/qos_limit_list;mv /tmp/qos_limit_list /etc/qos_limit_list";
const std::string kOther = "02:BB:00:00:00:01 192.168.10.7 50 60 3\n";

class Qos : public AccessTest {
 protected:
  void SetUp() override {
    AccessTest::SetUp();
    given("system", "route", "qos_mark", "41");
    // The firmware's script in a form that keeps what it finds.
    board::write_file("/sbin/qos_rule_edit.sh",
                      "#!/bin/sh\n{ echo \"$1:\"; cat /tmp/edit_rule_file; } >> /tmp/rules\n");
    std::filesystem::permissions("/sbin/qos_rule_edit.sh", std::filesystem::perms::owner_all);
  }
  static std::string set(const std::string& up, const std::string& down,
                         const std::string& mac = kMac, const std::string& ip = kIp) {
    return ask(command("setqos", R"("MAC":")" + mac + R"(","IP":")" + ip + R"(","Up_Speed":")" +
                                     up + R"(","Dl_Speed":")" + down + "\""));
  }
};

TEST_F(Qos, ChangesTheListAndTellsTheScript) {
  const std::string mine = kMac + " " + kIp + " 10 20 7\n";
  const std::string added = kMac + " " + kIp + " 100 800 42\n";
  const std::string changed = kMac + " 192.168.10.101 100 800 7\n";
  const std::string exactly_31 = "02:BB:00:00:00:01 1.1.1 5 6 33\n";
  const struct {
    std::string before;
    std::string up;
    std::string down;
    std::string after;
    std::string rules;
    std::string mark;
  } cases[] = {
      {"", "100", "800", added, "add:\n" + added, "42"},
      {"", "0", "800", "", "", "41"},
      {"", "-5", "800", "", "", "41"},
      {"", "x", "800", "", "", "41"},
      {kOther, "100", "800", kOther + added, "add:\n" + added, "42"},
      {kOther + mine + kOther, "100", "800", kOther + changed + kOther,
       "del:\n" + mine + "add:\n" + changed, "41"},
      {kOther + mine, "0", "800", kOther, "del:\n" + mine, "41"},
      {mine + kOther, "100", "", kOther, "del:\n" + mine, "41"},
      {mine, "-1", "-2", kMac + " " + kIp + " -1 -2 7\n",
       "del:\n" + mine + "add:\n" + kMac + " " + kIp + " -1 -2 7\n", "41"},
      // Plain form before the device's record, untouched behind it, where another may follow.
      {"02:BB:00:00:00:01  192.168.10.7 050 60x 3 more\n" + mine +
           "02:BB:00:00:00:02  192.168.10.8  1 1 1 x\n" + mine,
       "0", "0", kOther + "02:BB:00:00:00:02  192.168.10.8  1 1 1 x\n" + mine, "del:\n" + mine,
       "41"},
      {"short\n02:BB:00:00:00:01 1.1.1 5 6 3\n" + exactly_31 + kMac + "\n", "0", "0", exactly_31,
       "", "41"},
      {kOther + kMac + " " + kIp + " 10 20 17", "0", "1", kOther,
       "del:\n" + kMac + " " + kIp + " 10 20 17\n", "41"},
      {kMac + " " + kIp + " 10 20\n", "0", "1", "", "del:\n" + kMac + " " + kIp + " 10 20 0\n",
       "41"},
  };
  for (const auto& c : cases) {
    board::write_file(kList, c.before);
    board::write_file("/tmp/rules", "");
    given("system", "route", "qos_mark", "41");
    EXPECT_EQ(set(c.up, c.down), result("setqos", 0));
    EXPECT_EQ(board::read_file(kList), c.after) << c.before;
    EXPECT_EQ(board::read_file("/tmp/rules"), c.rules) << c.before;
    EXPECT_EQ(stored("system", "route", "qos_mark"), c.mark);
    Lines expected;
    if (c.mark == "42") expected.emplace_back("uci set system.route.qos_mark=42");
    for (const char* action : {"del", "add"}) {
      if (c.rules.find(std::string(action) + ":") != std::string::npos) {
        expected.push_back(std::string("run /sbin/qos_rule_edit.sh ") + action);
      }
    }
    expected.push_back(kReplace);
    EXPECT_THAT(effects(), ElementsAreArray(expected)) << c.before;
  }
  given("system", "route", "qos_mark", std::nullopt);
  board::write_file(kList, "");
  set("1", "1");
  set("0", "0");
  set("1", "1");
  EXPECT_EQ(board::read_file(kList), kMac + " " + kIp + " 1 1 2\n") << "marks are never reused";
}

TEST_F(Qos, Reads) {
  board::write_file(
      kList, "short\n" + kOther + kMac + " " + kIp + " 10 20 7\n" + kMac + " x 1 2 3456789\n");
  const std::string other = R"("MAC":"02:BB:00:00:00:01","Up_Speed":"50","Dl_Speed":"60")";
  const std::string mine = R"("MAC":"02:AA:00:00:00:02","Up_Speed":"10","Dl_Speed":"20")";
  const struct {
    const char* mac;
    std::string reply;
  } cases[] = {{"ALL", R"("list":[{)" + other + "},{" + mine +
                           R"(},{"MAC":"02:AA:00:00:00:02","Up_Speed":"1","Dl_Speed":"2"}])"},
               {"02:AA:00:00:00:02", mine},
               {"02:BB:00:00:00:01", other},
               {"02:bb:00:00:00:01", R"("MAC":"02:bb:00:00:00:01")"},
               {"all", R"("MAC":"all")"}};
  for (const auto& c : cases) {
    EXPECT_EQ(ask(command("getqos", std::string(R"("MAC":")") + c.mac + "\"")),
              command("getqos", c.reply));
  }
  EXPECT_EQ(ask(R"({"type":"getqos"})"), result("getqos", 1));
  EXPECT_THAT(effects(), IsEmpty());
}

TEST_F(Qos, Refuses) {
  board::write_file(kList, kOther);
  const auto with = [](const std::string& mac, const std::string& ip) {
    return R"("MAC":")" + mac + R"(","IP":")" + ip + "\"";
  };
  Lines requests = {R"("MAC":"02:AA:00:00:00:02")", R"("IP":"192.168.10.101")",
                    R"("MAC":"02:AA:00:00:00:02","IP":1)", with("02:AA", "1.1.1.1")};
  const std::string long_word(40, 'x');
  for (const char* mac :
       {"02:AA:00:00 00:02", R"(02:AA:00:00:00:02\n02:CC)", "", long_word.c_str()}) {
    requests.push_back(with(mac, kIp));
  }
  for (const char* ip : {"", "192.168.10.1 9 9 9", R"(192.168.10.1\r)", long_word.c_str()}) {
    requests.push_back(with(kMac, ip));
  }
  for (auto& members : requests) members += R"(,"Up_Speed":"1","Dl_Speed":"1")";
  for (const char* speeds :
       {R"("Up_Speed":"1")", R"("Dl_Speed":"1")", R"("Up_Speed":1,"Dl_Speed":1)"}) {
    requests.push_back(with(kMac, kIp) + "," + speeds);
  }
  expect_refused("setqos", kList, requests);
}

TEST_F(Qos, EveryFailureComesBeforeTheListIsReplaced) {
  const std::string before = kOther + kMac + " " + kIp + " 10 20 7\n";
  board::write_file(kList, before);
  for (const std::string file : {"/tmp/qos_limit_list", "/tmp/edit_rule_file"}) {
    board::remove_file(file);
    ASSERT_EQ(mkdir(file.c_str(), 0700), 0);
    for (const char* mac : {"02:AA:00:00:00:02", "02:CC:00:00:00:01"}) {
      for (const char* up : {"0", "1"}) {
        EXPECT_EQ(set(up, "1", mac), result("setqos", 1)) << file;
        EXPECT_EQ(board::read_file(kList), before);
        EXPECT_EQ(board::log().back(), "<3>fopen " + file + " failed!");
        EXPECT_THAT(effects(), testing::Not(testing::Contains(testing::StartsWith("run "))));
      }
    }
    rmdir(file.c_str());
  }
  {
    const FullTmp full;
    EXPECT_EQ(set("1", "1"), result("setqos", 1));
  }
  EXPECT_EQ(board::read_file(kList), before);
  board::remove_file(kList);
  effects();
  EXPECT_EQ(set("1", "1"), result("setqos", 1));
  EXPECT_EQ(ask(R"({"type":"getqos","MAC":"ALL"})"), result("getqos", 1));
  EXPECT_EQ(board::log().back(), "<3>fopen /etc/qos_limit_list failed!");
  EXPECT_THAT(effects(), IsEmpty());
}

}  // namespace
}  // namespace zelto_test
