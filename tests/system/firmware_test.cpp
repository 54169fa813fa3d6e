// The firmware's version and its upgrade.

#include <sys/syscall.h>
#include <unistd.h>

#include <utility>
#include <vector>

#include <zelto/system.h>

#include "support/requests.h"
#include "support/router_test.h"

namespace {

constexpr int kStartUpgrade = 72;

// What the library's signals meet, as only kernels for MIPS have one of that number.
std::vector<pid_t> told;
bool can_be_told = true;

}  // namespace

extern "C" __attribute__((visibility("default"))) int kill(pid_t pid, int sig) noexcept {
  if (sig != kStartUpgrade) return static_cast<int>(syscall(SYS_kill, pid, sig));
  told.push_back(pid);
  return can_be_told ? 0 : -1;
}

namespace zelto_test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Firmware : public RouterTest {};

TEST_F(Firmware, TellsItsVersionAndWhatAnEarlierCheckFound) {
  const std::string none = R"(","result":5})";
  const std::string no_notes = R"(","content_zh":"","content_en":""})";
  const struct {
    std::string version;
    std::string offer;  // "" for no file
    std::string reply;  // behind the type
    std::string logged = "";
  } cases[] = {
      {"ZELTO R1,1.0.3\r\n", "", "1.0.3" + none, "can not open /tmp/upgrade.txt!"},
      {"1.0.3", "what\n1.0.4\r\nmore\n", R"(1.0.3","lastver":"1.0.4)" + no_notes},
      {"R1,x,,1.0.3,", "what\n" + std::string(511, '4'),
       R"(1.0.3","lastver":")" + std::string(510, '4') + no_notes},
      {"R1," + std::string(47, '3'), "1.0.4\n", std::string(46, '3') + none,
       "the file is null ,can not get the right version!"},
      {"", "what\n\n1.0.4\n", none, "the file is null ,can not get the right version!"},
  };
  for (const auto& c : cases) {
    board::reset();
    board::write_file("/etc/FW-Version", c.version);
    if (!c.offer.empty()) board::write_file("/tmp/upgrade.txt", c.offer);
    EXPECT_EQ(ask(command("getfirmver")), R"({"type":"getfirmver","curver":")" + c.reply);
    EXPECT_THAT(board::journal(), ElementsAre("start upgrade check"));
    EXPECT_EQ(board::log(), Lines(c.logged.empty() ? 0 : 1, "<3>" + c.logged));
  }
  board::write_file("/etc/FW-Version", "ZELTO R1,1.0.3\n2\n");
  EXPECT_EQ(ask(command("getversion")), command("getversion", R"("version":"ZELTO R1,1.0.3")"));
  board::remove_file("/etc/FW-Version");
  expect_refused("getfirmver", "");
  EXPECT_EQ(board::log().back(), "<3>open /etc/FW-Version failed!");
  EXPECT_EQ(ask(command("getversion")), command("getversion", R"("version":"")"));
}

TEST_F(Firmware, TellsHowFarAnUpgradeIs) {
  const auto known = [](const char* status) {
    return command("getupgradestatus", R"("result":0,)" + member("status", status));
  };
  const auto unknown = result("getupgradestatus", 1);
  EXPECT_EQ(ask(command("getupgradestatus")), known("downing")) << "without a file";
  const std::pair<const char*, std::string> cases[] = {
      {"", known("downing")},    {"x", known("downing")},
      {"0\n", known("downing")}, {"1", known("downing")},
      {"3\n", known("timeout")}, {"4", known("md5_Fail")},
      {"5", known("down_Fail")}, {"6", unknown},
      {"-1", unknown},           {"9999999999", unknown},
      {"2\n", known("burning")},
  };
  for (const auto& [state, reply] : cases) {
    board::write_file("/tmp/upgrade_status", state);
    EXPECT_EQ(ask(command("getupgradestatus")), reply) << state;
    const std::string stage = state[0] == '1' ? "download" : state[0] == '2' ? "upgrade" : "";
    EXPECT_EQ(
        call(bs_GetFirmwareVer, command("getstatus").c_str()).reply,
        stage.empty() ? result("getfirmver", 1) : command("getfirmver", member("status", stage)));
  }
  EXPECT_EQ(call(bs_GetUpgradeStatus, "{}").reply, R"({"result":1})");
}

TEST_F(Firmware, TellsTheDaemonToUpgrade) {
  told.clear();
  EXPECT_EQ(ask(command("upgrade")), result("upgrade", 1));
  EXPECT_EQ(call(bs_Upgrade, command("upgrades").c_str()).reply, result("upgrade", 1));
  EXPECT_THAT(board::log(), ElementsAre("<3>get sys_daemon pid failed"));
  EXPECT_THAT(told, IsEmpty());
  ASSERT_EQ(board::quiet({"/etc/init.d/sys_daemon", "start"}), 0);
  const pid_t daemon = std::stoi(board::read_file("/var/run/sys_daemon.pid"));
  board::exempt(daemon);
  EXPECT_EQ(ask(command("upgrade")), result("upgrade", 0));
  can_be_told = false;
  EXPECT_EQ(ask(command("upgrade")), result("upgrade", 1));
  can_be_told = true;
  EXPECT_THAT(told, ElementsAre(daemon, daemon));
  EXPECT_EQ(board::log().back(), "<3>the system daemon cannot be signalled!");
  EXPECT_EQ(board::quiet({"/etc/init.d/sys_daemon", "stop"}), 0);
}

}  // namespace
}  // namespace zelto_test
