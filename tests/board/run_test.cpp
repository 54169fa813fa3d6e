// What the caller of board::run() sees; runs on the machine, not on a router.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <string>

#include "board/board.h"

namespace {

// A word in the command line of what the tests leave running on the router.
constexpr const char* kMarker = "zelto_board_run_test_marker";

bool marked_process_exists() {
  for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
    const std::string name = entry.path().filename();
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    if (board::read_file(entry.path() / "cmdline").find(kMarker) != std::string::npos) return true;
  }
  return false;
}

// The kernel takes a moment to end the processes of a namespace.
bool marked_process_ends() {
  constexpr timespec kPause{0, 10'000'000};
  for (int tries = 500; tries > 0; --tries) {
    if (!marked_process_exists()) return true;
    nanosleep(&kPause, nullptr);
  }
  return false;
}

int leave_something_running() {
  return std::system(("setsid sh -c 'while :; do usleep 10000; done; : " + std::string(kMarker) +
                      "' < /dev/null > /dev/null 2>&1 &")
                         .c_str());
}

TEST(Run, HandsBackTheExitStatus) {
  EXPECT_EQ(board::run({}, [] { return 3; }), 3);
  EXPECT_EQ(board::run({}, [] { return raise(SIGKILL); }), 128 + SIGKILL);
}

TEST(Run, HasTheModemItIsBuiltWith) {
  const auto kind = [] {
    board::reset();
    board::settle();
    return std::filesystem::exists("/dev/ttyUSB1") ? std::stoi(board::read_file("/tmp/mob_type"))
                                                   : 0;
  };
  EXPECT_EQ(board::run({.modem = "sa"}, kind), 5);
  EXPECT_EQ(board::run({}, kind), 0);
  EXPECT_EQ(board::run({.modem = "none such"}, kind), board::kCannotBoot);
}

TEST(Run, LeavesNothingBehind) {
  const std::string mounts = board::read_file("/proc/self/mountinfo");
  int booted = 0;
  EXPECT_EQ(board::run({.on_boot = [&](int process) { booted = process; }},
                       [] {
                         leave_something_running();
                         board::write_file("/tmp/zelto_board_run_test", "x");
                         return 0;
                       }),
            0);
  EXPECT_GT(booted, 1);
  EXPECT_NE(kill(booted, 0), 0);
  EXPECT_TRUE(marked_process_ends());
  EXPECT_FALSE(std::filesystem::exists("/tmp/zelto_board_run_test"));
  EXPECT_EQ(board::read_file("/proc/self/mountinfo"), mounts);
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

// Asked to end, run() ends the router; killed, it takes the router along.
class Interrupted : public testing::TestWithParam<int> {};

TEST_P(Interrupted, EndsTheRouter) {
  std::array<int, 2> ends{};
  ASSERT_EQ(pipe(ends.data()), 0);
  const pid_t caller = fork();
  ASSERT_GE(caller, 0);
  if (caller == 0) {
    _exit(board::run({}, [&] {
      leave_something_running();
      if (write(ends[1], "+", 1) != 1) return 1;
      for (;;) pause();
    }));
  }
  close(ends[1]);
  char byte = 0;
  ASSERT_EQ(read(ends[0], &byte, 1), 1);
  close(ends[0]);
  kill(caller, GetParam());
  int status = 0;
  ASSERT_EQ(waitpid(caller, &status, 0), caller);
  EXPECT_EQ(WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status), 128 + GetParam());
  EXPECT_TRUE(marked_process_ends());
}

INSTANTIATE_TEST_SUITE_P(Signals, Interrupted, testing::Values(SIGTERM, SIGKILL));

// As a container's filter or a hardened kernel does.
void forbid_unshare() {
  std::array filter{
      sock_filter BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
      sock_filter BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_unshare, 0, 1),
      sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EPERM),
      sock_filter BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
  };
  const sock_fprog program{filter.size(), filter.data()};
  if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) < 0 ||
      prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) < 0) {
    _exit(1);
  }
}

TEST(Run, SaysWhatIsMissing) {
  EXPECT_EXIT(
      {
        forbid_unshare();
        _exit(board::run({}, [] { return 0; }));
      },
      testing::ExitedWithCode(board::kCannotBoot),
      "unshare.*: Operation not permitted(.|\n)*CAP_SYS_ADMIN");
  EXPECT_EXIT(
      {
        setenv("ZELTO_BOARD_ROOTFS", "/nowhere", 1);
        _exit(board::run({}, [] { return 0; }));
      },
      testing::ExitedWithCode(board::kCannotBoot), "missing: /nowhere");
}

}  // namespace
