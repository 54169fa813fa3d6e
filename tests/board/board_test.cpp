#include "board/board.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <syslog.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Board : public testing::Test {
 protected:
  void SetUp() override { board::reset(); }

  // What a command prints, seen as the firmware's own work.
  static std::string output(const std::string& command) {
    const int status = board::quiet({"sh", "-c", "(" + command + ") > /tmp/output 2>&1"});
    return board::read_file("/tmp/output") + (status == 0 ? "" : std::to_string(status));
  }

  // As the library starts what nobody waits for.
  static void start_detached(const char* command) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
      setsid();
      if (fork() == 0) {
        for (int descriptor = 0; descriptor < 256; ++descriptor) close(descriptor);
        if (std::system(command) < 0) _exit(1);
      }
      _exit(0);
    }
  }
};

TEST_F(Board, BootsWithItsInterfacesAndItsOwnProcesses) {
  EXPECT_EQ(output("hostname; [ $(ls /proc | grep -c '^[0-9]*$') -lt 9 ]"), "ZELTO\n");
  EXPECT_EQ(output("ip -o -4 addr | awk '{print $2, $4}'"),
            "lo 127.0.0.1/8\nbr-lan 192.168.10.1/24\neth0.2 100.64.10.2/24\n");
  EXPECT_EQ(output("ip -o link | grep -c 'UP.*link/ether 02:5a:10:20:30:0[1-6]'"), "6\n");
  EXPECT_EQ(output("route -n | awk '$1 == \"0.0.0.0\" {print $2, $8}'"), "100.64.10.1 eth0.2\n");
}

TEST_F(Board, JournalNotesWhatIsRunAndStartedButNotWhatThatRuns) {
  EXPECT_EQ(std::system("sh -c 'true'; sh -c 'exit 3'\necho 'a\\b' > /tmp/x") >> 8, 0);
  start_detached("sleep 20; sh -c true; echo late >> /tmp/x");
  const std::vector<std::string> expected{
      R"(run sh -c 'true'; sh -c 'exit 3'\necho 'a\\b' > /tmp/x)",
      "start sleep 20; sh -c true; echo late >> /tmp/x"};
  EXPECT_EQ(board::journal(), expected);
  EXPECT_EQ(board::read_file("/tmp/x"), "a\\b\nlate\n");
  board::clear_journal();
  FILE* pipe = popen("cat", "w");
  ASSERT_NE(pipe, nullptr);
  pclose(pipe);
  EXPECT_THAT(board::journal(), ElementsAre("run cat"));
}

TEST_F(Board, LogAndConsoleAreExactAndComplete) {
  const std::string long_text(9000, 'x');
  FILE* console = std::fopen("/dev/console", "w+");
  ASSERT_NE(console, nullptr);
  (void)std::fprintf(console, "%s:%d\n\n%s", "file", 3, long_text.c_str());
  (void)std::fclose(console);
  EXPECT_EQ(board::console(), "file:3\n\n" + long_text);
  syslog(LOG_ERR, "a: b failed!\n");
  syslog(LOG_DAEMON | LOG_INFO, "two\nlines\n\n");
  EXPECT_THAT(board::log(), ElementsAre("<3>a: b failed!", "<6>two\\nlines\\n"));
}

TEST_F(Board, ResetRestoresFilesInterfacesAndProcesses) {
  const std::string before = output("cat /etc/hosts; ls -lR /etc /usr /sbin /var /mnt | md5sum");
  const std::string network =
      output("ip addr | grep -v 'valid_lft\\|BROADCAST'; cat /proc/net/route");
  EXPECT_EQ(output("echo x > /etc/hosts; rm -rf /sbin /var/log; mkdir -p /tmp/a/b /foo; "
                   "mv /usr/bin/awk /usr/bin/awk_bak; ln -s x /tmp/y; mkdir /mnt/sda1; "
                   "mount -t tmpfs none /mnt/sda1"),
            "");
  board::set_address("eth0.2", "10.0.0.5", "255.255.0.0");
  board::set_address("br-lan", "");
  board::set_address("ra9", "10.3.0.5");
  board::set_gateway("eth0.2", "10.0.7.1");
  board::add_point_to_point("ppp0", "10.64.0.2", "10.64.0.1");
  board::set_gateway("ppp0", "10.64.0.1");
  EXPECT_EQ(output("ip link set ra0 address 02:00:00:00:00:99; ip -6 addr add fd00::1/64 dev rai0"),
            "");
  EXPECT_THAT(output("ifconfig ppp0"), HasSubstr("inet addr:10.64.0.2  P-t-P:10.64.0.1"));
  EXPECT_EQ(output("route -n | awk '$1 == \"0.0.0.0\" {print $2, $8}' | sort"),
            "10.0.7.1 eth0.2\n10.64.0.1 ppp0\n");
  start_detached("while :; do usleep 1000; done");
  syslog(LOG_ERR, "x");
  board::reset();
  EXPECT_THAT(board::journal(), IsEmpty());
  EXPECT_THAT(board::log(), IsEmpty());
  EXPECT_EQ(board::console(), "");
  EXPECT_EQ(output("cat /etc/hosts; ls -lR /etc /usr /sbin /var /mnt | md5sum"), before);
  EXPECT_EQ(output("ip addr | grep -v 'valid_lft\\|BROADCAST'; cat /proc/net/route"), network);
  EXPECT_EQ(output("ls /tmp /foo"),
            "ls: /foo: No such file or directory\n/tmp:\noutput\nresolv.conf.auto\n1");
}

