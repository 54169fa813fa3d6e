// What the user asks for on the command line.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace cli {

enum class Action { kHelp, kVersion, kList, kRpcList, kRpcCall, kRequest, kRequestFromInput };
enum class Layout { kAutomatic, kPretty, kRaw };

struct CommandLine {
  Action action = Action::kRequestFromInput;
  Layout layout = Layout::kAutomatic;
  std::string request;  // with Action::kRequest: the JSON text
  std::string command;  // with Action::kRpcCall: its method
};

// What the user typed makes no sense; the text says why.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Reads the arguments, without the program's name.
CommandLine read_command_line(const std::vector<std::string>& arguments);

extern const std::string_view kHelpText;

}  // namespace cli
