// Small text work shared by all commands.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace zelto::text {

// printf into a string.
std::string format(const char* pattern, ...) __attribute__((format(printf, 1, 2)));

// The text without its last character, as readers of lines cut the line feed. Empty stays empty.
std::string_view without_last(std::string_view text);

// The text without its line end: at most two characters, carriage return or line feed.
std::string_view without_line_end(std::string_view text);

// The first two words of a text, as "%s %s" reads them; a missing one is empty.
std::pair<std::string, std::string> two_words(std::string_view text);

// The first word of a text and what stands behind it.
std::pair<std::string_view, std::string_view> first_word(std::string_view text);

// The first words of a text, one for each of `words`; those that it lacks come out empty.
void read_words(std::string_view text, std::initializer_list<std::string*> words);

// What stands before the first and behind the first `separator`; all and nothing without one.
std::pair<std::string_view, std::string_view> split_first(std::string_view text, char separator);

// The number a text begins with, as atoi reads it, but held within the range of int.
int to_int(std::string_view text);

// The same for the range of 64 bits.
std::int64_t to_int64(std::string_view text);

// The register value that a text begins with, in hexadecimal without sign.
std::optional<unsigned> hexadecimal(std::string_view text);

// Whether `text` begins with `prefix`, ASCII letters compared without regard to case.
bool begins_with_ignoring_case(std::string_view text, std::string_view prefix);

// Whether a value from a request may be stored: at most `longest` bytes and no line break, which
// could forge a line of a configuration or list file.
bool is_storable(std::string_view value, std::size_t longest);

// The text with every byte that is not part of valid UTF-8 replaced by U+FFFD.
std::string to_utf8(std::string_view bytes);

// Copies a text with its NUL into a C buffer of `size` bytes, cut where it does not fit.
void copy(std::string_view text, char* buffer, std::size_t size);

// The text in a fixed buffer: up to its first NUL, or all of it when it has none.
inline std::string_view in_buffer(const char* buffer, std::size_t size) {
  const std::string_view whole(buffer, size);
  return whole.substr(0, whole.find('\0'));
}
template <std::size_t kSize>
std::string_view in_buffer(const char (&buffer)[kSize]) {
  return in_buffer(buffer, kSize);
}

}  // namespace zelto::text
