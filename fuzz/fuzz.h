// What the parts of the fuzzer share.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

// An input is what libFuzzer made up; a target feeds it to the code under test and checks what may
// be said of the outcome whatever the input was.
struct Target {
  const char* name;
  void (*run)(std::string_view input);
};
std::span<const Target> parsers();

// The input shows a fault: says which and ends the process, whereupon libFuzzer keeps the input.
[[noreturn]] void fail(const std::string& what);
inline void require(bool holds, const char* what) {
  if (!holds) fail(what);
}

std::vector<std::string_view> lines_of(std::string_view text);

// ---- whole requests

// Once, within the router and before the first input.
void begin_requests();
void run_requests(std::string_view input);
void report_requests();

// Reads what mutate_requests() builds from.
void load_grammar(const std::string& catalogue_file, const std::string& values_file);
std::size_t mutate_requests(char* data, std::size_t size, std::size_t longest, unsigned seed);

// ---- what is around the library: fuzz/noting_shell.cpp takes the place of shell, modem, signals,
// log and time

// Whether noting has begun. Before, this process is not in the router. Not for the threads of
// libFuzzer, which sleep.
extern thread_local bool is_noting;
// The "type" of the request that is being answered.
extern std::string asked_type;

// What the next commands give: the first of these each, and nothing when there are none left.
void answer_commands(std::string_view output, int status);
void forget_answers();

// ---- fuzz/allowed.txt

void load_allowed(const std::string& path);
// Whether a rule of this kind ("run", "start", "line" ...) allows a text.
bool is_allowed(std::string_view kind, std::string_view text);
void require_allowed(std::string_view kind, std::string_view text);

}  // namespace fuzz
