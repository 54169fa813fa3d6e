// Restart and reset, the administrator's account and commands, menus, restart times and remote
// management.

#include <sys/mount.h>

#include <zelto/system.h>

#include "support/requests.h"
#include "support/router_test.h"

namespace zelto_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Maintenance : public RouterTest {};

TEST_F(Maintenance, RestartsAndResets) {
  const std::string restart = "start sleep 2;/etc/init.d/Zelto_Cloud stop;sleep 1;reboot -f &";
  expect(command("reboot"), result("reboot", 0), restart);
  board::clear_journal();
  EXPECT_EQ(call(bs_do_reboot, command("restore").c_str()).reply, result("reboot", 1));
  EXPECT_EQ(call(bs_do_reboot, "{").status, 0);
  EXPECT_THAT(board::log(), ElementsAre("<3>json data is NULL!"));
  EXPECT_THAT(board::journal(), IsEmpty());
  for (const char* request : {"", "{", R"({"type":"x"})"}) {
    board::clear_journal();
    const auto [status, reply] = call(bs_do_restore, request);
    EXPECT_EQ(reply, result("restore", 0));
    EXPECT_EQ(status, 0);
    expect_effects("start sleep 2; firstboot -y;/etc/init.d/Zelto_Cloud stop;sleep 1; reboot -f &",
                   request);
  }
}

