// What all lists share: changes at once, by many processes.

#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <set>

#include <zelto/access.h>
#include <zelto/network.h>
#include <zelto/services.h>

#include "access/access_test.h"

namespace zelto_test {
namespace {

constexpr int kProcesses = 8;
constexpr int kKept = 2;  // entries that each process leaves behind

// Of the same length each, so that none is part of another.
std::string mac_of(int process, int entry) {
  return "02:AA:00:00:0" + std::to_string(process) + ":0" + std::to_string(entry);
}

class ListFiles : public AccessTest {
 protected:
  static Lines lines_of(const std::string& path) {
    std::istringstream content(board::read_file(path));
    Lines lines;
    for (std::string line; std::getline(content, line);) lines.push_back(line);
    std::sort(lines.begin(), lines.end());
    return lines;
  }
};

// Whether all five commands that change a list say that they did.
bool change(const std::string& mac, bool adds) {
  const auto name = mac.substr(12);
  const auto done = [](const std::string& type, const std::string& members) {
    return ask(command(type, members)) == result(type, 0);
  };
  const std::string speed = adds ? "5" : "0";
  return done("setparentalinfo",
              (adds ? R"("cfg_type":"add","alias":")" : R"("cfg_type":"del","alias":")") + name +
                  R"(","mac":"M","accesstime":"1-2","day":"7")") &&
         done("setmacblack", R"("mac":")" + mac + (adds ? R"(","enable":1)" : R"(","enable":0)")) &&
         (adds ? done("setalias", R"("mac":")" + mac + R"(","alias":"x")")
               : alias_name_del(mac.c_str()) == 1) &&
         done("setqos", R"("IP":"192.168.10.9","MAC":")" + mac + R"(","Up_Speed":")" + speed +
                            R"(","Dl_Speed":"5")") &&
         done("setforwarding", R"("name":")" + name + R"(","ip":"all","enable":)" +
                                   (adds ? "1" : "0") + R"(,"list0":"1,2,TCP","list1":"3,4,UDP")");
}

bool change_for_a_while(int process, std::chrono::steady_clock::time_point end) {
  bool done = true;
  for (int entry = 0; entry < kKept; ++entry) done = change(mac_of(process, entry), true) && done;
  do {
    done = change(mac_of(process, kKept), true) && done;
    done = change(mac_of(process, kKept), false) && done;
  } while (std::chrono::steady_clock::now() < end);
  return done;
}

TEST_F(ListFiles, RequestsOfAnotherTypeOrOfNone) {
  const std::string answers = "<3>json is NULL";
  const std::string changes = "<3>json data is NULL!";
  const struct {
    CommandHandler handler;
    std::string log;
    std::string refused;  // what {"type":"x"} is answered
  } cases[] = {
      {bs_GetTerminalList, answers, R"({"type":"getterminallist","ver":"2","result":1})"},
      {bs_ClientNum_info, changes, result("getclientnum", 1)},
      {bs_GetWiFiStaInfo, changes, result("x", 1)},
      {bs_GetCurStaInfo, changes, result("x", 1)},
      {bs_GetParentalInfo, answers, result("getparentalinfo", 1)},
      {bs_SetParentalInfo, changes, result("setparentalinfo", 1)},
      {bs_SetParentalSwitch, changes, result("setparentalswitch", 1)},
      {bs_GetBlackList, answers, result("getblacklist", 1)},
      {bs_SetMacBlack, changes, result("setmacblack", 1)},
      {bs_SetAlias, changes, result("setalias", 1)},
      {bs_GetForwardingInfo, answers, result("getforwarding", 1)},
      {bs_SetForwardingInfo, changes, result("setforwarding", 1)},
      {bs_GetQosInfo, changes, result("getqos", 1)},
      {bs_SetQosInfo, changes, result("setqos", 1)},
  };
  for (const auto& c : cases) {
    EXPECT_EQ(call(c.handler, R"({"type":"x","MAC":"ALL","enable":"0"})").reply, c.refused);
    EXPECT_EQ(call(c.handler, "{").status, -1) << c.refused;
    EXPECT_EQ(call(c.handler, nullptr).reply, "untouched");
    EXPECT_EQ(board::log().back(), c.log) << c.refused;
  }
}

TEST_F(ListFiles, WhatCannotBeWrittenIsTold) {
  const struct {
    std::string list;
    std::string before;
    std::string request;
    int (*remove)(const char*);
    const char* name;
  } cases[] = {
      {"mac_alias_list", "02:BB:00:00:00:01 b\n02:AA:00:00:00:03 old",
       command("setalias", R"("mac":"02:AA:00:00:00:03","alias":"new")"), alias_name_del,
       "02:AA:00:00:00:03"},
      {"parental_list", "YQ== dev m 1-2 7\nYg==  dev m 1-2 7\n",
       command("setparentalinfo", R"("cfg_type":"add","alias":"new","alias_old":"a","mac":"M",)"
                                  R"("accesstime":"1-2","day":"7")"),
       parental_name_del, "YQ=="},
      {"port_forward_list", "YQ== all;1 2 TCP\nYg== all;3 4 TCP",
       command("setforwarding", R"("enable":1,"name":"a","ip":"all","list0":"1,2,TCP")"),
       forward_name_del, "YQ=="},
  };
  for (const auto& c : cases) {
    board::reset();
    given_section("redirect", "redirect0", {{"name", "YQ=="}});
    const auto path = "/etc/" + c.list;
    const auto type = c.request.substr(9, c.request.find('"', 9) - 9);
    board::write_file(path, c.before);
    {
      const FullTmp full;
      EXPECT_EQ(ask(c.request), result(type, 1));
      EXPECT_EQ(c.remove(c.name), 0);
    }
    EXPECT_EQ(board::read_file(path), c.before);
    EXPECT_THAT(effects(), IsEmpty());
    const auto work_file = "<3>fopen /tmp/" + c.list + " for del error!";
    EXPECT_THAT(board::log(), ElementsAre(work_file, work_file));

    board::remove_file(path);
    EXPECT_EQ(c.remove(c.name), 0);
    EXPECT_EQ(board::log().back(), "<3>fopen " + path + " for del error!");
    ASSERT_EQ(symlink("/nowhere/list", path.c_str()), 0);
    EXPECT_EQ(ask(c.request), result(type, 1));
    EXPECT_EQ(board::log().back(), "<3>fopen " + path + " for add error!");
    EXPECT_THAT(effects(), testing::Not(testing::Contains(HasSubstr("restart"))));
    board::remove_file(path);
    EXPECT_EQ(ask(c.request), result(type, 0)) << "a missing list is made";
    EXPECT_NE(board::read_file(path), "");
  }
}

TEST_F(ListFiles, ManyProcessesLoseNothingOfEachOther) {
  const char* seconds = std::getenv("ZELTO_STRESS_SECONDS");
  const auto end = std::chrono::steady_clock::now() +
                   std::chrono::seconds(seconds == nullptr ? 2 : std::atoi(seconds));
  std::array<pid_t, kProcesses> children{};
  for (int process = 0; process < kProcesses; ++process) {
    children[static_cast<std::size_t>(process)] = fork();
    if (children[static_cast<std::size_t>(process)] == 0) {
      _exit(change_for_a_while(process, end) ? 0 : 1);
    }
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  Lines macs;
  for (int process = 0; process < kProcesses; ++process) {
    for (int entry = 0; entry < kKept; ++entry) macs.push_back(mac_of(process, entry));
  }
  const auto with = [&](const std::string& behind) {
    auto lines = macs;
    for (auto& line : lines) line += behind;
    return lines;
  };
  EXPECT_THAT(lines_of("/etc/mac_alias_list"), ElementsAreArray(with(" x")));
  EXPECT_THAT(lines_of("/etc/blacklist"), ElementsAreArray(with(" unknow")));

  Lines limited;
  std::set<std::string> marks;
  for (const auto& line : lines_of("/etc/qos_limit_list")) {
    limited.push_back(line.substr(0, line.rfind(' ')));
    marks.insert(line.substr(line.rfind(' ')));
  }
  EXPECT_THAT(limited, ElementsAreArray(with(" 192.168.10.9 5 5")));
  EXPECT_EQ(marks.size(), macs.size()) << "each its own";

  // Each name is told once in each list, and its mappings once each in the sections.
  std::multiset<std::string> named;
  for (const auto& section : stored_in("redirect", "name")) {
    named.insert(section.substr(section.find(' ') + 1));
  }
  EXPECT_EQ(named.size(), 2 * macs.size());
  const auto parental = lines_of("/etc/parental_list");
  const auto forwarded = lines_of("/etc/port_forward_list");
  ASSERT_EQ(parental.size(), macs.size());
  ASSERT_EQ(forwarded.size(), macs.size());
  for (std::size_t i = 0; i < macs.size(); ++i) {
    const auto name = forwarded[i].substr(0, forwarded[i].find(' '));
    EXPECT_EQ(forwarded[i], name + " all;2 1 TCP;4 3 UDP");
    EXPECT_EQ(parental[i], name + " unknow M 1-2 7");
    EXPECT_EQ(named.count(name), 2U);
  }
  EXPECT_EQ(std::set(forwarded.begin(), forwarded.end()).size(), macs.size());
  EXPECT_EQ(lines_of("/etc/firewall.user").size(), 2 * macs.size());
}

}  // namespace
}  // namespace zelto_test
