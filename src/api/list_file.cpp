#include "api/list_file.h"

#include <algorithm>
#include <cstdio>
#include <limits>

#include "api/files.h"
#include "api/shell.h"
#include "api/text.h"

namespace zelto::list_file {
namespace {

constexpr const char* kLockFile = "/etc/zelto_list_lock_file";
constexpr std::size_t kAnyLength = std::numeric_limits<std::size_t>::max();

// Held by whoever changes a list.
class ChangeLock {
 public:
  ChangeLock() : file_(files::open(kLockFile, "ae")) {
    if (file_) lock_.emplace(file_.get());
  }

  bool held() const { return lock_ && lock_->held(); }

 private:
  files::File file_;
  std::optional<files::Lock> lock_;
};

bool ends_within_a_line(const char* path) {
  const auto file = files::open(path);
  return file && std::fseek(file.get(), -1, SEEK_END) == 0 && std::getc(file.get()) != '\n';
}

// Everything or nothing: an error of the buffered writes shows at the latest when they are flushed.
bool write_lines(const char* path, const char* mode, std::string_view lines) {
  auto file = files::open(path, mode);
  if (!file) return false;
  const bool written = std::fwrite(lines.data(), 1, lines.size(), file.get()) == lines.size();
  return std::fclose(file.release()) == 0 && written;
}

}  // namespace

std::optional<std::vector<std::string>> read(const ListFile& list) {
  const auto file = files::open(list.path);
  if (!file) return std::nullopt;
  std::vector<std::string> records;
  while (const auto line = files::read_line(file.get(), kAnyLength)) {
    if (line->size() >= list.shortest) records.emplace_back(text::without_last(*line));
  }
  return records;
}

Outcome add_once(const ListFile& list, const std::string& record) {
  const ChangeLock lock;
  const auto records = read(list);
  if (!records) return Outcome::kNotRead;
  if (std::find(records->begin(), records->end(), record) != records->end()) return Outcome::kDone;
  if (!lock.held()) return Outcome::kNotWritten;
  const std::string before = ends_within_a_line(list.path) ? "\n" : "";
  return write_lines(list.path, "ae", before + record + "\n") ? Outcome::kDone
                                                              : Outcome::kNotWritten;
}

Outcome rewrite(const ListFile& list, const std::function<bool(const std::string&)>& keep) {
  const ChangeLock lock;
  const auto records = read(list);
  if (!records) return Outcome::kNotRead;
  std::string lines;
  for (const auto& record : *records) {
    if (keep(record)) lines.append(record).append("\n");
  }
  if (!lock.held() || !write_lines(list.work_path, "we", lines)) return Outcome::kNotWritten;
  return shell::run(list.replacement) == 0 ? Outcome::kDone : Outcome::kNotWritten;
}

bool is_word(std::string_view text, std::size_t longest) {
  return !text.empty() && text.size() <= longest &&
         std::none_of(text.begin(), text.end(),
                      [](char c) { return static_cast<unsigned char>(c) <= ' ' || c == '\x7f'; });
}

}  // namespace zelto::list_file
