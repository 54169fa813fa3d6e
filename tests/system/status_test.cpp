// The readers of the running state, and the commands that show it.

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <thread>

#include <zelto/system.h>

#include "support/router_test.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::MatchesRegex;
using zelto_test::ask;
using zelto_test::call;

class Status : public zelto_test::RouterTest {
 protected:
  void SetUp() override {
    RouterTest::SetUp();
    set_links("00");
    board::write_file("/tmp/online_file", "offline-not\n");
    board::write_file("/tmp/wan_speed_file", "12KB/s 3KB/s\n");
    board::write_file("/tmp/online_file", "down\n");
  }
  static void set_links(const std::string& hexadecimal) {
    board::write_file("/var/board/switch-83", hexadecimal + "\n");
  }
};

// The text of a member of a reply, as it stands there.
std::string member(const std::string& reply, const std::string& name) {
  const auto begin = reply.find("\"" + name + "\":");
  if (begin == std::string::npos) return "(none)";
  const auto value = begin + name.size() + 3;
  return reply.substr(value, reply.find_first_of(",}", value) - value);
}

TEST_F(Status, ReadsPortsAndOnlineState) {
  const std::pair<const char*, unsigned> cases[] = {
      {"0", 32U}, {"20", 33U}, {"10", 34U}, {"8", 36U},
      {"4", 40U}, {"2", 48U},  {"3f", 63U}, {"ffffff01", 32U},
  };
  for (const auto& [links, word] : cases) {
    set_links(links);
    EXPECT_EQ(GetBasicstatus(), word) << links;
  }
  board::write_file("/tmp/online_file", "online\n");
  EXPECT_EQ(GetBasicstatus(), 64U + 32U);
  EXPECT_EQ(get_online_status(), 1);
  board::write_file("/tmp/online_file", "\nonline\n");
  EXPECT_EQ(get_online_status(), 0) << "only the first line counts";
  board::write_file("/tmp/online_file", std::string(121, ' ') + "online");
  EXPECT_EQ(get_online_status(), 0) << "up to 126 characters of it";
  EXPECT_THAT(board::log(), IsEmpty());
  board::remove_file("/tmp/online_file");
  EXPECT_EQ(get_online_status(), 0);
  EXPECT_THAT(board::log(), ElementsAre("<3>open /tmp/online_file fail"));
  EXPECT_EQ(getPortConnectStat(), 0);
}

TEST_F(Status, WaitsForTheWriterOfAStateFile) {
  const int writer = open("/tmp/online_file", O_RDWR | O_CLOEXEC);
  ASSERT_EQ(flock(writer, LOCK_EX), 0);
  int online = -1;
  std::thread reader([&] { online = get_online_status(); });
  // The reader may not have reached the lock yet; then it reads the finished line all the same.
  usleep(20000);
  ASSERT_EQ(pwrite(writer, "online\n", 7, 0), 7);
  close(writer);
  reader.join();
  EXPECT_EQ(online, 1);
}

TEST_F(Status, ASwitchToolThatCannotBeStartedIsUnknown) {
  board::remove_file("/usr/sbin/switch");
  board::remove_file("/sbin/switch");
  board::remove_file("/usr/bin/switch");
  EXPECT_EQ(GetBasicstatus(), ZELTO_STATUS_UNKNOWN);
  const auto reply = ask(R"({"type":"getrouterinfo"})");
  EXPECT_EQ(member(reply, "basicstat"), "\"4294967295\"");
  for (const char* name : {"lan1", "lan2", "lan3", "lan4", "wan", "link"}) {
    EXPECT_EQ(member(reply, name), "1") << name;
  }
  EXPECT_EQ(member(reply, "netlink"), "0");
  const zelto_test::NoDescriptors none;
  EXPECT_EQ(GetBasicstatus(), ZELTO_STATUS_UNKNOWN);
}