TEST_F(Board, FirmwareToolsAnswerFromTheBoardsState) {
  EXPECT_EQ(output("switch reg r 83"), "switch reg read offset=53, value=22\n");
  EXPECT_EQ(output("switch reg r 84 2> /dev/null"), "1");
  EXPECT_EQ(output("nvram get zelto Model; nvram get zelto None"), "ZELTO-R1\n");
  EXPECT_EQ(output("/sbin/get_7628_lan_wan_mac.sh wan"), "02:5A:10:20:30:02\n");
  EXPECT_EQ(output("iwconfig rai0 | grep Channel | awk '{print $2}' | cut -f2 -d="), "36\n");
  EXPECT_EQ(output("top -n 1 | grep CPU | grep usr | awk '{print $2}' | tr -d '0-9\n'"), "%");
  board::write_file("/var/board/wan_type", "pppoe\n");
  EXPECT_EQ(output("wan_check -I eth0.2"), "pppoe\n");
}

// The firmware takes the router to where its configuration and profiles say, as far as cable and
// air allow.
TEST_F(Board, UplinksFollowCableAirAndConfiguration) {
  board::write_file("/var/board/switch-83", "1f\n");
  EXPECT_EQ(output("wan_check -I eth0.2"), "") << "no cable";

  EXPECT_EQ(output("uci set network.lan.ipaddr=192.168.20.1; uci set network.wan.proto=static;"
                   "uci set network.wan.ipaddr=10.9.0.2; uci set network.wan.netmask=255.255.0.0;"
                   "uci set network.wan.gateway=10.9.0.1; /etc/init.d/network restart;"
                   "(ip -o -4 addr show br-lan; ip -o -4 addr show eth0.2) | awk '{print $4}';"
                   "route -n | awk '$1 == \"0.0.0.0\" {print $2}'"),
            "192.168.20.1/24\n10.9.0.2/16\n10.9.0.1\n");

  const struct {
    const char* interface;
    const char* chip;
    const char* name;
    const char* mode;
    const char* seen;  // the network joined, and the client's address
  } cases[] = {
      {"apcli0", "mt7628", "Cafe Upstairs", "wisp", "Cafe Upstairs\n100.64.20.2/24\n"},
      {"apcli0", "mt7628", "Cafe", "wisp", ""},
      {"apclii0", "mt7663", "Office", "repeater", "Office\n"},
      {"apclii0", "mt7663", "Office", "wisp", "Office\n100.64.30.2/24\n"},
      {"apclii0", "mt7663", "", "wisp", ""},
  };
  for (const auto& c : cases) {
    const std::string client = c.interface;
    output("sed -i 's/^ApCliSsid=.*/ApCliSsid=" + std::string(c.name) + "/' /etc/wireless/" +
           c.chip + "/" + c.chip + ".dat; uci set system.route.operationmode=" + c.mode +
           "; wifi_connect.sh " + client);
    EXPECT_EQ(output("{ cat /var/board/joined-" + client + "; ip -o -4 addr show " + client +
                     "; } 2> /dev/null | sed 's/.* inet \\([^ ]*\\).*/\\1/'"),
              c.seen)
        << client << " " << c.name;
  }
}

TEST_F(Board, ToolsOfTheFirmwareNoteTheirWorkInsteadOfHarming) {
  start_detached(
      "sleep 2;firstboot -y;/etc/init.d/Zelto_Cloud stop;sleep 1;reboot -f;"
      "lua /sbin/svctl.lua set_iptv_portmap;wifi_setup.sh wifi_channel all &");
  board::settle();
  EXPECT_EQ(board::read_file("/var/log/firmware.log"),
            "firstboot -y\nZelto_Cloud stop\nreboot -f\nsvctl.lua set_iptv_portmap\n"
            "wifi_setup.sh wifi_channel all\n");
}

