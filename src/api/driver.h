// The radio drivers' profiles, one key at a time.
#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>

namespace zelto::driver {

// A radio's profile.
struct Profile {
  const char* name;  // in log lines
  int (*get)(const char* key, int index, char* buffer);
  int (*set)(const char* key, int index, const char* value);
};
extern const Profile k2G;
extern const Profile k5G;

// Which part of a key's value is meant: all of it, or the element of one of the radio's networks.
enum Index : int { kWhole = -1, kMain = 0, kGuest = 1 };

// The value; nothing when the read failed, which an absent key is but an empty value is not.
std::optional<std::string> read(const Profile& profile, const char* key, Index index);

// The same with the empty text for a failed read.
std::string read_or_empty(const Profile& profile, const char* key, Index index);

// As read(), with one log line for a failure: "lib_conf_get_2G <key> failed!".
std::optional<std::string> read_or_log(const Profile& profile, const char* key, Index index);

// A value to read, and where to.
struct Wanted {
  const char* key;
  Index index;
  std::string& value;
};

// Reads several values in order; false, with the log line, after the first that fails.
bool read_all_or_log(const Profile& profile, std::initializer_list<Wanted> wanted);

// Stores a value. A driver that does not take it has nobody to be told.
void write(const Profile& profile, const char* key, Index index, std::string_view value);

// Whether the profile can hold a text as a network's element: at most `longest` bytes, no line
// break, and no semicolon, which separates elements.
bool is_element(std::string_view value, std::size_t longest);

}  // namespace zelto::driver
