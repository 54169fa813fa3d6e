#include "reliability/traced.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <filesystem>
#include <initializer_list>
#include <set>
#include <stdexcept>

namespace reliability {
namespace {

using Call = __ptrace_syscall_info;

bool is_any(const Call&) {
  return true;
}

bool is_one_of(std::initializer_list<long> numbers, const Call& call) {
  const auto number = static_cast<long>(call.entry.nr);
  return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

bool needs_room(const Call& call) {
  const bool creates = call.entry.nr == SYS_openat && (call.entry.args[2] & O_CREAT) != 0;
  return creates || is_one_of({SYS_write, SYS_writev, SYS_pwrite64, SYS_fsync, SYS_fdatasync,
                               SYS_rename, SYS_renameat, SYS_renameat2, SYS_mkdir},
                              call);
}

bool needs_descriptor(const Call& call) {
  return is_one_of({SYS_openat, SYS_open, SYS_socket, SYS_pipe2, SYS_dup}, call);
}

void check(long result) {
  if (result < 0 && errno != ESRCH) throw std::runtime_error("ptrace");
}

class Tracer {
 public:
  Tracer(const Harm& harm, int at) : harm_(harm), at_(at) {}

  Run run(const std::function<bool()>& action) {
    first_ = fork();
    if (first_ == 0) {
      if (ptrace(PTRACE_TRACEME, 0, 0, 0) != 0 || raise(SIGSTOP) != 0) _exit(2);
      try {
        _exit(action() ? 0 : 1);
      } catch (...) {
        _exit(1);  // a refusal, or no memory; the test goes on in the other process
      }
    }
    int status = 0;
    if (waitpid(first_, &status, 0) != first_ || !WIFSTOPPED(status)) check(-1);
    const unsigned long follow =
        harm_.follows ? PTRACE_O_TRACEFORK | PTRACE_O_TRACEVFORK | PTRACE_O_TRACECLONE : 0;
    check(ptrace(PTRACE_SETOPTIONS, first_, 0,
                 PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACEEXEC | PTRACE_O_EXITKILL | follow));
    traced_.insert(first_);
    resume(first_, 0);
    while (true) {
      const pid_t process = waitpid(-1, &status, __WALL);
      if (process > 0) handle(process, status);
      if (process < 0 && errno == ECHILD) return run_;
    }
  }

 private:
  static void resume(pid_t process, int signal) {
    check(ptrace(PTRACE_SYSCALL, process, 0, signal));
  }

  void handle(pid_t process, int status) {
    if (!WIFSTOPPED(status)) {
      traced_.erase(process);
      if (process != first_) return;
      run_.acknowledged = WIFEXITED(status) && WEXITSTATUS(status) == 0;
      return;
    }
    traced_.insert(process);
    // Was being started when everything ended.
    if (all_killed_) return static_cast<void>(kill(process, SIGKILL));
    const int signal = WSTOPSIG(status);
    if (signal == (SIGTRAP | 0x80)) return at_call(process);
    // Stops that the tracing makes itself are no signals of the process.
    const bool is_own = (status >> 16) != 0 || signal == SIGSTOP;
    resume(process, is_own ? 0 : signal);
  }

  void at_call(pid_t process) {
    Call call{};
    check(ptrace(PTRACE_GET_SYSCALL_INFO, process, sizeof call, &call));
    if (call.op == PTRACE_SYSCALL_INFO_ENTRY && call.entry.nr == SYS_fsync) {
      const auto file = std::to_string(process) + "/fd/" + std::to_string(call.entry.args[0]);
      run_.flushed.insert(std::filesystem::read_symlink("/proc/" + file));
    }
    if (call.op == PTRACE_SYSCALL_INFO_ENTRY && harm_.counts(call)) {
      const int number = run_.calls++;
      if (number == at_ && harm_.error == 0) {
        all_killed_ = true;
        for (const pid_t one : traced_) kill(one, SIGKILL);
        return;
      }
      if (number == at_ || (number > at_ && harm_.keeps_on && harm_.error != 0)) {
        failing_.insert(process);
        poke(process, offsetof(user_regs_struct, orig_rax), -1);
      }
    } else if (call.op == PTRACE_SYSCALL_INFO_EXIT && failing_.erase(process) > 0) {
      poke(process, offsetof(user_regs_struct, rax), -harm_.error);
    }
    resume(process, 0);
  }

  static void poke(pid_t process, std::size_t place, long value) {
    check(ptrace(PTRACE_POKEUSER, process, place, value));
  }

  const Harm& harm_;
  const int at_;
  pid_t first_ = 0;
  std::set<pid_t> traced_;
  std::set<pid_t> failing_;
  bool all_killed_ = false;
  Run run_;
};

}  // namespace

const Harm kKill{"killed", is_any};
const Harm kPowerCut{"power cut", is_any, 0, false, true};
const Harm kFull{"no space once", needs_room, ENOSPC, false, true};
const Harm kStaysFull{"no space from there on", needs_room, ENOSPC, true, true};
const Harm kNoDescriptor{"no descriptor once", needs_descriptor, EMFILE};
const Harm kNoDescriptors{"no descriptor from there on", needs_descriptor, EMFILE, true};

Run run_harmed(const std::function<bool()>& action, const Harm& harm, int at) {
  return Tracer(harm, at).run(action);
}

}  // namespace reliability