TEST_F(Maintenance, SetsTheAdministratorsAccount) {
  const std::string hostile = R"(it's "$(touch /tmp/pwned)`;:\ )";
  EXPECT_EQ(ask(command("setmanpwd", member("routepwd", hostile))), result("setmanpwd", 0));
  EXPECT_EQ(ask(command("getmanpwd")),
            command("getmanpwd", member("routeusr", "admin") + "," + member("routepwd", hostile)));
  EXPECT_TRUE(has_password("root", hostile));
  EXPECT_EQ(board::quiet({"test", "-e", "/tmp/pwned"}), 1);
  expect(command("setmanpwd", R"("routeusr":"mum","routepwd":"secret")"), result("setmanpwd", 0),
         "uci set system.route.routepwd=secret\nrun chpasswd.sh root secret\n"
         "uci set system.route.routeusr=mum");
  expect(command("setmanpwd", R"("routeusr":"dad","routepwd":5)"), result("setmanpwd", 0),
         "uci set system.route.routeusr=dad");
  expect(command("setmanpwd"), result("setmanpwd", 0), "");
  for (const auto& refused :
       {member("routepwd", std::string(128, 'p')), member("routeusr", std::string(32, 'u')),
        std::string(R"("routepwd":"a\nb")"), std::string(R"("routepwd":"x","routeusr":"a\rb")")}) {
    expect_refused("setmanpwd", refused);
  }
  ASSERT_EQ(mount("tmpfs", "/etc/config", "tmpfs", MS_RDONLY, nullptr), 0);
  expect(command("setmanpwd", R"("routeusr":"u","routepwd":"p")"), result("setmanpwd", 0), "");
  umount2("/etc/config", MNT_DETACH);
  EXPECT_THAT(board::log(), testing::IsSupersetOf(
                                {"<3>set Password to p failed!", "<3>set Loginusr to u failed!"}));
  EXPECT_TRUE(has_password("root", "secret"));
}

TEST_F(Maintenance, ShowsWhatACommandPrints) {
  const auto shown = [](const std::string& cmd, const std::string& output) {
    return command("setcmd", member("cmd", cmd) + R"(,"cmdinfo":")" + output + "\"");
  };
  const auto printed = [](const std::string& cmd) {
    const auto reply = ask(command("setcmd", member("cmd", cmd)));
    return reply.substr(reply.find(R"("cmdinfo":")") + 11);
  };
  EXPECT_EQ(ask(command("setcmd", member("cmd", "echo a; exit 3"))),
            shown("echo a; exit 3", R"(a\n)"));
  board::write_file("/tmp/bytes", std::string("\x01\xff\xc3\xa9\0\"x", 7));
  EXPECT_EQ(printed("cat /tmp/bytes"), "\\u0001\xEF\xBF\xBD\xC3\xA9\\\"x\"}");
  const std::string long_command = "echo " + std::string(600, 'x');
  EXPECT_EQ(ask(command("setcmd", member("cmd", long_command))),
            shown(long_command.substr(0, 511), std::string(506, 'x') + R"(\n)"));
  const struct {
    const char* cmd;
    std::size_t length;
  } outputs[] = {
      {"yes 123456789 | head -n 1000 | tr '\\n' '\\r'", 6120},  // no lines: pieces of 510
      {"yes 12345678 | head -n 1200", 6003},
      {"yes $(printf %0499d 1) | head -n 12; printf %0600d 2", 6143},
  };
  for (const auto& [cmd, length] : outputs) {
    const auto text = printed(cmd);
    const auto escapes = static_cast<std::size_t>(std::count(text.begin(), text.end(), '\\'));
    EXPECT_EQ(text.size() - escapes - 2, length) << cmd;
  }
  const auto reply = ask(command("setcmd", member("cmd", "yes | head -n 9999 | tr 'y\\n' '\\1'")));
  EXPECT_THAT(reply, testing::EndsWith("\\u0001\\u0001\"}"));
  EXPECT_LT(reply.size(), static_cast<std::size_t>(ZELTO_REPLY_SIZE));
  EXPECT_GT(reply.size(), static_cast<std::size_t>(ZELTO_REPLY_SIZE) - 100);
  EXPECT_EQ(ask(command("setcmd", R"("cmd":5)")), result("setcmd", 1));
  EXPECT_EQ(board::log().back(), "<3>json get cmd error!");
  {
    const NoDescriptors none;
    EXPECT_EQ(ask(command("setcmd", R"("cmd":"true")")), result("setcmd", 1));
  }
}

TEST_F(Maintenance, HasAMenuForEachMode) {
  const struct {
    const char* mode;
    int desktop;  // entries, 0 for an unknown mode
    int mobile;
  } cases[] = {
      {"router", 21, 24}, {"mobilenetmode", 20, 24},
      {"AP", 8, 10},      {"repeater", 8, 10},
      {"wisp", 17, 19},   {"APclient", 8, 0},
      {"wisps", 17, 0},   {"repeater5", 8, 0},
      {"routers", 0, 0},  {"ap", 0, 0},
      {"", 0, 0},
  };
  const auto entries = [](const std::string& type) {
    const auto reply = ask(command(type));
    return reply == result(type, 1) ? 0 : std::count(reply.begin(), reply.end(), '{') - 1;
  };
  for (const auto& c : cases) {
    given_mode(c.mode);
    EXPECT_EQ(entries("getfunlist"), c.desktop) << c.mode;
    EXPECT_EQ(entries("getmobilefunlist"), c.mobile) << c.mode;
  }
  given_mode("mobilenetmode");
  EXPECT_THAT(ask(command("getmobilefunlist")),
              testing::AllOf(testing::HasSubstr(R"("pro_term"},{"fun":"apn_setting"},)"),
                             testing::Not(testing::HasSubstr("outNetSet"))));
  EXPECT_EQ(call(bs_GetFunList, "{").status, -1);
  EXPECT_THAT(board::log(), IsEmpty());
  EXPECT_EQ(call(bs_GetMobileFunList, "{").status, -1);
  EXPECT_THAT(board::log(), ElementsAre("<3>json data is NULL!"));
}

// What lists of times have in common is tested with the Wi-Fi schedule.
TEST_F(Maintenance, KeepsRestartTimes) {
  constexpr const char* kList = "/etc/periodic_restart_list";
  constexpr const char* kType = "periodic_restart_apply";
  const std::string shortest = R"("timing":"3:30","week":"1")";
  for (int i = 0; i < 2; ++i) {
    expect(command(kType, R"("action":"add",)" + shortest), result(kType, 0), "");
    EXPECT_EQ(board::read_file(kList), "3:30 1\n");
  }
  EXPECT_EQ(ask(command("get_periodic_restart")),
            command("get_periodic_restart", R"("Switch":"0","list":[{)" + shortest + "}]"));
  expect_refused(kType, R"("action":"add","timing":"3:3","week":"1")");
  board::write_file(kList, "3:30 1\n4:00 1,2\nshort\n3:30 1\n");
  expect(command(kType, R"("action":"del",)" + shortest), result(kType, 0),
         "run rm -rf /etc/periodic_restart_list;mv /tmp/periodic_restart_list "
         "/etc/periodic_restart_list");
  EXPECT_EQ(board::read_file(kList), "4:00 1,2\n");
  board::remove_file(kList);
  expect_refused(kType, R"("action":"add",)" + shortest);
  EXPECT_EQ(board::log().back(), "<3>fopen /etc/periodic_restart_list for read error!");
  expect(command("periodic_restart_switch", R"("Switch":"on")"),
         result("periodic_restart_switch", 0), "uci set system.route.periodic_restart_switch=on");
}

TEST_F(Maintenance, OpensTheWebPagesToTheWan) {
  const auto opened = [](const std::string& port) {
    return with(
        "uci add firewall.remote_web_manage=redirect\n"
        "uci set firewall.remote_web_manage.{target=DNAT, src=wan, dest=lan, "
        "src_dport=PORT, dest_port=80, proto=tcp}\n"
        "run /etc/init.d/firewall restart &",
        {{"PORT", port}});
  };
  const auto turn = [](const std::string& state) {
    return command("remote_manage_switch", member("Switch", state));
  };
  const std::string deleted = "uci del firewall.remote_web_manage\n";
  const std::string stored_switch = "uci set system.route.remote_manage_switch=";
  const auto done = result("remote_manage_switch", 0);
  expect(turn("1x"), done, stored_switch + "1x\n" + opened("8080"));
  expect(command("set_remote_manage", R"("remote_manage_port":"8081-90")"),
         result("set_remote_manage", 0),
         "uci set system.route.remote_manage_port=8081-90\n" + deleted + opened("8081-90"));
  EXPECT_EQ(ask(command("get_remote_manage")),
            command("get_remote_manage", R"("Switch":"1x","remote_manage_port":"8081-90")"));
  for (const auto* refused : {R"("remote_manage_port":"80818081")", R"("remote_manage_port":"")",
                              R"("remote_manage_port":"80\n81")", R"("remote_manage_port":80)"}) {
    expect_refused("set_remote_manage", refused);
  }
  given("system", "route", "remote_manage_port", std::nullopt);
  expect(turn("1"), done, stored_switch + "1\nrun /etc/init.d/firewall restart &");
  expect(turn("10"), done, stored_switch + "10\n" + deleted + "run /etc/init.d/firewall restart &");
  expect_refused("remote_manage_switch", R"("Switch":"1\n")");
}

}  // namespace
}  // namespace zelto_test
