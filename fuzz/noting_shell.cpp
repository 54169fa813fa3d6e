// In place of the shell, the modem, signals, the log and time: functions of the C library and of
// the host's platform that note what they are asked and do nothing. What the linker finds here it
// takes before that of any library.

#include <dlfcn.h>
#include <signal.h>
#include <stdio.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <string>

#include <platform/uart_at.h>

#include "api/shell.h"
#include "fuzz/fuzz.h"
#include "platform/uart/answer.h"

namespace fuzz {

thread_local bool is_noting = false;
std::string asked_type;

namespace {

struct Given {
  std::string output;
  int status;
};
std::deque<Given> answers;
int opened_status = 0;

Given next_answer() {
  if (answers.empty()) return {"", 0};
  Given given = answers.front();
  answers.pop_front();
  return given;
}

// Lists get into place by "mv", and all that comes after a change needs it.
bool moves_file(std::string_view command, int& status) {
  const auto remove_end = command.find(';');
  if (command.starts_with("rm -rf ") && remove_end != std::string_view::npos) {
    command.remove_prefix(remove_end + 1);
  }
  const auto blank = command.rfind(' ');
  if (!command.starts_with("mv /tmp/") || blank < 4) return false;
  const std::string from(command.substr(3, blank - 3));
  status = std::rename(from.c_str(), std::string(command.substr(blank + 1)).c_str()) == 0 ? 0 : 256;
  return true;
}

template <typename Function>
Function real(const char* name) {
  return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

}  // namespace

void answer_commands(std::string_view output, int status) {
  answers.push_back({std::string(output), status});
}

void forget_answers() {
  answers.clear();
}

}  // namespace fuzz

using namespace fuzz;

bool zelto::shell::start(std::string_view command) {
  require_allowed("start", command);
  return true;
}

extern "C" {

int system(const char* command) {
  if (!is_noting) return real<int (*)(const char*)>("system")(command);
  require_allowed("run", command);
  int status = 0;
  return moves_file(command, status) ? status : next_answer().status;
}

FILE* popen(const char* command, const char* mode) {
  if (!is_noting) return real<FILE* (*)(const char*, const char*)>("popen")(command, mode);
  require_allowed(asked_type == "setcmd" ? "setcmd" : "run", command);
  static std::string output;  // read from while the pipe is open
  const Given given = next_answer();
  output = given.output;
  opened_status = given.status;
  return output.empty() ? fopen("/dev/null", "re") : fmemopen(output.data(), output.size(), "r");
}

int pclose(FILE* pipe) {
  if (!is_noting) return real<int (*)(FILE*)>("pclose")(pipe);
  require(fclose(pipe) == 0, "a pipe closed twice");
  return opened_status;
}

int kill(pid_t process, int signal) noexcept {
  if (!is_noting) return real<int (*)(pid_t, int)>("kill")(process, signal);
  require(process > 0 && signal == 72, "a signal for others than the system's daemon");
  return 0;
}

unsigned sleep(unsigned seconds) {
  return is_noting ? 0 : real<unsigned (*)(unsigned)>("sleep")(seconds);
}

void syslog(int priority, const char* pattern, ...) {
  std::va_list arguments;
  va_start(arguments, pattern);
  char line[65536];
  const int size = vsnprintf(line, sizeof line, pattern, arguments);
  va_end(arguments);
  if (!is_noting) return static_cast<void>(fprintf(stderr, "%s\n", line));
  require(size >= 0 && priority == LOG_ERR, "a log line of another kind");
  for (const char* c = line; *c != '\0'; ++c) {
    const bool is_end = *c == '\n' && c[1] == '\0';
    require(is_end || static_cast<unsigned char>(*c) >= ' ', "a control character in the log");
  }
}

int get_uart_ATCMD_result(const char* command, const char* prefix, char* reply) {
  require_allowed("modem", command);
  const Given given = next_answer();
  const auto answer = uartat::from_prefix(given.output, prefix == nullptr ? "" : prefix);
  reply[answer.copy(reply, UART_AT_REPLY_SIZE - 1)] = '\0';
  std::memset(reply + std::strlen(reply), 0, UART_AT_REPLY_SIZE - std::strlen(reply));
  return given.status == 0 ? 0 : -1;
}

}  // extern "C"
