// Commands, processes, files, texts and base64.

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include <zelto/utilities.h>

#include "support/effects.h"
#include "support/router_test.h"

namespace {

using testing::ElementsAre;

class Utilities : public zelto_test::RouterTest {};

TEST_F(Utilities, DetachedCommandStartsClean) {
  const int high = fcntl(open("/dev/null", O_RDONLY), F_DUPFD, 200);
  signal(SIGPIPE, SIG_IGN);
  signal(SIGCHLD, SIG_IGN);
  // Without descriptors the command has to open its own before anything else.
  EXPECT_EQ(zelto_system("exec >/tmp/out 2>&1 3</dev/null; pwd; umask; grep -E 'SigIgn|SigBlk' "
                         "/proc/self/status; cut -d' ' -f4,6 /proc/$$/stat; echo $$; ls "
                         "/proc/$$/fd"),
            0);
  board::settle();
  signal(SIGCHLD, SIG_DFL);
  signal(SIGPIPE, SIG_DFL);
  close(high);

  int parent = 0;
  int session = 0;
  int shell = 0;
  char blocked[40] = "";
  char ignored[40] = "";
  const auto out = board::read_file("/tmp/out");
  ASSERT_EQ(std::sscanf(out.c_str(), "/\n0000\nSigBlk:\t%39s\nSigIgn:\t%39s\n%d %d\n%d\n", blocked,
                        ignored, &parent, &session, &shell),
            5)
      << out;
  EXPECT_THAT(blocked, testing::MatchesRegex("0+"));
  EXPECT_THAT(ignored, testing::MatchesRegex("0+"));
  EXPECT_NE(parent, getpid());
  EXPECT_NE(session, getsid(0));
  EXPECT_THAT(out, testing::Not(testing::HasSubstr("\n200\n")));
  EXPECT_THAT(board::journal(), ElementsAre(testing::StartsWith("start exec >/tmp/out")));
}

TEST_F(Utilities, DetachedCommandLeavesNothingWithTheCaller) {
  std::printf("%s", "");
  const auto descriptors = zelto_test::open_descriptors();
  FILE* buffered = std::fopen("/tmp/buffered", "w");
  std::fputs("once", buffered);
  for (int i = 0; i < 20; ++i) EXPECT_EQ(zelto_system("exit 3"), 0);
  std::fclose(buffered);
  EXPECT_EQ(board::read_file("/tmp/buffered"), "once");
  EXPECT_EQ(zelto_test::open_descriptors(), descriptors);
  errno = 0;
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG | __WALL), -1);
  EXPECT_EQ(errno, ECHILD);
}

TEST_F(Utilities, DetachedCommandsKeepTheTextAndEnvironmentOfTheirCall) {
  std::vector<std::string> expected;
  for (int i = 100; i < 200; ++i) {
    const auto number = std::to_string(i);
    setenv("NUMBER", number.c_str(), 1);
    EXPECT_EQ(zelto_system(("echo $NUMBER " + number + " >>/tmp/out").c_str()), 0);
    expected.push_back(number + " " + number);
  }
  unsetenv("NUMBER");
  board::settle();
  EXPECT_THAT(zelto_test::expand(board::read_file("/tmp/out")),
              testing::UnorderedElementsAreArray(expected));
}

TEST_F(Utilities, DetachedCommandThatCannotBeStarted) {
  EXPECT_EQ(zelto_system(nullptr), -1);
  EXPECT_EQ(zelto_system(std::string(1 << 20, ':').c_str()), -1);
  ASSERT_EQ(rename("/bin/sh", "/bin/away"), 0);
  EXPECT_EQ(zelto_system(":"), -1);
  ASSERT_EQ(rename("/bin/away", "/bin/sh"), 0);
}

TEST_F(Utilities, CapturesAtMostWhatIsAskedFor) {
  char buffer[16] = "";
  EXPECT_EQ(shellcmd("printf 0123456789abcdefgh", buffer, 4), buffer);
  EXPECT_STREQ(buffer, "0123");
  EXPECT_EQ(shellcmd(nullptr, buffer, 4), nullptr);
  {
    const zelto_test::NoDescriptors none;
    EXPECT_EQ(shellcmd("printf x", buffer, 4), nullptr);
  }
  EXPECT_STREQ(buffer, "0123");
}

TEST_F(Utilities, RunsOnTheConsole) {
  EXPECT_EQ(WEXITSTATUS(do_system("{ echo %s; echo err >&2; ! true; }", "hello")), 1);
  EXPECT_THAT(
      board::console(),
      testing::MatchesRegex("zeltoapi.c:do_system:[0-9]+:. echo hello; echo err >&2; ! true; . "
                            "1>/dev/console 2>&1\n\nhello\nerr\n"));
  board::reset();
  EXPECT_EQ(do_system("true %s", std::string(300, 'x').c_str()), 0);
  EXPECT_THAT(board::journal(), ElementsAre("run true " + std::string(250, 'x')));
}

// A process of the router that shows up in its process list under `name`.
class Process {
 public:
  explicit Process(const std::string& name) {
    const std::string path = "/tmp/" + name;
    board::write_file(path, "#!/bin/busybox sh\nread forever\n");
    board::quiet({"chmod", "+x", path});
    if (pipe(stdin_) != 0) throw std::runtime_error("pipe");
    id_ = fork();
    if (id_ == 0) {
      dup2(stdin_[0], STDIN_FILENO);
      close(stdin_[1]);
      execl(path.c_str(), path.c_str(), nullptr);
      _exit(127);
    }
    board::exempt(id_);
  }
  ~Process() {
    kill(id_, SIGKILL);
    waitpid(id_, nullptr, 0);
    close(stdin_[0]);
    close(stdin_[1]);
  }
  Process(const Process&) = delete;
  Process& operator=(const Process&) = delete;

