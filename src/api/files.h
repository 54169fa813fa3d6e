// Small text files that daemons and the firmware keep, read line by line.
#pragma once

#include <cstddef>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zelto::files {

struct Closer {
  void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using File = std::unique_ptr<std::FILE, Closer>;

// Opens for reading, or as `mode` of fopen says; null on failure.
File open(const char* path, const char* mode = "re");

// The next line with its line feed, cut at `longest` bytes (the rest comes as the next line);
// nothing at the end of the file.
std::optional<std::string> read_line(std::FILE* file, std::size_t longest);

// All of a file; nothing when it cannot be opened.
std::optional<std::string> read_all(const char* path);

// Gives a file, new or old, this content; false when not all of it could be written.
bool write_all(const char* path, std::string_view content, const char* mode = "we");

// Has the disk itself hold the file, or the folder, as it is; a power cut takes the rest.
bool flush(const char* path);

void remove(const char* path);

// A lock on an open file, waited for, from construction to destruction. Declare it after the file:
// the file must outlive it.
class Lock {
 public:
  enum class Kind { kExclusive, kShared };

  explicit Lock(std::FILE* file, Kind kind = Kind::kExclusive);
  ~Lock();
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

  bool held() const { return descriptor_ >= 0; }

 private:
  int descriptor_;
};

}  // namespace zelto::files
