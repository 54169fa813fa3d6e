#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>

#include "platform/common/descriptor.h"

namespace platform {

inline constexpr mode_t kPrivateFileMode = 0600;

// Puts `content` in the place of the file `path` so that a reader, a crash, a kill or a full disk
// only ever meets the whole old or the whole new file: written beside it under a dot name, flushed
// to the disk, renamed over it, and the folder flushed too. A link is followed and kept. The new
// file has the mode and owner of the old one; where there was none, `mode_when_new`.
//
// False when any step fails: nothing is left beside the file then, and the old one is untouched
// (but for a failed flush of the folder, the last step: the new file is in place, and only its
// survival of a power cut is open).
//
// Callers hold a FileLock around the reading, changing and replacing of one file: two calls for
// one path at a time would meet in the same temporary file.
bool replace_file(const std::string& path, std::string_view content,
                  mode_t mode_when_new = kPrivateFileMode);

// Keeps every other holder of the same lock file out, in other processes and in other threads of
// this one alike, until destroyed or until the process ends. The lock file is created when
// missing and stays: it must be a file of its own, never the one that is replaced, as a rename
// takes a lock away together with the file it was on.
class FileLock {
 public:
  // Waits for as long as another holder needs.
  explicit FileLock(const std::string& lock_path);
  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

  // False when the lock file could not be opened or locked.
  bool held() const { return static_cast<bool>(file_); }

 private:
  Descriptor file_;
};

}  // namespace platform
