// Devices that are cut off.

#include <sys/stat.h>
#include <unistd.h>

#include <zelto/access.h>

#include "access/access_test.h"

namespace zelto_test {
namespace {

constexpr const char* kList = "/etc/blacklist";
constexpr const char* kScript = "/etc/firewall.user";
const std::string kMac = "02:AA:00:00:00:02";

std::string rule(const char* action, const char* chain, const std::string& mac) {
  return std::string("iptables -t filter ") + action + " " + chain + " -m mac --mac-source " + mac +
         " -m comment --comment blacklist -j DROP";
}
std::string script_of(const std::string& mac) {
  return rule("-I", "FORWARD", mac) + "\n" + rule("-I", "INPUT", mac) + "\n";
}
std::string device(int number) {
  return "02:BB:00:00:00:" + std::to_string(number + 10);
}

class Blacklist : public AccessTest {
 protected:
  void SetUp() override {
    AccessTest::SetUp();
    board::write_file(kList, "");
    board::write_file(kScript, "");
  }
  static std::string block(const std::string& mac, const std::string& others = "") {
    return ask(command("setmacblack", R"("mac":")" + mac + R"(","enable":"1")" + others));
  }
  static std::string unblock(const std::string& mac) {
    return ask(command("setmacblack", R"("mac":")" + mac + R"(","enable":"0")"));
  }
};

TEST_F(Blacklist, BlocksAndLetsIn) {
  board::write_file(kList, "02:BB:00:00:00:01 tv");
  EXPECT_EQ(block(kMac, R"(,"devname":"kitchen tablet")"), result("setmacblack", 0));
  EXPECT_THAT(effects(), ElementsAre("run " + rule("-I", "FORWARD", kMac),
                                     "run " + rule("-I", "INPUT", kMac)));
  EXPECT_EQ(ask(command("setmacblack", R"("mac":"02:CC:00:00:00:03","enable":1,"devname":"")")),
            result("setmacblack", 0));
  EXPECT_EQ(board::read_file(kList),
            "02:BB:00:00:00:01 tv\n" + kMac + " kitchen tablet\n02:CC:00:00:00:03 unknow\n");
  EXPECT_EQ(board::read_file(kScript), script_of(kMac) + script_of("02:CC:00:00:00:03"));
  EXPECT_EQ(ask(R"({"type":"getblacklist"})"),
            command("getblacklist",
                    R"("list":[{"mac":"02:BB:00:00:00:01","name":"tv"},{"mac":")" + kMac +
                        R"(","name":"kitchen"},{"mac":"02:CC:00:00:00:03","name":"unknow"}])"));
  effects();
  EXPECT_EQ(unblock(kMac), result("setmacblack", 0));
  EXPECT_THAT(effects(), ElementsAre("run mv /tmp/blacklist /etc/blacklist",
                                     "run mv /tmp/firewall.user /etc/firewall.user",
                                     "run " + rule("-D", "FORWARD", kMac),
                                     "run " + rule("-D", "INPUT", kMac)));
  EXPECT_EQ(board::read_file(kList), "02:BB:00:00:00:01 tv\n02:CC:00:00:00:03 unknow\n");
  EXPECT_EQ(board::read_file(kScript), script_of("02:CC:00:00:00:03"));
  EXPECT_EQ(unblock("02:"), result("setmacblack", 0)) << "by substring";
  EXPECT_EQ(board::read_file(kList) + board::read_file(kScript), "");
  EXPECT_EQ(unblock(kMac), result("setmacblack", 0)) << "unknown";
  EXPECT_THAT(board::log(), IsEmpty());
}

TEST_F(Blacklist, ShortLinesAndUnendedOnes) {
  board::write_file(kList, "0123456789 tv34\n0123456789 tv345\n\n0123456789\n0123456789abc phone");
  EXPECT_EQ(ask(R"({"type":"getblacklist"})"),
            command("getblacklist", R"("list":[{"mac":"0123456789","name":"tv345"},)"
                                    R"({"mac":"0123456789abc","name":"phon"}])"));
  EXPECT_EQ(get_blacklist_num(), 2);
  EXPECT_EQ(del_mac_from_blacklist("none"), 1);
  EXPECT_EQ(board::read_file(kList), "0123456789 tv345\n0123456789abc phone\n");
  board::write_file(kList, "02:AA:00:00:00:02\n");
  EXPECT_EQ(ask(R"({"type":"getblacklist"})"),
            command("getblacklist", R"("list":[{"mac":"02:AA:00:00:00:02","name":""}])"));
}

TEST_F(Blacklist, AnEntryTwiceComesBeforeAFullList) {
  std::string full;
  for (int i = 0; i < 31; ++i) full += device(i) + " d\n";
  board::write_file(kList, full + "short\n");
  EXPECT_EQ(block(device(31), R"(,"devname":"d")"), result("setmacblack", 0));
  board::write_file(kList, full += device(31) + " d\n");
  effects();
  const struct {
    std::string mac;
    int result;
  } cases[] = {{"02:CC:00:00:00:01", 3}, {device(5), 2}, {"02:BB", 2}, {"d", 2}};
  for (const auto& c : cases) {
    EXPECT_EQ(block(c.mac), result("setmacblack", c.result)) << c.mac;
    EXPECT_EQ(board::read_file(kList), full);
  }
  EXPECT_EQ(board::read_file(kScript), script_of(device(31)));
  EXPECT_THAT(effects(), IsEmpty());
}

