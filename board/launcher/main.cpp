// zelto-board: boots the virtual router and asks the command library on it.

#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <functional>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include "board/board.h"
#include "board/launcher/inside.h"
#include "board/launcher/running_router.h"

namespace {

constexpr int kFailed = 1;
constexpr int kBadUsage = 2;

constexpr std::string_view kHelpText =
    "usage: zelto-board [--programs-dir DIR] REQUEST...\n"
    "       zelto-board [--programs-dir DIR] --shell | --up\n"
    "\n"
    "Boots a virtual router and asks the command library on it. For each REQUEST, a JSON text\n"
    "such as '{\"type\":\"getlancfg\"}', prints the reply and what it did to the router. '-' "
    "reads\n"
    "requests from standard input, one a line.\n"
    "\n"
    "  --shell             a shell on the router; `zelto REQUEST` asks there\n"
    "  --up                boots and stays up until Ctrl-C; meanwhile requests and shells from\n"
    "                      other terminals go to this router\n"
    "  --programs-dir DIR  where the programs zelto and uci are (default: beside zelto-board)\n"
    "  --help              this text\n"
    "\n"
    "Exit status: the first of `zelto` that is not 0; 2 for bad usage, 125 when no router can\n"
    "boot on this machine.\n";

enum class Mode { kAsk, kShell, kUp, kHelp };

struct Arguments {
  Mode mode = Mode::kAsk;
  std::filesystem::path programs;
  std::vector<std::string> requests;
};

class UsageError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

Arguments parse(const std::vector<std::string>& words) {
  Arguments arguments;
  arguments.programs = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (word == "--help") {
      arguments.mode = Mode::kHelp;
    } else if (word == "--shell") {
      arguments.mode = Mode::kShell;
    } else if (word == "--up") {
      arguments.mode = Mode::kUp;
    } else if (word == "--programs-dir") {
      if (++i == words.size()) throw UsageError("--programs-dir needs a directory");
      arguments.programs = std::filesystem::absolute(words[i]);
    } else if (word.starts_with("--")) {
      throw UsageError("unknown option " + word);
    } else {
      arguments.requests.push_back(word);
    }
  }
  if (arguments.mode == Mode::kAsk && arguments.requests.empty()) throw UsageError("no request");
  if (arguments.mode != Mode::kAsk && !arguments.requests.empty()) {
    throw UsageError("a request goes without --shell and --up");
  }
  return arguments;
}

board::Options router_options(const std::filesystem::path& programs) {
  board::Options options{.programs = {}, .services = true, .on_boot = {}};
  const auto zelto = programs / "zelto";
  if (access(zelto.c_str(), X_OK) < 0) {
    throw std::runtime_error("no program " + zelto.string() + ": build it, or name its directory " +
                             "with --programs-dir");
  }
  options.programs.push_back(zelto);
  const auto uci = programs / "uci";
  if (access(uci.c_str(), X_OK) == 0) options.programs.push_back(uci);
  return options;
}

int run_up(board::Options options, const std::string& program) {
  if (launcher::find_router()) throw std::runtime_error("a router is up already");
  options.on_boot = [&](int process) {
    launcher::write_router_file(process);
    std::cout << "The router is up. From another terminal:\n  " << program
              << " '{\"type\":\"getlancfg\"}'\n  " << program << " --shell\nCtrl-C ends it."
              << std::endl;
  };
  const int status = board::run(options, launcher::stay);
  if (status == board::kCannotBoot) return status;
  board::remove_file(launcher::router_file());
  constexpr int kSignalStatus = 128;
  const bool asked_to_end = status == kSignalStatus + SIGINT || status == kSignalStatus + SIGTERM ||
                            status == kSignalStatus + SIGHUP;
  return asked_to_end ? 0 : status;
}

int run(const Arguments& arguments, const std::string& program) {
  if (arguments.mode == Mode::kHelp) {
    std::cout << kHelpText;
    return 0;
  }
  if (arguments.mode == Mode::kUp) return run_up(router_options(arguments.programs), program);
  const bool wants_shell = arguments.mode == Mode::kShell;
  const std::function<int()> inside = [&] {
    return wants_shell ? launcher::shell() : launcher::ask(arguments.requests);
  };
  const auto router = launcher::find_router();
  const int status = router ? launcher::run_in_router(*router, inside)
                            : board::run(router_options(arguments.programs), inside);
  if (wants_shell) launcher::take_terminal_back();
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(parse({argv + 1, argv + argc}), argv[0]);
  } catch (const UsageError& error) {
    std::cerr << "zelto-board: " << error.what() << "\nTry zelto-board --help.\n";
    return kBadUsage;
  } catch (const std::exception& failure) {
    std::cerr << "zelto-board: " << failure.what() << '\n';
    return kFailed;
  }
}
