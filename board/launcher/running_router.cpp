#include "board/launcher/running_router.h"

#include <cstdio>
#include <filesystem>
#include <sstream>

#include "board/board.h"
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
  (void)std::fflush(nullptr);
  return board::run_in_namespaces(process, [&] {
    board::prepare_environment();
    // The router's services, and what other terminals do.
    board::exempt_all();
    return inside();
  });
}

}  // namespace launcher
