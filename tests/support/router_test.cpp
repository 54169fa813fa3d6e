#include "support/router_test.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <filesystem>

namespace zelto_test {

NoDescriptors::NoDescriptors() {
  rlimit limit{};
  getrlimit(RLIMIT_NOFILE, &limit);
  limit.rlim_cur = 256;
  setrlimit(RLIMIT_NOFILE, &limit);
  for (int fd = open("/dev/null", O_RDONLY); fd >= 0; fd = open("/dev/null", O_RDONLY)) {
    taken_.push_back(fd);
  }
}

NoDescriptors::~NoDescriptors() {
  for (const int fd : taken_) close(fd);
}

std::size_t open_descriptors() {
  const std::filesystem::directory_iterator all("/proc/self/fd");
  return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

}  // namespace zelto_test
