#include "board/board.h"

#include <fcntl.h>
#include <sched.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <utility>

#include "board/files.h"
#include "board/init.h"
#include "board/interfaces.h"
#include "board/modem.h"
#include "board/modem/paths.h"
#include "board/namespaces.h"
#include "board/processes.h"
#include "board/programs.h"
#include "board/root.h"
#include "board/state_files.h"
#include "board/usb.h"

namespace board {
namespace {

constexpr std::array kEndingSignals{SIGINT, SIGTERM, SIGHUP};
constexpr auto kLongestWait = std::chrono::seconds(10);

SharedState* state = nullptr;

// Of Options, for reset().
std::string built_in_modem;
int built_in_disks = 0;

volatile sig_atomic_t supervised_process = 0;

void pass_on(int) {
  if (supervised_process > 0) kill(supervised_process, SIGTERM);
}

// Waits for `child`; a signal to end ends the child first.
int supervise(pid_t child) {
  supervised_process = child;
  struct sigaction forwarding {};
  forwarding.sa_handler = pass_on;
  std::array<struct sigaction, kEndingSignals.size()> previous{};
  for (size_t i = 0; i < kEndingSignals.size(); ++i) {
    sigaction(kEndingSignals.at(i), &forwarding, &previous.at(i));
  }
  int status = 0;
  pid_t ended = 0;
  do {
    ended = waitpid(child, &status, 0);
  } while (ended < 0 && errno == EINTR);
  for (size_t i = 0; i < kEndingSignals.size(); ++i) {
    sigaction(kEndingSignals.at(i), &previous.at(i), nullptr);
  }
  supervised_process = 0;
  return ended < 0 ? kCannotBoot : exit_status(status);
}

// The process between the caller and the router: the caller itself stays in its namespaces.
int supervise_router(const Parts& parts, const Options& options, Descriptor booted,
                     const std::function<int()>& inside) {
  enter_new_namespaces();
  // Only now: new rights take the setting back.
  if (prctl(PR_SET_PDEATHSIG, SIGKILL) < 0) throw system_failure("prctl");
  const pid_t init = fork();
  if (init < 0) throw system_failure("fork");
  if (init == 0) {
    std::_Exit(run_init(parts, options, *state, std::move(booted), [&] {
      if (!built_in_modem.empty()) plug_modem(built_in_modem);
      return inside();
    }));
  }
  booted.reset();
  state->init_process = init;
  return supervise(init);
}

bool wait_for_boot(int pipe) {
  char byte = 0;
  ssize_t size = 0;
  do {
    size = read(pipe, &byte, 1);
  } while (size < 0 && errno == EINTR);
  if (size != 1) return false;
  // The router may be faster than its supervisor is in writing this down.
  while (state->init_process == 0) sched_yield();
  return true;
}

SharedState* share_state() {
  void* memory =
      mmap(nullptr, sizeof(SharedState), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw system_failure("mmap");
  return new (memory) SharedState;
}

int run_router(const Options& options, const std::function<int()>& inside) {
  const Parts parts = find_parts(options);
  built_in_modem = options.modem;
  built_in_disks = options.usb_disks;
  if (access((parts.rootfs + modem::kProfiles + built_in_modem).c_str(), R_OK) < 0) {
    throw std::runtime_error("no modem " + built_in_modem);
  }
  state = share_state();
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) < 0) throw system_failure("pipe");
  const Descriptor reading(ends[0]);
  Descriptor writing(ends[1]);
  // What is buffered now would be printed by every process.
  (void)std::fflush(nullptr);
  const pid_t supervisor = fork_single_threaded();
  if (supervisor < 0) throw system_failure("fork");
  if (supervisor == 0) {
    int status = kCannotBoot;
    try {
      status = supervise_router(parts, options, std::move(writing), inside);
    } catch (const std::exception& failure) {
      (void)std::fprintf(stderr, "The virtual router does not boot.\n%s", failure.what());
    }
    std::_Exit(status);
  }
  writing.reset();
  const bool booted = wait_for_boot(reading.get());
  if (booted && options.on_boot) options.on_boot(state->init_process);
  const int status = supervise(supervisor);
  munmap(state, sizeof(SharedState));
  state = nullptr;
  return booted ? status : kCannotBoot;
}

// Waits until `done`, in small steps.
template <typename Condition>
bool wait_until(Condition done) {
  const auto end = std::chrono::steady_clock::now() + kLongestWait;
  constexpr timespec kPause{0, 100'000};
  while (!done()) {
    if (std::chrono::steady_clock::now() > end) return false;
    nanosleep(&kPause, nullptr);
  }
  return true;
}

int service_process() {
  return state != nullptr ? state->service_process.load() : 0;
}

SharedState& shared_state() {
  if (state == nullptr) throw std::runtime_error("not in a router of this process");
  return *state;
}

// Everything that was logged before has been written afterwards.
void drain_log() {
  static unsigned number = 0;
  const Descriptor socket(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::string_view(kLogSocket).copy(address.sun_path, sizeof address.sun_path - 1);
  const std::string mark = kMark + std::to_string(++number);
  if (!socket.valid() || sendto(socket.get(), mark.data(), mark.size(), 0,
                                reinterpret_cast<sockaddr*>(&address), sizeof address) < 0) {
    throw system_failure(kLogSocket);
  }
  if (!wait_until([] { return shared_state().log_mark == number; })) {
    throw std::runtime_error("the log is not collected");
  }
}

void drain_console() {
  static unsigned number = 0;
  const Descriptor console(open(kConsole, O_WRONLY | O_NOCTTY | O_CLOEXEC));
  const std::string mark = kMark + std::to_string(++number) + kMark;
  if (!console.valid() || !write_all(console.get(), mark)) throw system_failure(kConsole);
  if (!wait_until([] { return shared_state().console_mark == number; })) {
    throw std::runtime_error("the console is not collected");
  }
}

std::vector<std::string> lines_of(const std::string& text) {
  std::vector<std::string> lines;
  size_t start = 0;
  while (start < text.size()) {
    const size_t end = text.find('\n', start);
    lines.push_back(text.substr(start, end - start));
    if (end == std::string::npos) break;
    start = end + 1;
  }
  return lines;
}

// From "<11>Nov 22 21:03:00 program: text", as the C library writes it.
std::string without_header(const std::string& message) {
  constexpr size_t kTimeSize = sizeof "Nov 22 21:03:00 " - 1;
  constexpr int kSeverities = 8;
  const size_t priority_end = message.find('>');
  if (!message.starts_with('<') || priority_end == std::string::npos) return message;
  int priority = 0;
  std::from_chars(message.data() + 1, message.data() + priority_end, priority);
  size_t text = std::min(priority_end + 1 + kTimeSize, message.size());
  const size_t tag_end = message.find(": ", text);
  if (tag_end != std::string::npos) text = tag_end + 2;
  return "<" + std::to_string(priority % kSeverities) + ">" + message.substr(text);
}

}  // namespace

int run(const Options& options, const std::function<int()>& inside) {
  try {
    return run_router(options, inside);
  } catch (const std::exception& failure) {
    (void)std::fprintf(stderr, "The virtual router does not boot.\n%s\n", failure.what());
    return kCannotBoot;
  }
}

void reset() {
  end_request_processes(service_process());
  if (access(modem::kProcessFile, F_OK) == 0) unplug_modem();
  // What the ended commands left behind; the library does not wait for its detached ones.
  while (waitpid(-1, nullptr, WNOHANG) > 0) {
  }
  drain_log();
  drain_console();
  restore_root();
  restore_interfaces();
  plug_usb_disks(built_in_disks);
  if (service_process() != 0) refresh_state_files();
  if (!built_in_modem.empty()) plug_modem(built_in_modem);
}

void settle() {
  if (wait_until([] { return request_processes(service_process()).empty(); })) return;
  std::string names;
  for (const int process : request_processes(service_process())) {
    names += " " + std::to_string(process);
  }
  throw std::runtime_error("commands still run after ten seconds, processes" + names);
}

std::vector<std::string> journal() {
  settle();
  return lines_of(read_file(kJournal));
}

void clear_journal() {
  write_file(kJournal, "");
}

std::vector<std::string> log() {
  drain_log();
  std::vector<std::string> messages = lines_of(read_file(kMessages));
  for (std::string& message : messages) message = without_header(message);
  return messages;
}

std::string console() {
  drain_console();
  return read_file(kConsoleLog);
}

int quiet(const std::vector<std::string>& arguments) {
  return run_program({.arguments = arguments, .unnoted = true, .silent = true});
}

}  // namespace board
