// zelto: the command library on the command line. A thin client of its public header.

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <exception>
#include <iterator>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <zelto/zeltoapi.h>

#include "cli/command_line.h"
#include "cli/json.h"
#include "cli/rpcd.h"

namespace {

constexpr int kDone = 0;
constexpr int kRefused = 1;
constexpr int kNoReply = 2;  // also bad usage

constexpr std::size_t kLongestRequest = std::size_t{1} << 20U;

void print(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
    throw std::runtime_error(std::string("cannot write: ") + std::strerror(errno));
  }
}

// Standard input to its end. A line feed behind the request is no part of it.
std::string read_request() {
  std::string request;
  std::array<char, 4096> chunk{};
  while (const std::size_t size = std::fread(chunk.data(), 1, chunk.size(), stdin)) {
    request.append(chunk.data(), size);
    if (request.size() > kLongestRequest) throw std::runtime_error("the request is too long");
  }
  if (std::ferror(stdin) != 0) throw std::runtime_error("cannot read standard input");
  if (request.find('\0') != std::string::npos) {
    throw std::runtime_error("the request holds a NUL byte");
  }
  return request;
}

bool is_pretty(cli::Layout layout) {
  if (layout == cli::Layout::kAutomatic) return isatty(STDOUT_FILENO) == 1;
  return layout == cli::Layout::kPretty;
}

int ask(const std::string& request, cli::Layout layout) {
  std::array<char, ZELTO_REPLY_SIZE> out{};
  const int status = share_func(request.c_str(), out.data());
  const std::string reply = out.data();
  if (!reply.empty())
    print((is_pretty(layout) ? cli::pretty(reply).value_or(reply) : reply) + "\n");
  if (status != 0) {
    throw std::runtime_error(reply.empty()
                                 ? "no reply: the request is not JSON"
                                 : "the request names no command: it has no text \"type\"");
  }
  if (reply.empty()) throw std::runtime_error("no reply: the command gave none");
  return cli::succeeded(reply) ? kDone : kRefused;
}

int list() {
  std::string text;
  int live = 0;
  for (const auto& [name, handler] : zelto_handle) {
    const bool is_live = handler != nullptr;
    live += is_live ? 1 : 0;
    text += std::string(name, strnlen(name, sizeof name)) + (is_live ? " live\n" : " -\n");
  }
  const auto count = std::to_string(std::size(zelto_handle));
  print(text + std::to_string(live) + " of " + count + " live\n");
  return kDone;
}

int run(const cli::CommandLine& line) {
  switch (line.action) {
    case cli::Action::kHelp:
      print(cli::kHelpText);
      return kDone;
    case cli::Action::kVersion:
      print("zelto " ZELTO_VERSION "\n");
      return kDone;
    case cli::Action::kList:
      return list();
    case cli::Action::kRpcList:
      print(cli::rpcd::list() + "\n");
      return kDone;
    case cli::Action::kRpcCall:
      print(cli::rpcd::call(line.command, read_request()) + "\n");
      return kDone;
    case cli::Action::kRequest:
      return ask(line.request, line.layout);
    case cli::Action::kRequestFromInput:
      return ask(read_request(), line.layout);
  }
  return kNoReply;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(cli::read_command_line(std::vector<std::string>(argv + 1, argv + argc)));
  } catch (const cli::UsageError& error) {
    std::fprintf(stderr, "zelto: %s (zelto --help tells more)\n", error.what());
  } catch (const std::exception& error) {
    std::fprintf(stderr, "zelto: %s\n", error.what());
  }
  return kNoReply;
}