TEST_F(Board, UsbDisksComeAndGo) {
  board::add_usb_disk("My disk", {"Mum's films"});
  EXPECT_EQ(output("grep -c /mnt/ /proc/mounts; ls /mnt/*"), "1\nMum's films\n");
  board::remove_usb_disk("My disk");
  EXPECT_EQ(output("grep /mnt/ /proc/mounts; ls /mnt"), "");
  board::add_usb_disk("My disk");
  board::reset();
  EXPECT_EQ(output("grep /mnt/ /proc/mounts; ls /mnt"), "");
  EXPECT_THROW(board::add_usb_disk("../etc"), std::runtime_error);
}

TEST_F(Board, AccountsAreKeptAndRefusedAsTheRealToolsDo) {
  const struct {
    const char* command;
    const char* seen;  // texts and the exit status unless it is 0
  } steps[] = {
      {"useradd -d '/mnt/a b' -s /bin/false anna; useradd -s /bin/false ben", ""},
      {"tail -n 2 /etc/passwd",
       "anna:x:1000:1000::/mnt/a b:/bin/false\n"
       "ben:x:1001:1001::/home/ben:/bin/false\n"},
      {"useradd anna", "useradd: user 'anna' already exists\n9"},
      {"useradd 'a b'", "useradd: invalid user name 'a b'\n3"},
      {"echo 'anna:a:\\b' | chpasswd; hash=$(awk -F : '/^anna/ {print $2}' /etc/shadow);"
       "[ \"$hash\" = \"$(mkpasswd -m sha512 -S $(echo $hash | cut -d '$' -f 3) 'a:\\b')\" ]",
       ""},
      {"echo carl:x | chpasswd", "chpasswd: (line 1, user carl) password not changed\n1"},
      {"(echo x;echo x) | smbpasswd -a -s ben; cut -d : -f 1,2 /etc/samba/smbpasswd", "ben:1001\n"},
      {"(echo x;echo y) | smbpasswd -a -s ben", "smbpasswd: Mismatch - password unchanged.\n1"},
      {"(echo x;echo x) | smbpasswd -a -s carl",
       "smbpasswd: Failed to add entry for user carl.\n1"},
      {"smbpasswd -x ben; cat /etc/samba/smbpasswd", "Deleted user ben.\n"},
      {"userdel anna; userdel ben; cut -d : -f 1 /etc/passwd /etc/shadow",
       "root\nnobody\nroot\nnobody\n"},
      {"userdel anna", "userdel: user 'anna' does not exist\n6"},
  };
  for (const auto& step : steps) EXPECT_EQ(output(step.command), step.seen) << step.command;
}

TEST_F(Board, UpdateDaemonTakesOrdersBySignal) {
  EXPECT_EQ(output("/etc/init.d/sys_daemon start; /etc/init.d/sys_daemon start"), "");
  const int daemon = std::stoi(output("ps | grep sys_daemon | grep -v grep | awk '{print $1}'"));
  board::exempt(daemon);
  ASSERT_EQ(kill(daemon, std::min(SIGRTMAX, 72)), 0);
  EXPECT_EQ(output("until grep 2 /tmp/upgrade_status; do usleep 10000; done 2> /dev/null"), "2\n");
  EXPECT_EQ(output("/etc/init.d/sys_daemon stop; cat /var/board/service-sys_daemon"), "stopped\n");
}

// The machine's own clock, kernel settings and programs stay out of reach, also for its root.
TEST_F(Board, HoldsOnlyItsOwn) {
  EXPECT_EQ(
      output("for file in /lib/libc.so.6 /proc/sys/kernel/panic; do"
             "  { echo x >> $file; } 2> /dev/null && echo wrote $file;"
             "done; mknod /tmp/disk b 8 0 2> /dev/null && echo made; date -s 2001-01-01 2>&1 |"
             " grep -o \"can't set date\""),
      "can't set date\n");
  EXPECT_GT(std::time(nullptr), 1'600'000'000);
}

TEST_F(Board, SettleAndResetLeaveAnExemptProcessAlone) {
  const pid_t modem = fork();
  ASSERT_GE(modem, 0);
  if (modem == 0) {
    for (;;) pause();
  }
  board::exempt(modem);
  board::settle();
  board::reset();
  EXPECT_EQ(kill(modem, 0), 0);
  EXPECT_EQ(kill(modem, SIGTERM), 0);
  int status = 0;
  EXPECT_EQ(waitpid(modem, &status, 0), modem);
  EXPECT_EQ(WTERMSIG(status), SIGTERM);
}

}  // namespace
