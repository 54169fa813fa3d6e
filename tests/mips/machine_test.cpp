#include <fcntl.h>
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>

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
  board::write_file("/tmp/terminal_list", "192.168.10.2 M 4000000000 3 4 eth0 phone 8 9\n");
  EXPECT_THAT(ask(R"({"type":"getterminallist"})"),
              testing::HasSubstr(R"("link_time":"1-7:6:40")"));
}

TEST_F(Machine, KnowsFilesAbove4GiB) {
  ASSERT_GE(close(creat("/tmp/large", 0600)), 0);
  ASSERT_EQ(truncate("/tmp/large", off_t{5} << 30), 0);
  EXPECT_EQ(check_file_exist("/tmp/large"), check_file_exist("/etc/config/system"));
}

}  // namespace
}  // namespace zelto_test