TEST_F(Status, ShowsTheStatusPage) {
  set_links("22");
  board::write_file("/tmp/online_file", "online\n");
  board::write_file("/var/board/nvram", "zelto.Model=R7 \"plus\"\n");
  given("system", "route", "CloudKey", "k3y");
  board::set_address("br-lan", "192.168.77.1");
  EXPECT_THAT(
      ask(R"({"type":"getrouterinfo"})"),
      MatchesRegex(R"(\{"type":"getrouterinfo","uptime":"[0-9]+:[0-9]+:[0-9]+:[0-9]+",)"
                   R"("cpu":"[0-9.]+%?","downspeed":"12KB/s","upspeed":"3KB/s","basicstat":"113",)"
                   R"("netlink":1,"lan1":1,"lan2":0,"lan3":0,"lan4":0,"wan":1,)"
                   R"("operationmode":"router","connetype":"dhcp","link":1,)"
                   R"("ramtotal":"[1-9][0-9]*","ramfree":"[1-9][0-9]*",)"
                   R"("producttype":"R7 ..plus..","smart":"0",)"
                   R"("lanmac":"([0-9A-F]{2}:){5}[0-9A-F]{2}","lanip":"192.168.77.1",)"
                   R"("key":"k3y","server_type":"1","ver":"[^"]+","hardwareversion":"1.0"\})"));
  EXPECT_THAT(board::journal(),
              ElementsAre("run top -n 1 | grep CPU | grep usr | awk '{print $2}'",
                          "run switch reg r 83", "run nvram get zelto Model | tr -d '\\\\n'",
                          "run nvram get zelto smart | tr -d '\\\\n'"));
  EXPECT_THAT(board::log(), IsEmpty());
}

TEST_F(Status, KeepsTheOdditiesThatPagesRelyOn) {
  board::remove_file("/tmp/wan_speed_file");
  given("system", "route", "conntype", std::nullopt);
  auto reply = ask(R"({"type":"getrouterinfo"})");
  const auto usage = member(reply, "cpu");
  EXPECT_EQ(member(reply, "downspeed"), usage.substr(0, usage.size() - 2) + "\"");
  EXPECT_EQ(member(reply, "upspeed"), "\"\"");
  EXPECT_THAT(reply, HasSubstr(R"("connetype":"dhcp","connetype":"","link")"));
  EXPECT_THAT(board::log(),
              ElementsAre("<3>open /tmp/wan_speed_file fail", "<3>get wanConnectionMode failed!"));

  given("system", "route", "operationmode", std::nullopt);
  given("system", "route", "CloudKey", std::nullopt);
  board::remove_file("/var/board/nvram");
  board::remove_file("/etc/FW-Version");
  reply = ask(R"({"type":"getrouterinfo"})");
  EXPECT_THAT(reply, HasSubstr(R"("operationmode":"router","operationmode":"","link")"));
  EXPECT_THAT(reply, HasSubstr(R"("producttype":"ZELTO","smart":"0")"));
  EXPECT_THAT(reply, HasSubstr(R"("key":"","server_type":"1","ver":"","hardware)"));
  given_mode("AP");
  EXPECT_THAT(ask(R"({"type":"getrouterinfo"})"), HasSubstr(R"("operationmode":"AP","link")"));
}

TEST_F(Status, FormatsIntoTheCallersBuffer) {
  char buffer[64] = "before";
  EXPECT_EQ(get_sysrun_time(buffer, 7), -1);
  EXPECT_EQ(GetCPUusage(buffer, 1), -1);
  EXPECT_STREQ(buffer, "before");
  EXPECT_EQ(get_sysrun_time(buffer, sizeof buffer), 0);
  EXPECT_THAT(buffer, MatchesRegex("[0-9]+:([0-9]|1[0-9]|2[0-3]):[1-5]?[0-9]:[1-5]?[0-9]"));
  get_wan_speed(buffer, 6);
  EXPECT_STREQ(buffer, "12KB") << "two bytes less than the buffer holds";
  {
    const zelto_test::NoDescriptors none;
    EXPECT_EQ(get_sysrun_time(buffer, sizeof buffer), -1);
    EXPECT_EQ(GetCPUusage(buffer, sizeof buffer), -1);
  }
}

TEST_F(Status, TellsTheLanguage) {
  const std::pair<std::optional<std::string>, const char*> cases[] = {
      {"auto", R"("language":"en"})"},    {"en", R"("language":"en"})"},
      {"zh_cn", R"("language":"zhcn"})"}, {"de%s\x01", R"("language":"unknown"})"},
      {std::nullopt, R"("result":1})"},
  };
  for (const auto& [stored_language, end] : cases) {
    given("luci", "main", "lang", stored_language);
    EXPECT_EQ(ask(R"({"type":"getlanguage"})"), std::string(R"({"type":"getlanguage",)") + end);
  }
  EXPECT_THAT(board::log(), ElementsAre("<3>get_info:auto", "<3>get_info:en", "<3>get_info:zh_cn",
                                        "<3>get_info:de%s?"));
}

TEST_F(Status, TellsTheHost) {
  given("system", "route", "CloudKey", std::nullopt);
  given("system", "route", "routepwd", "p\"w");
  given("system", "route", "ssid_2g", "Home & Garden");
  EXPECT_THAT(ask(R"({"type":"gethostinfo"})"),
              MatchesRegex(R"(\{"type":"gethostinfo","hostname":"[^"]+","hostmac":"[0-9A-F:]{17}",)"
                           R"("hostkey":"","hostpwd":"p..w","hostmodel":"[^"]+",)"
                           R"("wlanssid":"Home & Garden","hosttype":"router"\})"));
}

TEST_F(Status, TellsTheTimeByDirectCall) {
  EXPECT_THAT(call(bs_GetSysTimeInfo, R"({"type":"getsystimeinfo"})").reply,
              MatchesRegex(R"(\{"type":"getsystimeinfo","systime":"20[0-9-]+ [0-9:]+..n",)"
                           R"("uptime":"[0-9]+"\})"));
  EXPECT_EQ(call(bs_GetSysTimeInfo, R"({"type":"other"})").reply, R"({"type":"other","result":1})");
  EXPECT_EQ(call(bs_GetSysTimeInfo, "{}").reply, R"({"result":1})");
  const zelto_test::NoDescriptors none;
  EXPECT_EQ(call(bs_GetSysTimeInfo, R"({"type":"getsystimeinfo"})").reply,
            R"({"type":"getsystimeinfo","systime":"1970-01-01 08:00:00","uptime":"0"})");
}

TEST_F(Status, PutsHardwareNatIntoItsState) {
  const std::tuple<std::optional<std::string>, const char*, const char*> cases[] = {
      {"1", "1", "1\n"}, {"0", "0", "0\n"}, {"11", "11", "0\n"}, {std::nullopt, "(none)", "0\n"}};
  for (const auto& [wanted, enabled, hook] : cases) {
    given("system", "route", "mtkhnat", wanted);
    EXPECT_EQ(init_network_run(), 0);
    EXPECT_EQ(stored("mtkhnat", "global", "enable"), enabled);
    EXPECT_EQ(board::read_file("/sys/kernel/debug/hnat/hook_toggle"), hook);
  }
}

}  // namespace
