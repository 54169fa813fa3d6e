#include "api/shell.h"

#include <stdio.h>
#include <sys/wait.h>

#include <algorithm>
#include <cstdlib>

#include "api/files.h"

namespace zelto::shell {
namespace {

constexpr int kNotExecutable = 126;
constexpr int kNotFound = 127;

bool is_plain(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
         std::string_view("@%+=:,./_-").find(c) != std::string_view::npos;
}

// Reads from a running command. "e" keeps the pipe out of what other threads start meanwhile.
template <typename Read>
std::optional<Output> capture_with(std::string_view command, const Read& read) {
  FILE* pipe = popen(std::string(command).c_str(), "re");
  if (pipe == nullptr) return std::nullopt;
  std::string text = read(pipe);
  return Output{std::move(text), pclose(pipe)};
}

}  // namespace

bool cannot_run(int wait_status) {
  return WIFEXITED(wait_status) &&
         (WEXITSTATUS(wait_status) == kNotExecutable || WEXITSTATUS(wait_status) == kNotFound);
}

int run(std::string_view command) {
  return std::system(std::string(command).c_str());
}

std::optional<Output> capture(std::string_view command, std::size_t longest) {
  return capture_with(command, [longest](FILE* pipe) {
    std::string text(longest, '\0');
    text.resize(fread(text.data(), 1, longest, pipe));
    return text;
  });
}

std::optional<Output> capture_line(std::string_view command, std::size_t longest) {
  return capture_with(
      command, [longest](FILE* pipe) { return files::read_line(pipe, longest).value_or(""); });
}

std::string word(std::string_view text) {
  if (!text.empty() && std::all_of(text.begin(), text.end(), is_plain)) return std::string(text);
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'') {
      quoted += R"('\'')";
    } else if (c != '\0') {
      quoted += c;
    }
  }
  return quoted + "'";
}

std::string inside_double_quotes(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    if (std::string_view("\\\"$`").find(c) != std::string_view::npos) escaped += '\\';
    if (c != '\0') escaped += c;
  }
  return escaped;
}

}  // namespace zelto::shell
