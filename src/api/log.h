// Where the library says what went wrong: the system log and the console.
#pragma once

#include <string_view>

namespace zelto::log {

// One syslog message at priority 3. The text ends in a line feed; other control characters in it
// (a value may have brought them) appear as "?", so that no value forges a line of the log.
void error(std::string_view text);

// Says that a command stored nothing because a value of its request cannot be.
void refused(const char* command);

// Says, without needing memory, why a command was given up.
void failure(const char* command, const char* reason) noexcept;

}  // namespace zelto::log

namespace zelto::console {

// One trace line on /dev/console: source file, function, the caller's line and text. Dropped when
// the console cannot be opened or does not take it at once: a stopped terminal never stops a
// command.
void trace(std::string_view function, std::string_view text, int source_line = __builtin_LINE());

}  // namespace zelto::console
