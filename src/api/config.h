// The configuration store, one option at a time.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace zelto::config {

struct Option {
  const char* package;
  const char* section;
  const char* name;
};

// What several subsystems look at: how the router is used, and how its WAN connects.
inline constexpr Option kOperationMode = {"system", "route", "operationmode"};
inline constexpr Option kConnectionType = {"system", "route", "conntype"};

// Longest value most readers take.
inline constexpr std::size_t kLongestValue = 127;

// The option's value, cut at `longest` bytes; nothing when the read failed. An absent option is a
// failed read.
std::optional<std::string> read(const Option& option, std::size_t longest = kLongestValue);

// The same with the empty text for a failed read.
std::string read_or_empty(const Option& option, std::size_t longest = kLongestValue);

// Stores a value; false when it failed. A value with a line break is never stored.
bool write(const Option& option, std::string_view value);

// The same with one log line for a failure: "set <what> to <value> failed!".
bool write_or_log(const Option& option, std::string_view value, const char* what);

// A null name adds an anonymous section.
void add_section(const char* package, const char* type, const char* name);

struct Value {
  const char* option;
  std::string_view value;
};

// Gives a section options, in order.
void write_section(const char* package, const std::string& section,
                   std::initializer_list<Value> values);

void remove(const Option& option);
bool remove_section(const char* package, const std::string& section);

bool section_exists(const char* package, const std::string& section);

// The name of the n-th section of a type, from 0; nothing when there are fewer.
std::optional<std::string> section_of_type(const char* package, const char* type, int n);

}  // namespace zelto::config
