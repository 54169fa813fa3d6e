// modem: the modem in the router's serial port, and the hand that plugs it in and pulls it out.

#include <fcntl.h>
#include <signal.h>
#include <time.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <string>
#include <utility>

#include "board/board.h"
#include "board/files.h"
#include "board/modem/line.h"
#include "board/modem/paths.h"
#include "board/modem/profile.h"

namespace {

using board::modem::kKindFile;
using board::modem::kLog;
using board::modem::kPlugged;
using board::modem::kProcessFile;
using board::modem::kProfiles;
using board::modem::Profile;
using board::modem::Step;

constexpr const char* kUsage =
    "usage: modem PROFILE   plugs in a modem; the file of its profile, or its name in %s\n"
    "       modem none      pulls it out\n"
    "       modem kind      the number that the modem daemon knows it by\n";

// For the handler of a signal, which may not allocate.
std::string plugged_port;

void pull_out(int) {
  unlink(plugged_port.c_str());
  unlink(kKindFile);
  unlink(kPlugged);
  unlink(kProcessFile);
  _exit(0);
}

void wait_milliseconds(int milliseconds) {
  const timespec time{milliseconds / 1000, milliseconds % 1000 * 1'000'000L};
  nanosleep(&time, nullptr);
}

void note(const std::string& command) {
  const board::Descriptor log(open(kLog, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0644));
  if (log.valid()) board::write_all(log.get(), command + "\n");
}

class Modem {
 public:
  explicit Modem(Profile profile) : profile_(std::move(profile)), line_(profile_.port) {}

  [[noreturn]] void talk() {
    std::string command;
    for (;;) {
      const char byte = line_.receive();
      if (profile_.echo && !is_mute()) line_.send({&byte, 1});
      if (byte == '\r') {
        note(command);
        if (!is_mute()) answer(board::modem::upper_case(command));
        command.clear();
      } else if (byte != '\n') {
        command += byte;
      }
    }
  }

 private:
  bool is_mute() const { return profile_.mute_after && commands_ >= *profile_.mute_after; }

  void answer(const std::string& command) {
    ++commands_;
    wait_milliseconds(profile_.delay_milliseconds);
    for (const std::string& line : profile_.before) send_line(line);
    const auto found = profile_.answers.find(command);
    if (found != profile_.answers.end()) {
      take_steps(found->second);
    } else if (command == "ATE0" || command == "ATE1") {
      profile_.echo = command == "ATE1";
      send_line("OK");
    } else {
      send_line(command == "AT" ? "OK" : "ERROR");
    }
  }

  void take_steps(const board::modem::Answer& steps) {
    bool first_line = true;
    for (const Step& step : steps) {
      switch (step.kind) {
        case Step::Kind::kLine:
          send_line(step.bytes);
          if (!std::exchange(first_line, false)) break;
          for (const std::string& line : profile_.within) send_line(line);
          break;
        case Step::Kind::kBytes:
          line_.send(step.bytes);
          break;
        case Step::Kind::kPause:
          wait_milliseconds(step.milliseconds);
          break;
        case Step::Kind::kSilence:
          return;
        case Step::Kind::kHangUp:
          pull_out(0);
          break;
        case Step::Kind::kReplug:
          line_.replug();
          break;
      }
    }
  }

  void send_line(const std::string& line) { line_.send("\r\n" + line + "\r\n"); }

  Profile profile_;
  board::modem::Line line_;
  int commands_ = 0;
};

// Ends the modem that is plugged in, if there is one, and what a killed one has left.
int unplug() {
  const std::string noted = board::read_file(kProcessFile);
  int process = 0;
  std::from_chars(noted.data(), noted.data() + noted.size(), process);
  const std::string name = "/proc/" + std::to_string(process) + "/comm";
  while (process > 0 && board::read_file(name) == board::modem::kProcessName + std::string("\n") &&
         kill(process, SIGTERM) == 0) {
    wait_milliseconds(1);
  }
  if (std::filesystem::exists(kPlugged)) {
    std::filesystem::remove(board::modem::load(kPlugged).port);
  }
  for (const char* file : {kKindFile, kPlugged, kProcessFile}) std::filesystem::remove(file);
  return 0;
}

// Leaves a process behind that is the modem, and returns when it can be asked.
int plug(const std::string& path) {
  const std::string text =
      board::read_file(path.find('/') == std::string::npos ? kProfiles + path : path);
  Profile profile = board::modem::load(path);
  unplug();
  board::write_file(kPlugged, text);
  board::write_file(kKindFile, profile.kind + "\n");
  plugged_port = profile.port;
  Modem modem(std::move(profile));
  struct sigaction ending {};
  ending.sa_handler = pull_out;
  if (sigaction(SIGTERM, &ending, nullptr) < 0) throw board::system_failure("sigaction");

  const pid_t process = fork();
  if (process < 0) throw board::system_failure("fork");
  if (process > 0) {
    board::write_file(kProcessFile, std::to_string(process) + "\n");
    return 0;
  }
  setsid();
  const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
  for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) dup2(nowhere, standard);
  modem.talk();
}

int tell_kind() {
  if (!std::filesystem::exists(kProcessFile)) return 1;
  std::puts(board::modem::load(kPlugged).kind.c_str());
  return 0;
}

int usage() {
  (void)std::fprintf(stderr, kUsage, kProfiles);
  for (const auto& entry : std::filesystem::directory_iterator(kProfiles)) {
    (void)std::fprintf(stderr, "  %s\n", entry.path().filename().c_str());
  }
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    const std::string word = argc == 2 ? argv[1] : "";
    if (word.empty() || word.starts_with('-')) return usage();
    if (word == "none") return unplug();
    return word == "kind" ? tell_kind() : plug(word);
  } catch (const std::exception& failure) {
    (void)std::fprintf(stderr, "modem: %s\n", failure.what());
    return 1;
  }
}
