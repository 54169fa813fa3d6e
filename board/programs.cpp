#include "board/programs.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>

#include "board/files.h"
#include "board/init.h"

namespace board {

pid_t start_program(const Run& run) {
  std::vector<char*> argv;
  for (const std::string& argument : run.arguments) {
    argv.push_back(const_cast<char*>(argument.c_str()));
  }
  argv.push_back(nullptr);
  std::vector<char*> environment;
  for (char** variable = environ; *variable != nullptr; ++variable) {
    environment.push_back(*variable);
  }
  std::string mark = "ZELTO_BOARD_FIRMWARE=1";
  if (run.unnoted) environment.push_back(mark.data());
  environment.push_back(nullptr);

  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  if (run.silent) {
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  }
  if (run.inputless) {
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  }
  pid_t child = 0;
  const int error =
      posix_spawnp(&child, argv.front(), &actions, nullptr, argv.data(), environment.data());
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) {
    errno = error;
    throw system_failure(run.arguments.front());
  }
  return child;
}

int run_program(const Run& run) {
  const pid_t child = start_program(run);
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) throw system_failure("waitpid");
  }
  return exit_status(status);
}

}  // namespace board
