// Starting a shell that nobody waits for, from a process that may be large and have many threads.
//
// fork() copies page tables, which takes a time that grows with the caller's memory, and its child
// may not allocate or lock when other threads exist. So both children here share the caller's
// memory, as after vfork, and make system calls only. The first does what can fail, starts the
// second and is collected: the shell is nobody's child. The second becomes the shell while the
// caller has gone on already. What it needs until then is a Launch, which is kept until the kernel
// says that this memory is no longer in use.

#include <pthread.h>
#include <sched.h>
#include <signal.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "api/shell.h"

#ifdef __SANITIZE_THREAD__
extern "C" int __clone(int (*)(void*), void*, int, void*, ...) noexcept;
#endif

namespace zelto::shell {
namespace {

#ifdef __SANITIZE_THREAD__
// ThreadSanitizer replaces clone by one that takes the child for a forked copy of the memory.
constexpr auto* kClone = __clone;
#else
constexpr auto* kClone = clone;
#endif

constexpr std::size_t kStackSize = 16384;
constexpr int kLastDescriptor = 255;  // closed one by one where the kernel has no close_range
constexpr const char* kShell = "/bin/sh";
constexpr long kLongestWordPages = 32;  // the kernel's limit for one word of a command line
constexpr long kZeros[32] = {};  // a default action, and the empty set of signals, on every machine

struct Launch {
  // cppcheck-suppress uninitMemberVar ; the stack
  explicit Launch(std::string_view command) : text(command) {
    for (char** variable = environ; variable != nullptr && *variable != nullptr; ++variable) {
      variables.emplace_back(*variable);
    }
    for (const auto& variable : variables) pointers.push_back(variable.c_str());
    pointers.push_back(nullptr);
    environment = pointers.data();
  }

  // Copies, because the caller may change its environment before the shell has got it.
  std::string text;
  std::vector<std::string> variables;
  std::vector<const char*> pointers;
  const char* const* environment = nullptr;
  const char* arguments[4] = {"sh", "-c", text.c_str(), nullptr};

  const pid_t owner = getpid();
  bool started = false;
  pid_t child = 0;  // the second one; cleared by the kernel when it has left this memory
  Launch* next = nullptr;
  alignas(16) char stack[kStackSize];  // stays unwritten: clearing it would take as long as a clone
};

// Launches whose child may still be in this memory. Not behind a lock, which a fork in another
// thread would leave closed in its child for ever.
std::atomic<Launch*> launches = nullptr;

void keep(Launch* launch) {
  launch->next = launches;
  while (!launches.compare_exchange_weak(launch->next, launch)) {
  }
}

bool is_over(Launch& launch) {
  // In a forked copy of the caller nobody uses what was inherited, and the kernel clears nothing.
  return launch.owner != getpid() || std::atomic_ref(launch.child).load() == 0;
}

// Frees what is no longer in use; true when nothing is left.
bool release_finished() {
  bool empty = true;
  for (Launch* launch = launches.exchange(nullptr); launch != nullptr;) {
    Launch* const next = launch->next;
    if (is_over(*launch)) {
      delete launch;
    } else {
      keep(launch);
      empty = false;
    }
    launch = next;
  }
  return empty;
}

// Unloading the library would take the second child's code away while it still runs.
struct Unloading {
  ~Unloading() {
    constexpr timespec kPause = {.tv_sec = 0, .tv_nsec = 100'000};
    constexpr int kPatience = 10'000;  // pauses, a second in all
    for (int i = 0; i < kPatience && !release_finished(); ++i) nanosleep(&kPause, nullptr);
  }
} unloading;

// A child has the thread-local storage of the calling thread: errno, and what sanitizers and stack
// protectors keep there. The first one has it to itself, because the caller stands still. The
// second shares it with a thread that goes on or even ends, so it leaves it alone: it makes system
// calls that do not fail, through a function that the dynamic linker has resolved for the first
// already. Only an exec that fails, for want of memory, still writes errno there.
#define ZELTO_IN_CHILD \
  __attribute__((no_sanitize("address", "thread", "undefined"), no_stack_protector))

// Puts every signal back to its default, ignored ones too, and unblocks all.
ZELTO_IN_CHILD void reset_signals() {
  constexpr std::size_t kSignalSetSize = (_NSIG - 1 + 7) / 8;
  for (int number = 1; number < _NSIG; ++number) {
    if (number == SIGKILL || number == SIGSTOP) continue;
    syscall(SYS_rt_sigaction, number, kZeros, nullptr, kSignalSetSize);
  }
  syscall(SYS_rt_sigprocmask, SIG_SETMASK, kZeros, nullptr, kSignalSetSize);
}

ZELTO_IN_CHILD int become_shell(void* argument) {
  const auto* launch = static_cast<Launch*>(argument);
  syscall(SYS_setsid);
  reset_signals();
  syscall(SYS_execve, kShell, launch->arguments, launch->environment);
  syscall(SYS_exit_group, 127);
  return 127;
}

ZELTO_IN_CHILD void close_descriptors() {
#ifdef SYS_close_range
  if (syscall(SYS_close_range, 0U, ~0U, 0U) == 0) return;
#endif
  for (int descriptor = 0; descriptor <= kLastDescriptor; ++descriptor) {
    syscall(SYS_close, descriptor);
  }
}

ZELTO_IN_CHILD int start_second_child(void* argument) {
  auto* launch = static_cast<Launch*>(argument);
  // What is sent to the caller's process group from now on does not meet the command. The session
  // is left to the second child: on many kernels setsid is slow, and nobody waits there.
  syscall(SYS_setpgid, 0, 0);
  close_descriptors();
  syscall(SYS_umask, 0);
  if (syscall(SYS_chdir, "/") == 0) {
    constexpr int kFlags = CLONE_VM | CLONE_PARENT_SETTID | CLONE_CHILD_CLEARTID;
    launch->started = kClone(become_shell, launch->stack + kStackSize, kFlags, launch,
                             &launch->child, nullptr, &launch->child) > 0;
  }
  syscall(SYS_exit_group, 0);
  return 0;
}

// Runs the first child to its end.
void run_first_child(Launch* launch) {
  alignas(16) char stack[kStackSize];
  // Without an exit signal: the caller's own waits and SIGCHLD handler never meet this child.
  const pid_t child =
      kClone(start_second_child, stack + kStackSize, CLONE_VM | CLONE_VFORK, launch);
  // It has left already; this only clears its entry in the process table.
  while (child > 0 && waitpid(child, nullptr, static_cast<int>(__WCLONE)) < 0 && errno == EINTR) {
  }
}

}  // namespace

bool start(std::string_view command) {
  // What would make exec fail is found out before, because nobody hears of it later.
  if (command.size() >= static_cast<std::size_t>(kLongestWordPages * sysconf(_SC_PAGESIZE)) ||
      access(kShell, X_OK) < 0) {
    return false;
  }
  release_finished();
  auto launch = std::make_unique<Launch>(command);
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  int cancel_state = 0;
  pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &cancel_state);
  pthread_sigmask(SIG_BLOCK, &all, &before);
  run_first_child(launch.get());
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  pthread_setcancelstate(cancel_state, nullptr);

  if (!launch->started) return false;
  keep(launch.release());
  return true;
}

}  // namespace zelto::shell
