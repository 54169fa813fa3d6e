#include "api/list_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <limits>

#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"

namespace zelto::list_file {
namespace {

constexpr const char* kLockFile = "/etc/zelto_list_lock_file";
constexpr const char* kFolder = "/etc";
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

// Before the first change there is no lock file, and nothing to wait for.
class ReadLock {
 public:
  ReadLock() : file_(files::open(kLockFile)) {
    if (file_) lock_.emplace(file_.get(), files::Lock::Kind::kShared);
  }

 private:
  files::File file_;
  std::optional<files::Lock> lock_;
};

Outcome written(const ListFile& list) {
  return files::flush(list.path) && files::flush(kFolder) ? Outcome::kDone : Outcome::kNotWritten;
}

bool is_control(char c) {
  return static_cast<unsigned char>(c) < ' ' || c == '\x7f';
}

std::optional<off_t> size_of(const char* path) {
  struct stat status {};
  if (stat(path, &status) < 0) return std::nullopt;
  return status.st_size;
}

}  // namespace

ChangeLock::ChangeLock() : file_(files::open(kLockFile, "ae")) {
  if (file_) lock_.emplace(file_.get());
}

void ChangeLock::share_with_commands(bool shared) const {
  if (file_) fcntl(fileno(file_.get()), F_SETFD, shared ? 0 : FD_CLOEXEC);
}

std::optional<std::vector<std::string>> read(const ListFile& list) {
  const ReadLock lock;
  return read_records(list, /*is_whole=*/false);
}

std::optional<std::vector<std::string>> read(const ChangeLock& /*lock*/, const ListFile& list) {
  return read_records(list, /*is_whole=*/false);
}

std::optional<std::vector<std::string>> read_whole(const ListFile& list) {
  const ReadLock lock;
  return read_records(list, /*is_whole=*/true);
}

std::optional<std::vector<std::string>> read_whole(const ChangeLock& /*lock*/,
                                                   const ListFile& list) {
  return read_records(list, /*is_whole=*/true);
}

Outcome append(const ChangeLock& lock, const ListFile& list, const std::string& record) {
  if (!lock.held()) return Outcome::kNotWritten;
  const std::string before = ends_within_a_line(list.path) ? "\n" : "";
  const auto old_size = size_of(list.path);
  if (files::write_all(list.path, before + record + "\n", "ae")) return written(list);
  // What is left of the record would be read as another one.
  if (old_size && size_of(list.path) != old_size && truncate(list.path, *old_size) < 0) {
    log::error("the end of " + std::string(list.path) + " cannot be taken back!\n");
  }
  return Outcome::kNotWritten;
}

Outcome add_once(const ChangeLock& lock, const ListFile& list, const std::string& record) {
  const auto records = read(lock, list);
  if (!records) return Outcome::kNotRead;
  if (std::find(records->begin(), records->end(), record) != records->end()) return Outcome::kDone;
  return append(lock, list, record);
}

Outcome rewrite(const ChangeLock& lock, const ListFile& list,
                const std::function<bool(const std::string&)>& keep,
                const std::optional<std::string>& added) {
  auto records = read_records(list, list.rewrites_whole);
  if (!records) return errno == ENOENT ? Outcome::kMissing : Outcome::kNotRead;
  std::erase_if(*records, [&](const std::string& record) { return !keep(record); });
  if (added) records->push_back(*added);
  const bool replaced = prepare(lock, list, *records) && replace(lock, list);
  return replaced ? Outcome::kDone : Outcome::kNotWritten;
}

bool prepare(const ChangeLock& lock, const ListFile& list,
             const std::vector<std::string>& records) {
  std::string lines;
  for (const auto& record : records) lines.append(record).append("\n");
  if (lock.held() && files::write_all(list.work_path, lines)) return true;
  files::remove(list.work_path);
  return false;
}

bool replace(const ChangeLock& lock, const ListFile& list) {
  const auto old = files::read_all(list.path);
  lock.share_with_commands(true);
  const bool moved = old && shell::run(list.replacement) == 0;
  lock.share_with_commands(false);
  if (moved) return written(list) == Outcome::kDone;
  if (old && files::read_all(list.path) != old) files::write_all(list.path, *old);
  files::remove(list.work_path);
  return false;
}

bool is_word(std::string_view text, std::size_t longest) {
  return !text.empty() && is_rest(text, longest) && text.find(' ') == std::string_view::npos;
}

bool is_rest(std::string_view text, std::size_t longest) {
  return text.size() <= longest && std::none_of(text.begin(), text.end(), is_control);
}

}  // namespace zelto::list_file
