#include "api/files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace zelto::files {

File open(const char* path, const char* mode) {
  return File(std::fopen(path, mode));
}

std::optional<std::string> read_line(std::FILE* file, std::size_t longest) {
  std::string line;
  int c = 0;
  while (line.size() < longest && c != '\n' && (c = getc_unlocked(file)) != EOF) {
    line.push_back(static_cast<char>(c));
  }
  if (line.empty()) return std::nullopt;
  return line;
}

std::optional<std::string> read_all(const char* path) {
  const auto file = open(path);
  if (!file) return std::nullopt;
  std::string content;
  std::array<char, 4096> block;
  while (const auto count = std::fread(block.data(), 1, block.size(), file.get())) {
    content.append(block.data(), count);
  }
  return content;
}

// An error of the buffered writes shows at the latest when they are flushed.
bool write_all(const char* path, std::string_view content, const char* mode) {
  auto file = open(path, mode);
  if (!file) return false;
  const bool written = std::fwrite(content.data(), 1, content.size(), file.get()) == content.size();
  return std::fclose(file.release()) == 0 && written;
}

bool flush(const char* path) {
  const int descriptor = ::open(path, O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return false;
  const bool flushed = fsync(descriptor) == 0;
  return close(descriptor) == 0 && flushed;
}

void remove(const char* path) {
  unlink(path);
}

Lock::Lock(std::FILE* file, Kind kind) : descriptor_(fileno(file)) {
  int status = 0;
  do {
    status = flock(descriptor_, kind == Kind::kShared ? LOCK_SH : LOCK_EX);
  } while (status != 0 && errno == EINTR);
  if (status != 0) descriptor_ = -1;
}

Lock::~Lock() {
  if (held()) flock(descriptor_, LOCK_UN);
}

}  // namespace zelto::files
