#include <array>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>

#include <zelto/utilities.h>

#include "api/boundary.h"
#include "api/files.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"

namespace {

using zelto::guarded;

constexpr std::size_t kMacLength = 17;
constexpr std::size_t kConsoleCommandSize = 256;
constexpr std::size_t kProcessQuerySize = 100;
constexpr std::size_t kProcessCountLength = 64;
constexpr std::size_t kPidLength = 7;

char* read_mac(const char* side, char* buffer) {
  return guarded<char*>(nullptr, [&] {
    const std::string command = std::string("/sbin/get_7628_lan_wan_mac.sh ") + side;
    return shellcmd(command.c_str(), buffer, kMacLength);
  });
}

}  // namespace

int zelto_system(const char* command) {
  if (command == nullptr) return -1;
  return guarded(-1, [&] { return zelto::shell::start(command) ? 0 : -1; });
}

char* shellcmd(const char* command, char* buffer, int n) {
  if (command == nullptr || buffer == nullptr || n < 0) return nullptr;
  return guarded<char*>(nullptr, [&]() -> char* {
    const auto output = zelto::shell::capture(command, static_cast<std::size_t>(n));
    if (!output) return nullptr;
    std::memcpy(buffer, output->text.data(), output->text.size());
    return buffer;
  });
}

int do_system(const char* format, ...) {
  if (format == nullptr) return -1;
  std::array<char, kConsoleCommandSize> command{};
  va_list arguments;
  va_start(arguments, format);
  const int length = std::vsnprintf(command.data(), command.size(), format, arguments);
  va_end(arguments);
  if (length < 0) return -1;
  return guarded(-1, [&] {
    const auto redirected =
        (std::string(command.data()) + " 1>/dev/console 2>&1").substr(0, kConsoleCommandSize - 1);
    zelto::console::trace("do_system", redirected);
    return zelto::shell::run(redirected);
  });
}

int get_sys_daemon_pid() {
  return guarded(-1, [] {
    const auto first_line = zelto::shell::capture_line(
        "ps | grep sys_daemon | grep -v grep | awk -F ' ' '{print $1}'", kPidLength);
    const int pid = first_line ? zelto::text::to_int(first_line->text) : 0;
    return pid == 0 ? -1 : pid;
  });
}

int check_status(const char* name) {
  if (name == nullptr || name[0] == '-') return -1;
  return guarded(-1, [&] {
    const std::string command = "ps | grep " + zelto::shell::word(name) + " | grep -v grep | wc -l";
    if (command.size() >= kProcessQuerySize) return -1;
    const auto count = zelto::shell::capture(command, kProcessCountLength);
    return count && zelto::text::to_int(count->text) == 1 ? 0 : -1;
  });
}

int check_file_exist(const char* path) {
  const auto file = path == nullptr ? nullptr : zelto::files::open(path);
  return file && fseeko(file.get(), 0, SEEK_END) == 0 && ftello(file.get()) > 0 ? 1 : 0;
}

char rm_eol(char* text) {
  const std::size_t length = text == nullptr ? 0 : std::strlen(text);
  if (length == 0) return '\0';
  const auto kept = zelto::text::without_line_end({text, length}).size();
  text[kept] = '\0';
  return kept > 0 ? text[kept - 1] : '\0';
}

void split(char* text, const char* delimiters, char** tokens, int* count) {
  if (text == nullptr || *text == '\0' || delimiters == nullptr || *delimiters == '\0') return;
  int found = 0;
  char* position = nullptr;
  for (char* token = strtok_r(text, delimiters, &position); token != nullptr;
       token = strtok_r(nullptr, delimiters, &position)) {
    tokens[found++] = token;
  }
  *count = found;
}

char* del_mychar(char* text, char character) {
  if (text == nullptr) return nullptr;
  char* kept = text;
  for (const char* c = text; *c != '\0'; ++c) {
    if (*c != character) *kept++ = *c;
  }
  *kept = '\0';
  return text;
}

char* get_7628_lan_mac(char* buffer) {
  return read_mac("lan", buffer);
}

char* get_7628_wan_mac(char* buffer) {
  return read_mac("wan", buffer);
}
