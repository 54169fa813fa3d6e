#include "board/processes.h"

#include <dirent.h>
#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <map>
#include <optional>
#include <set>
#include <sstream>
#include <string>

#include "board/board.h"
#include "board/files.h"
#include "board/modem/paths.h"

namespace board {
namespace {

constexpr int kInit = 1;
constexpr timespec kPause{0, 200'000};

struct Process {
  std::string name;
  char state;
  int parent;
  int session;
};

std::set<int>& exempted() {
  static std::set<int> processes;
  return processes;
}

// From /proc/N/stat: "N (name) S parent group session ...", where the name may hold anything.
std::optional<Process> look_at(const std::string& number) {
  const std::string text = read_file("/proc/" + number + "/stat");
  const size_t name_end = text.rfind(')');
  if (name_end == std::string::npos) return {};
  std::istringstream fields(text.substr(name_end + 1));
  const size_t name_start = text.find('(') + 1;
  Process process{};
  process.name = text.substr(name_start, name_end - name_start);
  int group = 0;
  fields >> process.state >> process.parent >> group >> process.session;
  if (!fields) return {};
  return process;
}

std::map<int, Process> all_processes() {
  DIR* directory = opendir("/proc");
  if (directory == nullptr) throw system_failure("/proc");
  std::map<int, Process> processes;
  while (const dirent* entry = readdir(directory)) {
    const std::string name = entry->d_name;
    if (name.find_first_not_of("0123456789") != std::string::npos) continue;
    if (const auto process = look_at(name)) processes.emplace(std::stoi(name), *process);
  }
  closedir(directory);
  return processes;
}

bool is_over(const Process& process) {
  return process.state == 'Z' || process.state == 'X';
}

std::vector<int> look_for_requests(int service) {
  const std::map<int, Process> processes = all_processes();
  std::set<int> spared{kInit};
  for (int number = getpid(); number > kInit;) {
    spared.insert(number);
    const auto found = processes.find(number);
    number = found == processes.end() ? 0 : found->second.parent;
  }
  std::vector<int> running;
  for (const auto& [number, process] : processes) {
    if (is_over(process) || spared.contains(number) || exempted().contains(number)) continue;
    if (service != 0 && process.session == service) continue;
    // Belongs to the router as the services do.
    if (process.name == modem::kProcessName) continue;
    running.push_back(number);
  }
  return running;
}

}  // namespace

std::vector<int> request_processes(int service) {
  // One that has ended by the time it is looked at may have started another since it was listed.
  auto running = look_for_requests(service);
  return running.empty() ? look_for_requests(service) : running;
}

void end_request_processes(int service) {
  // A process may start another between the look and the blow.
  for (auto left = request_processes(service); !left.empty(); left = request_processes(service)) {
    for (const int process : left) {
      if (kill(process, SIGKILL) < 0 && errno != ESRCH) throw system_failure("kill");
    }
    nanosleep(&kPause, nullptr);
  }
}

void exempt(int process) {
  exempted().insert(process);
}

void exempt_all() {
  for (const auto& [number, process] : all_processes()) exempt(number);
}

}  // namespace board
