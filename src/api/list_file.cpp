#include "api/list_file.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "api/shell.h"
#include "api/text.h"

namespace zelto::list_file {
namespace {

constexpr const char* kLockFile = "/etc/zelto_list_lock_file";
constexpr std::size_t kAnyLength = std::numeric_limits<std::size_t>::max();

bool ends_within_a_line(const char* path) {
  const auto file = files::open(path);
  return file && std::fseek(file.get(), -1, SEEK_END) == 0 && std::getc(file.get()) != '\n';
}

std::optional<std::vector<std::string>> read_records(const ListFile& list, bool is_whole) {
  const auto file = files::open(list.path);
  if (!file) return std::nullopt;
  std::vector<std::string> records;
  while (const auto line = files::read_line(file.get(), kAnyLength)) {
    if (line->size() < list.shortest) continue;
    const bool keeps_end = is_whole && line->back() != '\n';
    records.emplace_back(keeps_end ? *line : text::without_last(*line));
  }
  return records;
}

bool is_control(char c) {
  return static_cast<unsigned char>(c) < ' ' || c == '\x7f';
}

}  // namespace

ChangeLock::ChangeLock() : file_(files::open(kLockFile, "ae")) {
  if (file_) lock_.emplace(file_.get());
}

std::optional<std::vector<std::string>> read(const ListFile& list) {
  return read_records(list, /*is_whole=*/false);
}

std::optional<std::vector<std::string>> read_whole(const ListFile& list) {
  return read_records(list, /*is_whole=*/true);
}

Outcome append(const ChangeLock& lock, const ListFile& list, const std::string& record) {
  const std::string before = ends_within_a_line(list.path) ? "\n" : "";
  const bool written = lock.held() && files::write_all(list.path, before + record + "\n", "ae");
  return written ? Outcome::kDone : Outcome::kNotWritten;
}

Outcome add_once(const ChangeLock& lock, const ListFile& list, const std::string& record) {
  const auto records = read(list);
  if (!records) return Outcome::kNotRead;
  if (std::find(records->begin(), records->end(), record) != records->end()) return Outcome::kDone;
  return append(lock, list, record);
}

Outcome rewrite(const ChangeLock& lock, const ListFile& list,
                const std::function<bool(const std::string&)>& keep) {
  auto records = read_records(list, list.rewrites_whole);
  if (!records) return Outcome::kNotRead;
  std::erase_if(*records, [&](const std::string& record) { return !keep(record); });
  return prepare(lock, list, *records) && replace(list) ? Outcome::kDone : Outcome::kNotWritten;
}

bool prepare(const ChangeLock& lock, const ListFile& list,
             const std::vector<std::string>& records) {
  std::string lines;
  for (const auto& record : records) lines.append(record).append("\n");
  if (lock.held() && files::write_all(list.work_path, lines)) return true;
  files::remove(list.work_path);
  return false;
}

bool replace(const ListFile& list) {
  return shell::run(list.replacement) == 0;
}

bool is_word(std::string_view text, std::size_t longest) {
  return !text.empty() && is_rest(text, longest) && text.find(' ') == std::string_view::npos;
}

bool is_rest(std::string_view text, std::size_t longest) {
  return text.size() <= longest && std::none_of(text.begin(), text.end(), is_control);
}

}  // namespace zelto::list_file
