// The attached devices.

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <zelto/access.h>

#include "access/access_test.h"

namespace zelto_test {
namespace {

constexpr const char* kList = "/tmp/terminal_list";

class Terminals : public AccessTest {
 protected:
  static std::string listed(const std::string& line) {
    board::write_file(kList, line);
    return ask(R"({"type":"getterminallist"})");
  }
  static std::string stations(CommandHandler handler, const std::string& type) {
    return call(handler, command(type, "").c_str()).reply;
  }
};

std::string terminal(const std::string& up, const std::string& link, const std::string& name) {
  return R"({"type":"getterminallist","ver":"2","list":[{"ip":"192.168.10.2","mac":"M",)" + up +
         link + R"(,"name":")" + name + R"(","ostype":"","sign":"0"}]})";
}

TEST_F(Terminals, ShowsEachFieldOfALine) {
  const std::string all = R"("upspeed":"4","downspeed":"3","totalup":"9","totaldl":"8",)";
  const auto link = [](const std::string& time, const std::string& type) {
    return R"("link_time":")" + time + R"(","link_type":")" + type + "\"";
  };
  const struct {
    std::string fields;
    std::string reply;
  } cases[] = {
      {"90061 3 4 eth0 phone 8 9\n", terminal(all, link("1-1:1:1", "0"), "phone")},
      {"59 3 4 ra0 phone 8 9", terminal(all, link("0:0:59", "1"), "phone")},
      {"18189 3 4 ra1 kitchen tablet 8 9\n", terminal(all, link("5:3:9", "1"), "kitchen tablet")},
      {"173704 3 4 rai0 a b c 8 9\n", terminal(all, link("2-0:15:4", "2"), "a b c")},
      {"2678400 3 4 rai1 p 8 9\n", terminal(all, link("0:0:0", "2"), "p")},
      {"2591999 3 4 rai01 p 8 9\n", terminal(all, link("29-23:59:59", ""), "p")},
      {"x 3 4 apcli0 p 8 9\n", terminal(all, link("0:0:0", ""), "p")},
      {"-1 3 4 eth p 8 9\n", terminal(all, link("30-23:59:59", ""), "p")},
      {"99999999999999999999999 3 4 ra p 8 9\n", terminal(all, link("0:0:0", ""), "p")},
      {"0 3 4 ra0  8 9\n", terminal(all, link("0:0:0", "1"), "")},
      {"0 3 4 ra0 p 8\n", terminal(R"("upspeed":"4","downspeed":"3","totalup":"","totaldl":"8",)",
                                   link("0:0:0", "1"), "p")},
      {"0 3 4 ra0 p\n", terminal(R"("upspeed":"4","downspeed":"3","totalup":"","totaldl":"",)",
                                 link("0:0:0", "1"), "p")},
      {"\n", terminal(R"("upspeed":"","downspeed":"","totalup":"","totaldl":"",)",
                      link("0:0:0", ""), "")},
      {"0 3 4 ra0 " + std::string(5000, 'n') + " 8 9\n",
       terminal(all, link("0:0:0", "1"), std::string(5000, 'n'))},
  };
  for (const auto& c : cases) EXPECT_EQ(listed("192.168.10.2 M " + c.fields), c.reply) << c.fields;
  EXPECT_EQ(listed("\n\n"), R"({"type":"getterminallist","ver":"2","list":[]})");
  EXPECT_THAT(listed("1 M 0 3 4 ra0 \xff\"\\ 8 9\n"), HasSubstr("\"name\":\"\xef\xbf\xbd\\\"\\\\"));
  EXPECT_THAT(board::log(), IsEmpty());
}

TEST_F(Terminals, CountsByMedium) {
  board::write_file(kList,
                    "1 M 0 3 4 eth0 a 8 9\n1 M 0 3 4 ra0 a b 8 9\n1 M 0 3 4 ra1 a 8 9\n\n"
                    "1 M 0 3 4 rai0 a 8 9\n1 M 0 3 4 rai1 a 8 9\n1 M 0 3 4 rai1\n"
                    "1 M 0 3 4 apcli0 a 8 9\n1 M\n1 M 0 3 4 ra0 a 8 9");
  EXPECT_EQ(ask(R"({"type":"getclientnum"})"),
            R"({"type":"getclientnum","cable":1,"_2g":3,"_5g":3})");
  int cable = 10;
  int on_2g = 20;
  int on_5g = 30;
  EXPECT_EQ(get_client_num(&cable, &on_2g, &on_5g), 1);
  EXPECT_THAT((std::array{cable, on_2g, on_5g}), ElementsAre(11, 23, 33));
  board::remove_file(kList);
  EXPECT_EQ(get_client_num(&cable, &on_2g, &on_5g), 0);
}

TEST_F(Terminals, ListsStations) {
  board::write_file("/tmp/wifi_list",
                    "A ra0 phone\nB eth0 wired\n\nC apcli0 my phone\nD rai0\nE ra1 x");
  EXPECT_EQ(stations(bs_GetWiFiStaInfo, "getwifistainfo"),
            command("getwifistainfo",
                    R"("list":[{"mac":"A","devname":"phone"},{"mac":"C","devname":"my phone"},)"
                    R"({"mac":"D","devname":""},{"mac":"E","devname":"x"}],"num":"4")"));
  board::write_file(kList,
                    "1 A 0 3 4 ra0 phone 8 9\n1 B 0 3 4 eth0 b 8 9\n1 C 0 3 4 apcli0 my tv 8 9\n");
  EXPECT_EQ(
      stations(bs_GetCurStaInfo, "getcurstainfo"),
      command("getcurstainfo",
              R"("list":[{"mac":"A","devname":"phone"},{"mac":"C","devname":"my tv"}],"num":"2")"));
  EXPECT_THAT(board::log(), IsEmpty());
}

TEST_F(Terminals, NothingIsReadWithoutTheLock) {
  board::write_file(kList, "1 A 0 3 4 ra0 phone 8 9\n");
  board::remove_file("/etc/terminal_lock_file");
  ASSERT_EQ(mkdir("/etc/terminal_lock_file", 0700), 0);
  EXPECT_EQ(ask(R"({"type":"getterminallist"})"),
            R"({"type":"getterminallist","ver":"2","result":1})");
  EXPECT_EQ(ask(R"({"type":"getclientnum"})"), result("getclientnum", 1));
  EXPECT_THAT(board::log(), IsEmpty());
  EXPECT_EQ(stations(bs_GetCurStaInfo, "getcurstainfo"), result("getcurstainfo", 1));
  EXPECT_THAT(board::log(), ElementsAre("<3>fopen TERMINAL_LOCK_FILE failed"));
  rmdir("/etc/terminal_lock_file");
}

// The writer holds the lock while its list is not complete.
TEST_F(Terminals, TheLockIsWaitedFor) {
  for (const char* lock : {"/etc/terminal_lock_file", "/tmp/wifi_list"}) {
    const bool own = std::string(lock) == "/tmp/wifi_list";
    board::write_file(kList, "half");
    board::write_file("/tmp/wifi_list", "half");
    const int file = open(lock, O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    ASSERT_EQ(flock(file, LOCK_EX), 0);
    std::array<int, 2> answer{};
    ASSERT_EQ(pipe(answer.data()), 0);
    const pid_t reader = fork();
    if (reader == 0) {
      const auto reply = own ? stations(bs_GetWiFiStaInfo, "getwifistainfo")
                             : stations(bs_GetCurStaInfo, "getcurstainfo");
      _exit(write(answer[1], reply.data(), reply.size()) > 0 ? 0 : 1);
    }
    usleep(50'000);
    int status = 0;
    EXPECT_EQ(waitpid(reader, &status, WNOHANG), 0) << "did not wait for " << lock;
    board::write_file(kList, "1 A 0 3 4 ra0 whole 8 9\n");
    board::write_file("/tmp/wifi_list", "A ra0 whole\n");
    flock(file, LOCK_UN);
    waitpid(reader, &status, 0);
    std::array<char, 1000> text{};
    EXPECT_GT(read(answer[0], text.data(), text.size() - 1), 0);
    EXPECT_THAT(text.data(), HasSubstr("whole"));
    for (const int descriptor : {file, answer[0], answer[1]}) close(descriptor);
  }
}

}  // namespace
}  // namespace zelto_test
