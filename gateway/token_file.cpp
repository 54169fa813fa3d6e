#include "gateway/token_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <sstream>

#include "gateway/response.h"
#include "platform/common/descriptor.h"
#include "platform/common/read_file.h"

namespace gateway {
namespace {

constexpr const char* kTokenFile = "/tmp/token";

// In a folder where everyone may write, a file of this name may be a trap.
bool make_private() {
  const platform::Descriptor file(
      open(kTokenFile, O_RDONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600));
  struct stat facts {};
  return file && fstat(file.get(), &facts) == 0 && S_ISREG(facts.st_mode) &&
         facts.st_uid == geteuid() && fchmod(file.get(), 0600) == 0;
}

}  // namespace

void change_token_file(const StateLock&, const std::set<std::string>& old,
                       const std::string& fresh) {
  const Refusal failure{500, "storage", "The router cannot store logins at the moment."};
  if (!make_private()) throw Refusal(failure);
  const auto before = platform::read_file(kTokenFile);
  if (!before) throw Refusal(failure);
  std::string after;
  std::istringstream lines(*before);
  for (std::string line; std::getline(lines, line);) {
    if (!line.empty() && !old.contains(line)) after += line + "\n";
  }
  if (!fresh.empty()) after += fresh + "\n";
  if (after != before && !platform::replace_file(kTokenFile, after)) throw Refusal(failure);
}

}  // namespace gateway
