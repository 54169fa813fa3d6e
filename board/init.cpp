#include "board/init.h"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/signalfd.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include "board/board.h"
#include "board/devices.h"
#include "board/interfaces.h"
#include "board/namespaces.h"
#include "board/state_files.h"
#include "board/usb.h"

namespace board {
namespace {

constexpr const char* kPath = "/usr/sbin:/usr/bin:/sbin:/bin";
constexpr std::string_view kHostName = "ZELTO";
constexpr std::array kWatchedSignals{SIGCHLD, SIGTERM, SIGINT, SIGHUP};
constexpr int kSignalStatus = 128;
// What a program has from being asked to end until everything is taken away.
constexpr auto kGrace = std::chrono::seconds(1);

void append_file(const char* path, std::string_view text) {
  const Descriptor file(open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
  // Nowhere to report to: the log is the report.
  if (file.valid()) write_all(file.get(), text);
}

unsigned number_of(std::string_view text) {
  unsigned number = 0;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

// The socket that syslog() writes to.
class LogReader {
 public:
  explicit LogReader(std::atomic<unsigned>& mark)
      : socket_(::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)), mark_(mark) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::string_view(kLogSocket).copy(address.sun_path, sizeof address.sun_path - 1);
    if (!socket_.valid() ||
        bind(socket_.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) < 0) {
      throw system_failure(kLogSocket);
    }
  }

  int descriptor() const { return socket_.get(); }

  void drain() {
    std::array<char, 65536> message{};
    ssize_t size = 0;
    while ((size = recv(socket_.get(), message.data(), message.size(), 0)) >= 0) {
      take({message.data(), static_cast<size_t>(size)});
    }
  }

 private:
  void take(std::string_view message) {
    if (message.starts_with(kMark)) {
      mark_ = number_of(message.substr(1));
      return;
    }
    while (message.ends_with('\0')) message.remove_suffix(1);
    if (message.ends_with('\n')) message.remove_suffix(1);
    std::string line;
    for (const char c : message) line += c == '\n' ? std::string("\\n") : std::string(1, c);
    append_file(kMessages, line + "\n");
  }

  Descriptor socket_;
  std::atomic<unsigned>& mark_;
};

// A terminal stands for the console: programs open it in ways that would truncate a file.
class ConsoleReader {
 public:
  explicit ConsoleReader(std::atomic<unsigned>& mark)
      : master_(open("/dev/ptmx", O_RDWR | O_NOCTTY | O_CLOEXEC | O_NONBLOCK)), mark_(mark) {
    int unlocked = 0;
    int number = 0;
    if (!master_.valid() || ioctl(master_.get(), TIOCSPTLCK, &unlocked) < 0 ||
        ioctl(master_.get(), TIOCGPTN, &number) < 0) {
      throw system_failure("/dev/ptmx of the router");
    }
    const std::string name = "/dev/pts/" + std::to_string(number);
    // Kept open, or the reader would see a hang-up after each writer.
    slave_ = Descriptor(open(name.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    termios modes{};
    if (!slave_.valid() || tcgetattr(slave_.get(), &modes) < 0) throw system_failure(name);
    cfmakeraw(&modes);
    if (tcsetattr(slave_.get(), TCSANOW, &modes) < 0) throw system_failure(name);
    write_file(kConsole, "");
    if (mount(name.c_str(), kConsole, nullptr, MS_BIND, nullptr) < 0) {
      throw system_failure(std::string("mount on ") + kConsole);
    }
  }

  int descriptor() const { return master_.get(); }

  void drain() {
    std::array<char, 4096> block{};
    ssize_t size = 0;
    while ((size = read(master_.get(), block.data(), block.size())) > 0) {
      take({block.data(), static_cast<size_t>(size)});
    }
  }

 private:
  // A mark, "MARK number MARK", may come in pieces.
  void take(std::string_view text) {
    while (!text.empty()) {
      const size_t edge = text.find(kMark);
      const std::string_view before = text.substr(0, edge);
      if (!pending_mark_) {
        if (!before.empty()) append_file(kConsoleLog, before);
        if (edge != std::string_view::npos) pending_mark_.emplace();
      } else {
        *pending_mark_ += before;
        if (edge != std::string_view::npos) {
          mark_ = number_of(*pending_mark_);
          pending_mark_.reset();
        }
      }
      if (edge == std::string_view::npos) return;
      text.remove_prefix(edge + 1);
    }
  }

  Descriptor master_;
  Descriptor slave_;
  std::optional<std::string> pending_mark_;
  std::atomic<unsigned>& mark_;
};

// The library takes closed standard descriptors for the sign of a detached command.
void open_standard_descriptors() {
  int descriptor = -1;
  do {
    descriptor = open("/dev/null", O_RDWR);
  } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
  if (descriptor >= 0) close(descriptor);
}

// What only the first process has; a child destroys its copy before it goes on.
class Init {
 public:
  explicit Init(SharedState& state) : log_(state.log_mark), console_(state.console_mark) {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : kWatchedSignals) sigaddset(&set, number);
    if (sigprocmask(SIG_BLOCK, &set, &inherited_) < 0) throw system_failure("sigprocmask");
    signals_ = Descriptor(signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
    if (!signals_.valid()) throw system_failure("signalfd");
  }
  Init(const Init&) = delete;
  Init& operator=(const Init&) = delete;
  ~Init() { sigprocmask(SIG_SETMASK, &inherited_, nullptr); }

  // Serves the router until `child` has ended; returns its exit status.
  int serve(pid_t child) {
    while (!status_) {
      std::array<pollfd, 3> events{{{signals_.get(), POLLIN, 0},
                                    {log_.descriptor(), POLLIN, 0},
                                    {console_.descriptor(), POLLIN, 0}}};
      const bool ending = asked_to_end_.has_value();
      if (poll(events.data(), events.size(), ending ? 100 : -1) < 0 && errno != EINTR) {
        throw system_failure("poll");
      }
      log_.drain();
      console_.drain();
      handle_signals(child);
      if (ending && Clock::now() - *asked_to_end_ > kGrace) return kSignalStatus + SIGTERM;
    }
    log_.drain();
    console_.drain();
    return *status_;
  }

 private:
  using Clock = std::chrono::steady_clock;

  void handle_signals(pid_t child) {
    signalfd_siginfo signal{};
    while (read(signals_.get(), &signal, sizeof signal) == sizeof signal) {
      if (signal.ssi_signo != SIGCHLD && !asked_to_end_) {
        asked_to_end_ = Clock::now();
        kill(child, SIGTERM);
      }
    }
    int status = 0;
    pid_t ended = 0;
    while ((ended = waitpid(-1, &status, WNOHANG)) > 0) {
      if (ended == child) status_ = exit_status(status);
    }
  }

  sigset_t inherited_{};
  Descriptor signals_;
  LogReader log_;
  ConsoleReader console_;
  std::optional<int> status_;
  std::optional<Clock::time_point> asked_to_end_;
};

// Forks a process of the router that runs `body` and ends with what it returns.
pid_t start(std::unique_ptr<Init>& init, const std::function<int()>& body) {
  const pid_t child = fork();
  if (child < 0) throw system_failure("fork");
  if (child == 0) {
    init.reset();
    std::exit(body());
  }
  return child;
}

void boot(const Parts& parts) {
  // Should the supervisor die, nothing of the router stays.
  if (prctl(PR_SET_PDEATHSIG, SIGKILL) < 0) throw system_failure("prctl");
  enter_new_root(parts);
  if (sethostname(kHostName.data(), kHostName.size()) < 0) throw system_failure("sethostname");
  create_interfaces();
  prepare_environment();
  open_standard_descriptors();
}

// What runs beside the requests on a router in use. All of it is in the session of this process.
// `started` gets a byte once the daemons are there.
int serve(bool lively, const Descriptor& started) {
  setsid();
  for (const char* service : {"/etc/init.d/sys_daemon", "/etc/init.d/miniupnpd"}) {
    quiet({service, "start"});
  }
  if (!write_all(started.get(), "+")) throw system_failure("pipe");
  for (;;) {
    sleep(1);
    if (lively) let_devices_live();
    refresh_state_files();
  }
}

pid_t start_services(std::unique_ptr<Init>& init, bool lively) {
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) < 0) throw system_failure("pipe");
  const Descriptor reading(ends[0]);
  Descriptor writing(ends[1]);
  const pid_t services = start(init, [&] { return serve(lively, writing); });
  writing.reset();
  char byte = 0;
  if (read(reading.get(), &byte, 1) != 1) throw std::runtime_error("the services do not start");
  return services;
}

}  // namespace

void prepare_environment() {
  umask(022);
  if (setenv("PATH", kPath, 1) < 0 || setenv("HOME", "/root", 1) < 0 || unsetenv("TZ") < 0) {
    throw system_failure("setenv");
  }
}

int exit_status(int wait_status) {
  return WIFSIGNALED(wait_status) ? kSignalStatus + WTERMSIG(wait_status)
                                  : WEXITSTATUS(wait_status);
}

int run_init(const Parts& parts, const Options& options, SharedState& state, Descriptor booted,
             const std::function<int()>& inside) {
  try {
    boot(parts);
    auto init = std::make_unique<Init>(state);
    drop_machine_rights();
    plug_usb_disks(options.usb_disks);
    if (options.services) {
      refresh_state_files();
      state.service_process = start_services(init, options.lively);
    }
    if (!write_all(booted.get(), "+")) throw system_failure("pipe");
    booted.reset();
    return init->serve(start(init, inside));
  } catch (const std::exception& failure) {
    (void)std::fprintf(stderr, "The virtual router does not run: %s\n", failure.what());
    return kCannotBoot;
  }
}

}  // namespace board
