#include "gateway/state.h"

#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

#include "gateway/response.h"

namespace gateway {
namespace {

const Refusal kNoStorage{500, "storage", "The router cannot store logins at the moment."};

std::string lock_path() {
  // The mode only matters while the folder is made: another one's is refused.
  mkdir(kStateFolder, 0700);
  if (!state_is_own()) throw Refusal(kNoStorage);
  return state_path("lock");
}

}  // namespace

std::int64_t seconds_now() {
  timespec now{};
  clock_gettime(CLOCK_BOOTTIME, &now);
  return now.tv_sec;
}

StateLock::StateLock() : lock_(lock_path()) {
  if (!lock_.held()) throw Refusal(kNoStorage);
}

bool state_is_own() {
  struct stat folder {};
  return lstat(kStateFolder, &folder) == 0 && S_ISDIR(folder.st_mode) &&
         folder.st_uid == geteuid() && (folder.st_mode & 077U) == 0;
}

std::string state_path(const std::string& name) {
  return std::string(kStateFolder) + "/" + name;
}

void replace_state(const StateLock&, const std::string& name, const std::string& content) {
  if (!platform::replace_file(state_path(name), content)) throw Refusal(kNoStorage);
}

}  // namespace gateway
