// zelto-board: boots the virtual router and asks the command library on it.

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <exception>
#include <filesystem>
#include <functional>
#include <iostream>
#include <stdexcept>
#include <string>

#include "board/board.h"
#include "board/files.h"
#include "board/launcher/arguments.h"
#include "board/launcher/forwarder.h"
#include "board/launcher/inside.h"
#include "board/launcher/operation_mode.h"
#include "board/launcher/running_router.h"
#include "board/launcher/web.h"

namespace {

using board::Descriptor;
using launcher::Arguments;
using launcher::Task;

constexpr int kFailed = 1;
constexpr int kBadUsage = 2;

std::string required_program(const std::filesystem::path& directory, const char* name) {
  std::string program = directory / name;
  if (access(program.c_str(), X_OK) == 0) return program;
  throw std::runtime_error("no program " + program +
                           ": build it, or name its directory with --programs-dir");
}

board::Options router_options(const Arguments& arguments) {
  board::Options options;
  options.services = true;
  options.usb_disks = arguments.router.usb_disks;
  options.modem = arguments.router.modem;
  options.programs.push_back(required_program(arguments.programs, "zelto"));
  const auto uci = arguments.programs / "uci";
  if (access(uci.c_str(), X_OK) == 0) options.programs.push_back(uci);
  if (arguments.task == Task::kServeWeb) {
    options.programs.push_back(required_program(arguments.programs, launcher::kGatewayProgram));
    options.files = launcher::web_files(arguments.web, arguments.catalogue);
  }
  return options;
}

// Brings the router to what the arguments say before anything is asked.
std::function<int()> after_settings(const Arguments& arguments,
                                    const std::function<int()>& inside) {
  return [&arguments, inside] {
    try {
      if (!arguments.router.mode.empty()) launcher::begin_in_mode(arguments.router.mode);
    } catch (const std::exception& failure) {
      std::cerr << "zelto-board: " << failure.what() << '\n';
      return kFailed;
    }
    return inside();
  };
}

// A router that stays up until it is asked to end. `announce` is called when it is up.
int run_until_ended(const Arguments& arguments, const std::function<int()>& inside,
                    const std::function<void()>& announce) {
  board::Options options = router_options(arguments);
  options.lively = true;
  options.on_boot = [&](int process) {
    launcher::write_router_file(process);
    announce();
  };
  const int status = board::run(options, after_settings(arguments, inside));
  if (status == board::kCannotBoot) return status;
  board::remove_file(launcher::router_file());
  constexpr int kSignalStatus = 128;
  const bool asked_to_end = status == kSignalStatus + SIGINT || status == kSignalStatus + SIGTERM ||
                            status == kSignalStatus + SIGHUP;
  return asked_to_end ? 0 : status;
}

void print_hints(const std::string& program) {
  std::cout << "From another terminal:\n  " << program << " '{\"type\":\"getlancfg\"}'\n  "
            << program << " --shell\nCtrl-C ends it." << std::endl;
}

int stay_up(const Arguments& arguments, const std::string& program) {
  return run_until_ended(arguments, launcher::stay, [&] {
    std::cout << "The router is up. ";
    print_hints(program);
  });
}

int serve_web(const Arguments& arguments, const std::string& program) {
  const Descriptor listening = launcher::listen_on_loopback(arguments.port);
  std::array<int, 2> ends{};
  if (pipe2(ends.data(), O_CLOEXEC) < 0) throw board::system_failure("pipe");
  const Descriptor reading(ends[0]);
  Descriptor writing(ends[1]);
  const auto inside = [&] { return launcher::serve_web(listening, writing); };
  return run_until_ended(arguments, inside, [&] {
    writing.reset();
    char byte = 0;
    // At the end of the pipe the router has ended, and run() says so.
    if (read(reading.get(), &byte, 1) != 1) return;
    std::cout << "The router is up. Its web page:\n  http://127.0.0.1:"
              << launcher::port_of(listening) << '\n';
    print_hints(program);
  });
}

int ask_or_open_shell(const Arguments& arguments) {
  const bool wants_shell = arguments.task == Task::kShell;
  const std::function<int()> inside = [&] {
    return wants_shell ? launcher::shell() : launcher::ask(arguments.requests);
  };
  const auto router = launcher::find_router();
  if (router && arguments.sets_router) {
    throw std::runtime_error("a router is up already: end it to boot one with other settings");
  }
  if (!router) std::cerr << "zelto-board: no router is up; booting one for this\n";
  const int status = router
                         ? launcher::run_in_router(*router, inside)
                         : board::run(router_options(arguments), after_settings(arguments, inside));
  if (wants_shell) launcher::take_terminal_back();
  return status;
}

int run(const Arguments& arguments, const std::string& program) {
  switch (arguments.task) {
    case Task::kHelp:
      std::cout << launcher::kHelpText;
      return 0;
    case Task::kAsk:
    case Task::kShell:
      return ask_or_open_shell(arguments);
    case Task::kStayUp:
    case Task::kServeWeb:
      break;
  }
  if (launcher::find_router()) throw std::runtime_error("a router is up already");
  return arguments.task == Task::kStayUp ? stay_up(arguments, program)
                                         : serve_web(arguments, program);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(launcher::parse({argv + 1, argv + argc}), argv[0]);
  } catch (const launcher::UsageError& error) {
    std::cerr << "zelto-board: " << error.what() << "\nTry zelto-board --help.\n";
    return kBadUsage;
  } catch (const std::exception& failure) {
    std::cerr << "zelto-board: " << failure.what() << '\n';
    return kFailed;
  }
}
