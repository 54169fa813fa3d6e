// What the launcher does inside the router.
#pragma once

#include <string>
#include <vector>

namespace launcher {

// Asks each request in turn and prints the reply and the effects; "-" stands for the lines of
// standard input. Returns the first exit status of `zelto` that is not 0.
int ask(const std::vector<std::string>& requests);

// A shell for the user. Its exit status.
int shell();

// Gives the terminal back to the launcher, from which shell() took it.
void take_terminal_back();

// Prints what requests do as it happens, until a signal ends it.
int stay();

}  // namespace launcher