  int id() const { return id_; }
  // Until the program has replaced the copy of the test in the process list.
  void wait_until_listed(const char* name) const {
    const auto command = "/proc/" + std::to_string(id_) + "/cmdline";
    while (board::read_file(command).find(name) == std::string::npos) usleep(1000);
  }

 private:
  int stdin_[2] = {-1, -1};
  int id_;
};

TEST_F(Utilities, FindsProcesses) {
  EXPECT_EQ(check_status("sys_daemon"), -1);
  EXPECT_EQ(get_sys_daemon_pid(), -1);
  {
    const Process daemon("sys_daemon");
    daemon.wait_until_listed("sys_daemon");
    EXPECT_EQ(check_status("sys_daemon"), 0);
    EXPECT_EQ(get_sys_daemon_pid(), daemon.id());
    const Process second("sys_daemon_2");
    second.wait_until_listed("sys_daemon_2");
    EXPECT_EQ(check_status("sys_daemon"), -1) << "two lines match";
  }
  EXPECT_EQ(check_status("x; touch /tmp/owned"), -1);
  EXPECT_EQ(check_status("-V"), -1);
  EXPECT_EQ(check_status(std::string(100, 'x').c_str()), -1);
  EXPECT_EQ(board::read_file("/tmp/owned"), "");
  EXPECT_EQ(board::quiet({"test", "-e", "/tmp/owned"}), 1);
}

TEST_F(Utilities, FileCountsOnlyWithContent) {
  board::write_file("/tmp/empty", "");
  board::write_file("/tmp/full", "x");
  EXPECT_EQ(check_file_exist("/tmp/empty"), 0);
  EXPECT_EQ(check_file_exist("/tmp/full"), 1);
  EXPECT_EQ(check_file_exist("/tmp/none"), 0);
  EXPECT_EQ(check_file_exist(nullptr), 0);
}

TEST_F(Utilities, CutsLineEnds) {
  const std::pair<const char*, const char*> cases[] = {
      {"a\r\n", "a"}, {"a\n\n", "a"}, {"a\n\n\n", "a\n"}, {"a\n", "a"},     {"a", "a"},
      {"\n", ""},     {"", ""},       {"\r\n", ""},       {"a\nb", "a\nb"},
  };
  for (const auto& [text, expected] : cases) {
    char buffer[8] = "";
    std::strcpy(buffer, text);
    rm_eol(buffer);
    EXPECT_STREQ(buffer, expected);
  }
}

TEST_F(Utilities, SplitsAndRemoves) {
  char text[] = ",,ab,;c,d;";
  char* tokens[8] = {};
  int count = -1;
  split(text, ",;", tokens, &count);
  ASSERT_EQ(count, 3);
  EXPECT_THAT(std::vector<std::string>(tokens, tokens + 3), ElementsAre("ab", "c", "d"));
  count = -1;
  char empty[] = "";
  split(empty, ",", tokens, &count);
  split(text, "", tokens, &count);
  split(nullptr, ",", tokens, &count);
  EXPECT_EQ(count, -1);

  char colons[] = ":a::b:";
  EXPECT_STREQ(del_mychar(colons, ':'), "ab");
}

TEST_F(Utilities, ReadsTheBoardsAddresses) {
  char lan[18] = "";
  char wan[18] = "";
  EXPECT_EQ(get_7628_lan_mac(lan), lan);
  EXPECT_EQ(get_7628_wan_mac(wan), wan);
  EXPECT_THAT(lan, testing::MatchesRegex("([0-9A-Fa-f]{2}:){5}[0-9A-Fa-f]{2}"));
  EXPECT_THAT(board::journal(), ElementsAre("run /sbin/get_7628_lan_wan_mac.sh lan",
                                            "run /sbin/get_7628_lan_wan_mac.sh wan"));
  EXPECT_STRNE(lan, wan);
}

TEST_F(Utilities, Base64RoundTrips) {
  const std::pair<std::string, std::string> cases[] = {
      {"", ""},
      {"f", "Zg=="},
      {"fo", "Zm8="},
      {"foo", "Zm9v"},
      {"foob", "Zm9vYg=="},
      {"foobar", "Zm9vYmFy"},
      {"\xff\xfe\xfd", "//79"},
      {std::string("\0\x10\x83", 3), "ABCD"},
  };
  for (const auto& [bytes, encoded] : cases) {
    char text[16] = "";
    const auto* source = reinterpret_cast<const unsigned char*>(bytes.data());
    EXPECT_EQ(zelto_base64_encode(source, text, static_cast<int>(bytes.size())), 1);
    EXPECT_EQ(text, encoded);
    unsigned char decoded[16] = "";
    const int count = zelto_base64_decode(encoded.c_str(), decoded);
    EXPECT_EQ(std::string(decoded, decoded + count), bytes);
  }
  // Foreign and missing characters count as 255 and never lead beyond the text.
  const std::pair<const char*, std::string> odd[] = {{"!!!!", "\xff\xff\xbf"},
                                                     {"A", "\x03\xff\xbf"},
                                                     {"Zg==Zg==", "f"},
                                                     {"Zm9vZ", "foo\x67\xff\xbf"}};
  for (const auto& [text, bytes] : odd) {
    unsigned char decoded[16] = "";
    const int count = zelto_base64_decode(text, decoded);
    EXPECT_EQ(std::string(decoded, decoded + count), bytes) << text;
  }
}

}  // namespace
