#include "access/terminal_list.h"

#include <algorithm>
#include <cstddef>
#include <limits>

#include "api/files.h"
#include "api/text.h"

namespace zelto::terminals {
namespace {

constexpr char kBlank = ' ';

std::string_view take_first(std::string_view& rest) {
  rest.remove_prefix(std::min(rest.find_first_not_of(kBlank), rest.size()));
  const auto word = text::split_first(rest, kBlank).first;
  rest.remove_prefix(word.size());
  return word;
}

std::string_view without_last_blanks(std::string_view text) {
  return text.substr(0, text.find_last_not_of(kBlank) + 1);
}

std::string_view without_blanks_around(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(kBlank), text.size()));
  return without_last_blanks(text);
}

// The word behind the last blank; none when what is left is the name alone.
std::string_view take_last(std::string_view& rest) {
  const auto blank = rest.rfind(kBlank);
  if (blank == std::string_view::npos) return {};
  const auto word = rest.substr(blank + 1);
  rest = rest.substr(0, blank);
  return word;
}

}  // namespace

Terminal parse(std::string_view line) {
  Terminal terminal;
  for (auto* field : {&terminal.ip, &terminal.mac, &terminal.seconds, &terminal.down_rate,
                      &terminal.up_rate, &terminal.interface}) {
    *field = take_first(line);
  }
  // One blank stands before the name, so that an empty name is seen as such.
  line = without_last_blanks(line.substr(std::min<std::size_t>(1, line.size())));
  if (std::count(line.begin(), line.end(), kBlank) > 1) terminal.up_total = take_last(line);
  terminal.down_total = take_last(line);
  terminal.name = without_blanks_around(line);
  return terminal;
}

Lines read() {
  constexpr std::size_t kAnyLength = std::numeric_limits<std::size_t>::max();
  const auto lock_file = files::open("/etc/terminal_lock_file", "w+e");
  if (!lock_file) return {Outcome::kNoLockFile, {}};
  const files::Lock lock(lock_file.get());
  if (!lock.held()) return {Outcome::kNotLocked, {}};
  const auto file = files::open("/tmp/terminal_list");
  if (!file) return {Outcome::kNoList, {}};

  Lines result{Outcome::kRead, {}};
  while (const auto line = files::read_line(file.get(), kAnyLength)) {
    const auto content = text::without_line_end(*line);
    if (!content.empty()) result.lines.emplace_back(content);
  }
  return result;
}

}  // namespace zelto::terminals
