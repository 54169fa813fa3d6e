#include "board/launcher/arguments.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <functional>
#include <map>
#include <ranges>
#include <system_error>

#include "board/launcher/operation_mode.h"

namespace launcher {

const std::string_view kHelpText =
    "usage: zelto-board [OPTION...] [REQUEST...]\n"
    "\n"
    "Boots a virtual router and asks the command library on it. Without REQUEST its web page is\n"
    "at http://127.0.0.1:8080 until Ctrl-C, and what the page's requests do to the router is "
    "shown\n"
    "as it happens. For each REQUEST, a JSON text such as '{\"type\":\"getlancfg\"}', prints the\n"
    "reply and what it did to the router. '-' reads requests from standard input, one a line.\n"
    "Requests and shells go to a router that another terminal keeps up, if there is one.\n"
    "\n"
    "  --port N            where the web page is on this machine; 0 for any free port\n"
    "  --up                stays up without the web page\n"
    "  --shell             a shell on the router; `zelto REQUEST` asks there\n"
    "\n"
    "What the router is like:\n"
    "  --mode MODE         begins in this mode of operation: router, AP, repeater, wisp or\n"
    "                      mobilenetmode\n"
    "  --modem KIND        lte, nsa, sa or none: the modem that is plugged in\n"
    "  --usb N             0, 1 or 2 USB disks with some folders on each\n"
    "\n"
    "Where things are:\n"
    "  --programs-dir DIR  zelto, uci and zelto-cgi (default: beside zelto-board)\n"
    "  --web-dir DIR       the web page's files (default: those of the source tree)\n"
    "  --help              this text\n"
    "\n"
    "Exit status: the first of `zelto` that is not 0; 2 for bad usage, 125 when no router can\n"
    "boot on this machine.\n";

namespace {

constexpr std::array kModems{"none", "lte", "nsa", "sa"};
constexpr unsigned kMostDisks = 2;

std::string one_of(const auto& choices, const std::string& option, const std::string& word) {
  if (std::ranges::find(choices, word) != std::ranges::end(choices)) return word;
  throw UsageError(option + " does not know " + word);
}

template <std::unsigned_integral Number>
Number number_up_to(Number most, const std::string& option, const std::string& word) {
  Number number = 0;
  const char* end = word.data() + word.size();
  const auto [rest, error] = std::from_chars(word.data(), end, number);
  if (error != std::errc() || rest != end || number > most) {
    throw UsageError(option + " needs a number from 0 to " + std::to_string(most));
  }
  return number;
}

const std::map<std::string, Task> kTasks{
    {"--up", Task::kStayUp}, {"--shell", Task::kShell}, {"--help", Task::kHelp}};

using Setter = std::function<void(Arguments&, const std::string& option, const std::string& word)>;

// Of options that are followed by a word.
const std::map<std::string, Setter> kSetters{
    {"--port",
     [](Arguments& arguments, const auto& option, const auto& word) {
       arguments.port = number_up_to<uint16_t>(UINT16_MAX, option, word);
     }},
    {"--mode",
     [](Arguments& arguments, const auto& option, const auto& word) {
       arguments.router.mode = one_of(operation_modes(), option, word);
       arguments.sets_router = true;
     }},
    {"--modem",
     [](Arguments& arguments, const auto& option, const auto& word) {
       arguments.router.modem = one_of(kModems, option, word);
       if (word == kModems.front()) arguments.router.modem.clear();
       arguments.sets_router = true;
     }},
    {"--usb",
     [](Arguments& arguments, const auto& option, const auto& word) {
       arguments.router.usb_disks = static_cast<int>(number_up_to(kMostDisks, option, word));
       arguments.sets_router = true;
     }},
    {"--programs-dir",
     [](Arguments& arguments, const auto&, const auto& word) {
       arguments.programs = std::filesystem::absolute(word);
     }},
    {"--web-dir", [](Arguments& arguments, const auto&,
                     const auto& word) { arguments.web = std::filesystem::absolute(word); }},
};

}  // namespace

Arguments parse(const std::vector<std::string>& words) {
  Arguments arguments;
  arguments.programs = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  arguments.web = BOARD_WEB;
  arguments.catalogue = BOARD_CATALOGUE;
  bool task_named = false;
  for (size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    const auto task = kTasks.find(word);
    const auto setter = kSetters.find(word);
    if (task != kTasks.end()) {
      arguments.task = task->second;
      task_named = true;
    } else if (setter != kSetters.end()) {
      if (++i == words.size()) throw UsageError(word + " needs a word behind it");
      setter->second(arguments, word, words[i]);
    } else if (word.starts_with("--")) {
      throw UsageError("unknown option " + word);
    } else {
      arguments.requests.push_back(word);
    }
  }
  if (!arguments.requests.empty()) {
    if (task_named) throw UsageError("a request goes without --shell and --up");
    arguments.task = Task::kAsk;
  }
  return arguments;
}

}  // namespace launcher
