// Shell commands, and the quoting of what is put into them. Quoting leaves out NUL bytes: a command
// would end there, within its quotes.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace zelto::shell {

// What the status of a process means when the shell could not run its command: it was not found, or
// may not be executed.
bool cannot_run(int wait_status);

// Starts a command detached; false when no shell could be started. See zelto_system.
bool start(std::string_view command);

// Runs a command and waits; the status of system().
int run(std::string_view command);

struct Output {
  std::string text;
  int status;  // as waitpid reports it
};

// Runs a command, waits, and gives at most the first `longest` bytes of its output; nothing when it
// could not be started.
std::optional<Output> capture(std::string_view command, std::size_t longest);

// The same for the first line of the output, its line feed included, cut at `longest` bytes.
std::optional<Output> capture_line(std::string_view command, std::size_t longest);

// `text` as one bare word of a command. A word of letters, digits and @%+=:,./_- passes unchanged;
// anything else is put in single quotes. A word that begins with "-" remains an option to whom it
// is handed: refuse it beforehand where that matters.
std::string word(std::string_view text);

// `text` for a place inside double quotes: what the shell would expand there is escaped.
std::string inside_double_quotes(std::string_view text);

}  // namespace zelto::shell
