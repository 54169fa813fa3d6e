#include "storage/disks.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstddef>
#include <memory>

#include "api/files.h"
#include "api/list_file.h"
#include "api/log.h"
#include "api/text.h"

namespace zelto::disks {
namespace {

struct DirectoryCloser {
  void operator()(DIR* directory) const { closedir(directory); }
};

using Directory = std::unique_ptr<DIR, DirectoryCloser>;

// The names of a directory's entries that `wanted` takes, but for its own and its parent's.
std::optional<std::vector<std::string>> entries(
    const char* path, const std::function<bool(DIR*, const dirent&)>& wanted) {
  const Directory directory(opendir(path));
  if (!directory) return std::nullopt;
  std::vector<std::string> names;
  while (const dirent* entry = readdir(directory.get())) {
    const std::string name = entry->d_name;
    if (name != "." && name != ".." && wanted(directory.get(), *entry)) names.push_back(name);
  }
  return names;
}

// Some file systems do not say in the entry what it is.
bool is_folder(DIR* directory, const dirent& entry) {
  if (entry.d_type != DT_UNKNOWN) return entry.d_type == DT_DIR;
  struct stat status {};
  return fstatat(dirfd(directory), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0 &&
         S_ISDIR(status.st_mode);
}

std::string path_of(const std::string& disk, const char* file) {
  return kMountPoints + disk + "/" + file;
}

bool is_plain(const std::string& path) {
  struct stat status {};
  return lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

// Neither follows a link out of the disk nor waits for the other end of a pipe.
files::File open_plain(const std::string& path) {
  if (!is_plain(path)) return nullptr;
  const int descriptor = open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) return nullptr;
  files::File file(fdopen(descriptor, "re"));
  if (!file) close(descriptor);
  return file;
}

std::optional<Lines> read(const std::string& path) {
  constexpr std::size_t kMostLines = 64;
  const auto file = open_plain(path);
  if (!file) return std::nullopt;
  Lines lines;
  while (lines.size() < kMostLines) {
    const auto line = files::read_line(file.get(), kLongestLine + 1);
    if (!line) break;
    const auto text = text::without_line_end(*line);
    lines.emplace_back(is_line(text) ? text : "");
  }
  return lines;
}

// Where a file is written: "has it" comes before "is the first".
std::optional<std::string> target(const char* file) {
  const auto disks = names();
  if (!disks || disks->empty()) return std::nullopt;
  const auto owner = std::find_if(disks->begin(), disks->end(), [&](const std::string& disk) {
    return is_plain(path_of(disk, file));
  });
  return path_of(owner == disks->end() ? disks->front() : *owner, file);
}

// Beside the old file first, so that a full disk costs nothing.
bool replace(const std::string& path, const std::string& content) {
  const std::string beside = path + ".new";
  unlink(beside.c_str());
  const int descriptor =
      open(beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
  if (descriptor < 0) return false;
  const auto written = ::write(descriptor, content.data(), content.size());
  const bool is_whole = written == static_cast<ssize_t>(content.size()) && fsync(descriptor) == 0;
  if (close(descriptor) == 0 && is_whole && rename(beside.c_str(), path.c_str()) == 0) {
    return files::flush(path.substr(0, path.rfind('/')).c_str());
  }
  unlink(beside.c_str());
  return false;
}

}  // namespace

std::optional<std::vector<std::string>> names() {
  return entries(kMountPoints, [](DIR*, const dirent&) { return true; });
}

std::vector<std::string> folders(const std::string& disk) {
  return entries((kMountPoints + disk).c_str(), is_folder).value_or(std::vector<std::string>());
}

std::optional<Lines> read_first(const char* file, const std::function<bool(const Lines&)>& wanted) {
  for (const auto& disk : names().value_or(std::vector<std::string>())) {
    auto lines = read(path_of(disk, file));
    if (lines && wanted(*lines)) return lines;
  }
  return std::nullopt;
}

bool write(const char* file, const Lines& lines) {
  const auto path = target(file);
  if (!path) {
    log::error("not have mount usb!\n");
    return false;
  }
  std::string content;
  for (const auto& line : lines) content.append(line).append("\n");
  if (replace(*path, content)) return true;
  log::error(text::format("fopen %s for write error!\n", path->c_str()));
  return false;
}

bool is_line(std::string_view text) {
  return !text.empty() && list_file::is_rest(text, kLongestLine);
}

bool is_on_disk(std::string_view path) {
  const std::string inside = std::string(path) + "/";
  return is_line(path) && path.starts_with(kMountPoints) &&
         inside.find("/../") == std::string::npos;
}

}  // namespace zelto::disks
