#include "board/launcher/inside.h"

#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <iomanip>
#include <iostream>

#include "board/board.h"
#include "board/programs.h"

namespace launcher {
namespace {

constexpr const char* kPrompt = "router:\\w# ";

void print_effects() {
  constexpr int kKeywordWidth = 5;
  std::cout << "effects, in order:\n";
  const std::vector<std::string> effects = board::journal();
  for (const std::string& effect : effects) {
    const size_t keyword_end = std::min(effect.find(' '), effect.size());
    std::cout << "  " << std::left << std::setw(kKeywordWidth) << effect.substr(0, keyword_end)
              << effect.substr(keyword_end) << '\n';
  }
  if (effects.empty()) std::cout << "  (none)\n";
  std::cout.flush();
}

int ask_one(const std::string& request) {
  board::clear_journal();
  const int status = board::run_program({.arguments = {"zelto", request}, .inputless = true});
  print_effects();
  return status;
}

void give_terminal_to(pid_t group) {
  if (isatty(STDIN_FILENO) == 0) return;
  // Who is not in the foreground would be stopped for this.
  const auto previous = std::signal(SIGTTOU, SIG_IGN);
  tcsetpgrp(STDIN_FILENO, group);
  (void)std::signal(SIGTTOU, previous);
}

}  // namespace

int ask(const std::vector<std::string>& requests) {
  int first_failure = 0;
  const auto ask_next = [&](const std::string& request) {
    const int status = ask_one(request);
    if (first_failure == 0) first_failure = status;
  };
  try {
    for (const std::string& request : requests) {
      if (request != "-") {
        ask_next(request);
        continue;
      }
      for (std::string line; std::getline(std::cin, line);) {
        if (!line.empty()) ask_next(line);
      }
    }
  } catch (const std::exception& failure) {
    std::cerr << "zelto-board: " << failure.what() << '\n';
    return 1;
  }
  return first_failure;
}

int shell() {
  // Job control wants a process group that is known inside the router.
  setpgid(0, 0);
  give_terminal_to(getpgrp());
  try {
    if (setenv("PS1", kPrompt, 1) < 0) return 1;
    return board::run_program({.arguments = {"sh"}});
  } catch (const std::exception& failure) {
    std::cerr << "zelto-board: " << failure.what() << '\n';
    return 1;
  }
}

void take_terminal_back() {
  give_terminal_to(getpgrp());
}

int stay() {
  for (;;) pause();
}

}  // namespace launcher
