#include "board/modem.h"

#include <sstream>
#include <stdexcept>

#include "board/board.h"
#include "board/modem/paths.h"

namespace board {
namespace {

void run_modem(const std::string& argument) {
  if (quiet({"modem", argument}) != 0) throw std::runtime_error("no modem: " + argument);
}

}  // namespace

void plug_modem(const std::string& profile) {
  constexpr const char* kProfile = "/tmp/modem-profile";
  const bool is_text = profile.find('\n') != std::string::npos;
  if (is_text) write_file(kProfile, profile);
  run_modem(is_text ? kProfile : profile);
}

void unplug_modem() {
  run_modem("none");
}

std::vector<std::string> modem_commands() {
  std::vector<std::string> commands;
  std::istringstream lines(read_file(modem::kLog));
  for (std::string line; std::getline(lines, line);) commands.push_back(line);
  return commands;
}

}  // namespace board
