// The text of a driver profile: lines Key=Value, values that may be lists.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace wificonf {

// Whether `key` can name a line: printable, no blank, no '=', and not taken for a comment.
bool is_key(std::string_view key);

// The value of the first line of `key`, a view into `profile`.
std::optional<std::string_view> find_value(std::string_view profile, std::string_view key);

// `profile` with `value` as the value of the first line of `key`, appended as a last line where
// there is none.
std::string with_value(std::string_view profile, std::string_view key, std::string_view value);

// One element of a list; nothing behind its end.
std::optional<std::string_view> find_element(std::string_view list, int index);

// `list` with one element replaced, extended with empty elements as needed.
std::string with_element(std::string_view list, int index, std::string_view element);

}  // namespace wificonf
