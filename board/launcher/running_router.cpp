#include "board/launcher/running_router.h"

#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <sstream>

#include "board/board.h"
#include "board/files.h"
#include "board/init.h"
#include "board/namespaces.h"
#include "board/processes.h"

namespace launcher {
namespace {

constexpr const char* kFileName = "router.pid";
// In /proc/N/stat, counted from behind the name, which may hold blanks.
constexpr int kFieldsBeforeStartTime = 19;

// When a process was started tells it from a later one with the same number; empty when there is
// none.
std::string start_time(int process) {
  const std::string text = board::read_file("/proc/" + std::to_string(process) + "/stat");
  const size_t name_end = text.rfind(')');
  if (name_end == std::string::npos) return {};
  std::istringstream fields(text.substr(name_end + 1));
  std::string field;
  for (int i = 0; i <= kFieldsBeforeStartTime; ++i) fields >> field;
  return field;
}

}  // namespace

std::string router_file() {
  const auto program = std::filesystem::read_symlink("/proc/self/exe");
  return program.parent_path().parent_path() / kFileName;
}

void write_router_file(int process) {
  board::write_file(router_file(), std::to_string(process) + " " + start_time(process) + "\n");
}

std::optional<int> find_router() {
  std::istringstream words(board::read_file(router_file()));
  int process = 0;
  std::string started;
  words >> process >> started;
  if (!words || start_time(process) != started) return {};
  return process;
}

int run_in_router(int process, const std::function<int()>& inside) {
  board::join_namespaces(process);
  board::prepare_environment();
  (void)std::fflush(nullptr);
  const pid_t child = fork();
  if (child < 0) throw board::system_failure("fork");
  if (child == 0) {
    // The router's services, and what other terminals do.
    board::exempt_all();
    std::exit(inside());
  }
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) throw board::system_failure("waitpid");
  }
  return board::exit_status(status);
}

}  // namespace launcher
