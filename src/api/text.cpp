#include "api/text.h"

#include <strings.h>

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <limits>
#include <system_error>

namespace zelto::text {
namespace {

constexpr std::string_view kWhiteSpace = " \t\n\v\f\r";
constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

std::string_view take_word(std::string_view& text) {
  const auto begin = std::min(text.find_first_not_of(kWhiteSpace), text.size());
  const auto end = std::min(text.find_first_of(kWhiteSpace, begin), text.size());
  const auto word = text.substr(begin, end - begin);
  text.remove_prefix(end);
  return word;
}

bool is_continuation(unsigned char byte) {
  return (byte & 0xC0U) == 0x80U;
}

// Length of the valid UTF-8 sequence that the bytes begin with, 0 when they begin with none:
// no overlong form, no surrogate, nothing above U+10FFFF.
std::size_t sequence_length(std::string_view bytes) {
  const auto at = [&](std::size_t i) {
    return i < bytes.size() ? static_cast<unsigned char>(bytes[i]) : static_cast<unsigned char>(0);
  };
  const unsigned char first = at(0);
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return is_continuation(at(1)) ? 2 : 0;
  if (first >= 0xE0 && first <= 0xEF) {
    const bool second_fits = first == 0xE0 ? at(1) >= 0xA0 : (first != 0xED || at(1) <= 0x9F);
    return second_fits && is_continuation(at(1)) && is_continuation(at(2)) ? 3 : 0;
  }
  if (first >= 0xF0 && first <= 0xF4) {
    const bool second_fits = first == 0xF0 ? at(1) >= 0x90 : (first != 0xF4 || at(1) <= 0x8F);
    return second_fits && is_continuation(at(1)) && is_continuation(at(2)) && is_continuation(at(3))
               ? 4
               : 0;
  }
  return 0;
}

template <typename Number>
Number to_number(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kWhiteSpace), text.size()));
  const bool negative = text.starts_with('-');
  if (text.starts_with('+')) text.remove_prefix(1);
  Number value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error == std::errc::result_out_of_range) {
    return negative ? std::numeric_limits<Number>::min() : std::numeric_limits<Number>::max();
  }
  return value;
}

}  // namespace

std::string format(const char* pattern, ...) {
  va_list arguments;
  va_start(arguments, pattern);
  // The analyser does not see what va_start does.
  // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
  const int length = std::vsnprintf(nullptr, 0, pattern, arguments);
  va_end(arguments);
  std::string result(static_cast<std::size_t>(std::max(length, 0)), '\0');
  va_start(arguments, pattern);
  if (length > 0) std::vsnprintf(result.data(), result.size() + 1, pattern, arguments);
  va_end(arguments);
  return result;
}

std::string_view without_last(std::string_view text) {
  return text.substr(0, text.empty() ? 0 : text.size() - 1);
}

std::string_view without_line_end(std::string_view text) {
  for (int i = 0; i < 2 && !text.empty() && (text.back() == '\r' || text.back() == '\n'); ++i) {
    text.remove_suffix(1);
  }
  return text;
}

std::pair<std::string, std::string> two_words(std::string_view text) {
  std::string first(take_word(text));
  return {std::move(first), std::string(take_word(text))};
}

std::pair<std::string_view, std::string_view> first_word(std::string_view text) {
  const auto word = take_word(text);
  return {word, text};
}

void read_words(std::string_view text, std::initializer_list<std::string*> words) {
  for (std::string* word : words) *word = take_word(text);
}

std::pair<std::string_view, std::string_view> split_first(std::string_view text, char separator) {
  const auto position = text.find(separator);
  if (position == std::string_view::npos) return {text, {}};
  return {text.substr(0, position), text.substr(position + 1)};
}

int to_int(std::string_view text) {
  return to_number<int>(text);
}

std::int64_t to_int64(std::string_view text) {
  return to_number<std::int64_t>(text);
}

std::optional<unsigned> hexadecimal(std::string_view text) {
  if (text.starts_with("0x") || text.starts_with("0X")) text.remove_prefix(2);
  unsigned value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
  if (error != std::errc()) return std::nullopt;
  return value;
}

bool begins_with_ignoring_case(std::string_view text, std::string_view prefix) {
  return text.size() >= prefix.size() &&
         strncasecmp(text.data(), prefix.data(), prefix.size()) == 0;
}

bool is_storable(std::string_view value, std::size_t longest) {
  return value.size() <= longest && value.find_first_of("\r\n") == std::string_view::npos;
}

std::string to_utf8(std::string_view bytes) {
  const auto is_ascii = [](char c) { return static_cast<unsigned char>(c) < 0x80; };
  if (std::all_of(bytes.begin(), bytes.end(), is_ascii)) return std::string(bytes);
  std::string result;
  result.reserve(bytes.size());
  while (!bytes.empty()) {
    const auto length = sequence_length(bytes);
    result.append(length == 0 ? kReplacement : bytes.substr(0, length));
    bytes.remove_prefix(std::max<std::size_t>(length, 1));
  }
  return result;
}

void copy(std::string_view text, char* buffer, std::size_t size) {
  if (size == 0) return;
  const auto length = std::min(text.size(), size - 1);
  std::memcpy(buffer, text.data(), length);
  buffer[length] = '\0';
}

}  // namespace zelto::text
