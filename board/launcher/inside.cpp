#include "board/launcher/inside.h"

#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <thread>

#include "board/board.h"
#include "board/launcher/effects.h"
#include "board/programs.h"

namespace launcher {
namespace {

constexpr const char* kPrompt = "router:\\w# ";

int ask_one(const std::string& request) {
  // Others may be reading the journal from where they are, so it is not emptied.
  const size_t before = board::journal().size();
  const int status = board::run_program({.arguments = {"zelto", request}, .inputless = true});
  std::cout << "effects, in order:\n";
  const std::vector<std::string> journal = board::journal();
  for (size_t i = before; i < journal.size(); ++i) print_effect(journal[i]);
  if (journal.size() <= before) std::cout << "  (none)\n";
  std::cout.flush();
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
  constexpr std::chrono::milliseconds kPause(100);
  for (Reporter reporter;; reporter.print_new()) std::this_thread::sleep_for(kPause);
}

}  // namespace launcher
