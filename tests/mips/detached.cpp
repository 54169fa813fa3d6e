// For programs under qemu-user, which knows no process that shares another's memory and refuses the
// library's way to start a detached command (src/api/detached.cpp): the same by two forks. Here the
// first child ends with a signal, which a caller may notice.

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>

#include "api/shell.h"

namespace zelto::shell {
namespace {

[[noreturn]] void become_shell(const char* command) {
  for (int number = 1; number < _NSIG; ++number) std::signal(number, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  constexpr int kLastDescriptor = 255;
  for (int descriptor = 0; descriptor <= kLastDescriptor; ++descriptor) close(descriptor);
  execl("/bin/sh", "sh", "-c", command, nullptr);
  _exit(127);
}

}  // namespace

bool start(std::string_view command) {
  constexpr std::size_t kLongest = std::size_t{128} * 1024 - 1;
  const std::string text(command);
  if (text.size() > kLongest || access("/bin/sh", X_OK) < 0) return false;
  const pid_t first = fork();
  if (first < 0) return false;
  if (first == 0) {
    setsid();
    umask(0);
    if (chdir("/") < 0) _exit(1);
    const pid_t second = fork();
    if (second == 0) become_shell(text.c_str());
    _exit(second > 0 ? 0 : 1);
  }
  int status = 0;
  while (waitpid(first, &status, 0) < 0) {
    if (errno != EINTR) return errno == ECHILD;  // collected already where SIGCHLD is ignored
  }
  return status == 0;
}

}  // namespace zelto::shell
