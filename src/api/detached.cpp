// Starting a shell that nobody waits for, from a process that may be large and have many threads.
//
// fork() copies page tables, which takes a time that grows with the caller's memory, and its child
// may not allocate or lock when other threads exist. So both children here share the caller's
// memory until the shell is in place (as vfork does): the calling thread stands still meanwhile,
// and they make system calls only.

#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>

#include "api/shell.h"

namespace zelto::shell {
namespace {

constexpr std::size_t kStackSize = 16384;
constexpr int kLastDescriptor = 255;  // closed one by one where the kernel has no close_range

struct Launch {
  const char* command = nullptr;
  bool started = false;
  alignas(16) std::array<char, kStackSize> first_stack;
  alignas(16) std::array<char, kStackSize> second_stack;
};

// Runs `child` on `stack` in the caller's memory; returns when it has exited or become a program.
pid_t spawn(int (*child)(void*), std::array<char, kStackSize>& stack, Launch* launch) {
  // Without an exit signal: the caller's own waits and SIGCHLD handler never meet this child.
  return clone(child, stack.data() + stack.size(), CLONE_VM | CLONE_VFORK, launch);
}

void close_descriptors() {
#ifdef SYS_close_range
  if (syscall(SYS_close_range, 0U, ~0U, 0U) == 0) return;
#endif
  for (int descriptor = 0; descriptor <= kLastDescriptor; ++descriptor) close(descriptor);
}

// Puts every signal back to its default, ignored ones too, and unblocks all. Straight to the
// kernel: the C library (and a sanitizer in it) keeps notes of handlers in memory that is shared.
// No signal can arrive in between, because nobody knows this process yet.
void reset_signals() {
  constexpr std::size_t kSignalSetSize = (_NSIG - 1 + 7) / 8;
  const std::array<long, 32> default_action{};  // all zeros is SIG_DFL on every architecture
  for (int number = 1; number < _NSIG; ++number) {
    syscall(SYS_rt_sigaction, number, default_action.data(), nullptr, kSignalSetSize);
  }
  const std::array<unsigned char, 128> no_signals{};
  syscall(SYS_rt_sigprocmask, SIG_SETMASK, no_signals.data(), nullptr, kSignalSetSize);
}

__attribute__((no_sanitize("address", "thread", "undefined"))) int become_shell(void* argument) {
  auto* launch = static_cast<Launch*>(argument);
  close_descriptors();
  umask(0);
  reset_signals();
  const char* const arguments[] = {"sh", "-c", launch->command, nullptr};
  if (chdir("/") == 0) {
    // exec keeps the memory shared until it succeeds, so the flag is taken back when it does not.
    launch->started = true;
    execve("/bin/sh", const_cast<char* const*>(arguments), environ);
    launch->started = false;
  }
  _exit(127);
}

__attribute__((no_sanitize("address", "thread", "undefined"))) int leave_session(void* argument) {
  auto* launch = static_cast<Launch*>(argument);
  setsid();
  spawn(become_shell, launch->second_stack, launch);
  _exit(0);
}

}  // namespace

bool start(std::string_view command) {
  const std::string text(command);
  Launch launch;  // its stacks stay unwritten: clearing them would cost as much as the spawn
  launch.command = text.c_str();
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  int cancel_state = 0;
  pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &cancel_state);
  pthread_sigmask(SIG_BLOCK, &all, &before);

  const pid_t first = spawn(leave_session, launch.first_stack, &launch);
  if (first > 0) {
    // It has exited already; this only clears its entry in the process table.
    while (waitpid(first, nullptr, __WCLONE) < 0 && errno == EINTR) {
    }
  }

  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  pthread_setcancelstate(cancel_state, nullptr);
  return first > 0 && launch.started;
}

}  // namespace zelto::shell
