#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include <zelto/utilities.h>

#include "support/router_test.h"

namespace zelto_test {
namespace {

static_assert(sizeof(off_t) == 8 && sizeof(time_t) == 8, "64 bits on every machine");
#ifdef __mips__
static_assert(_NSIG > 72, "the update daemon's signal exists");
#endif

class Machine : public RouterTest {};

TEST_F(Machine, KnowsTimesAfter2038) {
  constexpr timespec kYear2100[] = {{4'102'444'800, 0}, {4'102'444'800, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, "/etc/config/system", kYear2100, 0), 0);
  EXPECT_THAT(ask(R"({"type":"getlanguage"})"), testing::Not(testing::HasSubstr(R"("result":1)")));
  // The virtual router itself is built on a C++ library that may not know such times.
  ASSERT_EQ(utimensat(AT_FDCWD, "/etc/config/system", nullptr, 0), 0);
  board::write_file("/tmp/terminal_list", "192.168.10.2 M 4000000000 3 4 eth0 phone 8 9\n");
  EXPECT_THAT(ask(R"({"type":"getterminallist"})"),
              testing::HasSubstr(R"("link_time":"1-7:6:40")"));
}

TEST_F(Machine, KnowsFilesAbove4GiB) {
  ASSERT_GE(close(creat("/tmp/large", 0600)), 0);
  ASSERT_EQ(truncate("/tmp/large", off_t{5} << 30), 0);
  EXPECT_EQ(check_file_exist("/tmp/large"), check_file_exist("/etc/config/system"));
}

#ifdef __mips__
TEST_F(Machine, TellsTheUpdateDaemonBySignal72) {
  if (getenv("ZELTO_UNDER_QEMU_USER") != nullptr) GTEST_SKIP() << "no such signal there";
  constexpr int kEnough = 500;
  const auto wait_for = [](const char* path) {
    for (int i = 0; i < kEnough && access(path, F_OK) < 0; ++i) usleep(10'000);
  };
  ASSERT_EQ(board::quiet({"/etc/init.d/sys_daemon", "start"}), 0);
  board::exempt(std::stoi(board::read_file("/var/run/sys_daemon.pid")));
  wait_for("/var/run/sys_daemon");
  EXPECT_EQ(ask(R"({"type":"upgrade"})"), R"({"type":"upgrade","result":0})");
  wait_for("/tmp/upgrade_status");
  EXPECT_EQ(access("/tmp/upgrade_status", F_OK), 0);
  EXPECT_EQ(board::quiet({"/etc/init.d/sys_daemon", "stop"}), 0);
}
#endif

}  // namespace
}  // namespace zelto_test
