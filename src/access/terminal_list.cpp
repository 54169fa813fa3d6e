#include "access/terminal_list.h"

#include <limits>

#include "api/files.h"
#include "api/text.h"

namespace zelto::terminals {

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

std::string_view field(std::string_view line, int n) {
  for (; n > 1; --n) line = text::split_first(line, ' ').second;
  return text::split_first(line, ' ').first;
}

}  // namespace zelto::terminals
