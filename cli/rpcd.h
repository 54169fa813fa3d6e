// The RPC daemon's plugin: its methods are the commands.
#pragma once

#include <string>

namespace cli::rpcd {

// The commands with a sample value for each argument, as one JSON object. Constant data only: the
// daemon waits for it without a limit, at its start.
std::string list();

// Runs a command with the arguments in a JSON object; the reply is one JSON object in any case.
// What is no command, or no object, gets the "result" that the library gives such requests.
std::string call(const std::string& command, const std::string& arguments);

}  // namespace cli::rpcd
