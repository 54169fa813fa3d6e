#include "platform/common/read_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstddef>

#include "platform/common/descriptor.h"

namespace platform {

std::optional<std::string> read_file(const std::string& path) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat facts {};
  if (!file || ::fstat(file.get(), &facts) != 0) return std::nullopt;
  if (!S_ISREG(facts.st_mode)) {
    errno = EINVAL;
    return std::nullopt;
  }
  std::string content;
  std::array<char, 4096> block;
  while (true) {
    const ssize_t count = ::read(file.get(), block.data(), block.size());
    if (count == 0) return content;
    if (count > 0) {
      content.append(block.data(), static_cast<size_t>(count));
    } else if (errno != EINTR) {
      return std::nullopt;
    }
  }
}

}  // namespace platform
