#include "platform/common/replace_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>

namespace platform {
namespace {

// What `path` leads to when it is a link; `path` itself when it is none or leads nowhere.
std::string real_path(const std::string& path) {
  const std::unique_ptr<char, decltype(&std::free)> resolved(::realpath(path.c_str(), nullptr),
                                                             &std::free);
  return resolved ? resolved.get() : path;
}

bool write_all(int file, std::string_view content) {
  while (!content.empty()) {
    const ssize_t count = ::write(file, content.data(), content.size());
    if (count > 0) {
      content.remove_prefix(static_cast<size_t>(count));
    } else if (count == 0 || errno != EINTR) {
      return false;
    }
  }
  return true;
}

// Gives `file` the mode and owner of the file `name` in `folder`. The owner goes first, as a
// change of owner may take bits of the mode away.
bool take_over_attributes(int folder, const char* name, int file, mode_t mode_when_new) {
  struct stat old {};
  if (::fstatat(folder, name, &old, AT_SYMLINK_NOFOLLOW) != 0) {
    return errno == ENOENT && ::fchmod(file, mode_when_new) == 0;
  }
  if (S_ISLNK(old.st_mode)) return ::fchmod(file, mode_when_new) == 0;
  if (!S_ISREG(old.st_mode)) return false;

  struct stat fresh {};
  if (::fstat(file, &fresh) != 0) return false;
  const bool same_owner = fresh.st_uid == old.st_uid && fresh.st_gid == old.st_gid;
  if (!same_owner && ::fchown(file, old.st_uid, old.st_gid) != 0) return false;
  return ::fchmod(file, old.st_mode & 07777) == 0;
}

bool write_beside(int folder, const char* name, const char* temporary, std::string_view content,
                  mode_t mode_when_new) {
  const Descriptor file(::openat(
      folder, temporary, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kPrivateFileMode));
  return file && take_over_attributes(folder, name, file.get(), mode_when_new) &&
         write_all(file.get(), content) && ::fsync(file.get()) == 0;
}

bool lock_exclusively(int file) {
  while (::flock(file, LOCK_EX) != 0) {
    if (errno != EINTR) return false;
  }
  return true;
}

}  // namespace

bool replace_file(const std::string& path, std::string_view content, mode_t mode_when_new) {
  const std::string target = real_path(path);
  const size_t slash = target.rfind('/');
  const std::string folder_path = slash == std::string::npos ? "." : target.substr(0, slash + 1);
  const std::string name = slash == std::string::npos ? target : target.substr(slash + 1);
  const std::string temporary = "." + name + ".new";

  const Descriptor folder(::open(folder_path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!folder) return false;
  // A writer that was killed may have left one behind.
  if (::unlinkat(folder.get(), temporary.c_str(), 0) != 0 && errno != ENOENT) return false;

  if (!write_beside(folder.get(), name.c_str(), temporary.c_str(), content, mode_when_new) ||
      ::renameat(folder.get(), temporary.c_str(), folder.get(), name.c_str()) != 0) {
    ::unlinkat(folder.get(), temporary.c_str(), 0);
    return false;
  }
  return ::fsync(folder.get()) == 0;
}

FileLock::FileLock(const std::string& lock_path)
    : file_(::open(lock_path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC | O_NOCTTY,
                   kPrivateFileMode)) {
  if (file_ && !lock_exclusively(file_.get())) file_.reset();
}

// Unlocked by name, not by closing alone: a child forked meanwhile by another thread shares the
// descriptor until it starts its program, and would go on holding the lock.
FileLock::~FileLock() {
  if (file_) ::flock(file_.get(), LOCK_UN);
}

}  // namespace platform