// The script is run as root at every start of the firewall.
TEST_F(Blacklist, NothingOfAnAddressIsEverRun) {
  for (const std::string mac :
       {"$(reboot)aaaaaaa", ";reboot;aaaaaaaa", "'aaaaa';>/etc/x;'", "`reboot`aaaaaaaa",
        "aaaaaaaaa|reboot&", "#aaaaaaaaaaaaaa", R"(aaaa'\"'$(x)\"a)"}) {
    board::write_file(kList, "");
    EXPECT_EQ(block(mac), result("setmacblack", 0)) << mac;
    board::write_file("/tmp/check",
                      "reboot() { touch /tmp/ran; }\niptables() { for a; do echo \"$a\" "
                      ">> /tmp/words; done; }\n. /etc/firewall.user\n");
    EXPECT_EQ(board::quiet({"sh", "/tmp/check"}), 0);
    // The request's own escapes are gone.
    const auto plain = mac.find('\\') == std::string::npos ? mac : "aaaa'\"'$(x)\"a";
    EXPECT_THAT(board::read_file("/tmp/words"),
                testing::HasSubstr("--mac-source\n" + plain + "\n-m\n"));
    EXPECT_EQ(board::read_file("/tmp/ran") + board::read_file("/etc/x"), "");
    EXPECT_EQ(unblock(mac), result("setmacblack", 0));
    EXPECT_EQ(board::read_file(kScript) + board::read_file(kList), "") << mac;
    board::remove_file("/tmp/words");
  }
}

TEST_F(Blacklist, Refuses) {
  board::write_file(kList, "02:BB:00:00:00:01 tv\n");
  board::write_file(kScript, script_of("02:BB:00:00:00:01"));
  const std::string named = R"("mac":")" + kMac + R"(","enable":"1","devname":")";
  Lines requests = {R"("enable":"1")",
                    R"("enable":"0")",
                    R"("mac":1,"enable":"0")",
                    R"("mac":"","enable":"0")",
                    R"("mac":"02:AA\r","enable":"0")",
                    named + R"(a\nb")",
                    named + std::string(109, 'x') + "\""};
  for (const char* mac : {"", R"(02:AA:00:00\n:reboot)", R"(02:AA:00:00\r:00:01)",
                          "02:AA:00:00 00:01", R"(02:AA:00\t:00:01)", "12345678"}) {
    requests.push_back(std::string(R"("mac":")") + mac + R"(","enable":"1")");
  }
  expect_refused("setmacblack", kList, requests);
  EXPECT_EQ(del_mac_from_blacklist(""), 0);
  EXPECT_EQ(del_mac_from_firewall(""), 0);
  EXPECT_EQ(board::read_file(kScript), script_of("02:BB:00:00:00:01"));
  EXPECT_EQ(block(kMac, R"(,"devname":")" + std::string(108, 'x') + "\""),
            result("setmacblack", 0));
  EXPECT_EQ(block("123456789"), result("setmacblack", 0)) << "17 characters";
}

TEST_F(Blacklist, TheUsersOwnLinesStay) {
  const std::string own = "#!/bin/sh\n\n  # blacklist of mine\n" + std::string(3000, 'a') +
                          " blacklist\necho " + kMac + "\n\\\necho unended";
  board::write_file(kScript, own);
  block(kMac);
  EXPECT_EQ(board::read_file(kScript), own + "\n" + script_of(kMac));
  EXPECT_EQ(del_mac_from_firewall(kMac.c_str()), 1);
  EXPECT_EQ(board::read_file(kScript), own + "\n");
  board::write_file(kScript, own);
  EXPECT_EQ(del_mac_from_firewall(kMac.c_str()), 1);
  EXPECT_EQ(board::read_file(kScript), own + "\n");
}

TEST_F(Blacklist, FilesThatAreMissingOrFull) {
  for (const char* file : {kList, kScript}) board::remove_file(file);
  EXPECT_EQ(find_mac_from_blacklist("x"), -1);
  EXPECT_EQ(get_blacklist_num(), 0);
  EXPECT_EQ(unblock(kMac), result("setmacblack", 0));
  EXPECT_EQ(board::log().back(), "<3>fopen /etc/firewall.user for del error!");
  EXPECT_EQ(block(kMac), result("setmacblack", 0));
  EXPECT_EQ(find_mac_from_blacklist("AA:00"), 1);
  EXPECT_EQ(find_mac_from_blacklist("AB:00"), 0);
  block("02:CC:00:00:00:03");  // an entry that is kept
  effects();
  {
    const FullTmp full;
    EXPECT_EQ(unblock(kMac), result("setmacblack", 0));
  }
  EXPECT_EQ(board::read_file(kList), kMac + " unknow\n02:CC:00:00:00:03 unknow\n");
  EXPECT_EQ(board::read_file(kScript), script_of(kMac) + script_of("02:CC:00:00:00:03"));
  EXPECT_THAT(effects(), ElementsAre("run " + rule("-D", "FORWARD", kMac),
                                     "run " + rule("-D", "INPUT", kMac)));
  EXPECT_EQ(board::log().back(), "<3>fopen /tmp/firewall.user for del error!");
  for (const char* file : {kScript, kList}) {
    board::remove_file(file);
    ASSERT_EQ(mkdir(file, 0700), 0);
    EXPECT_EQ(block("02:CC:00:00:00:01"), result("setmacblack", 1));
    rmdir(file);
    EXPECT_EQ(board::log().back(), std::string("<3>fopen ") + file + " for add error!");
    EXPECT_THAT(effects(), IsEmpty());
  }
}

}  // namespace
}  // namespace zelto_test
