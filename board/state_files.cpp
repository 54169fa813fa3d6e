#include "board/state_files.h"

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>

#include "board/board.h"
#include "board/files.h"

namespace board {
namespace {

struct StateFile {
  const char* source;
  const char* target;
  const char* lock;
};

constexpr std::array<StateFile, 4> kStateFiles{{
    {"/var/board/online", "/tmp/online_file", "/tmp/online_file"},
    {"/var/board/wan_speed", "/tmp/wan_speed_file", "/tmp/wan_speed_file"},
    {"/var/board/terminals", "/tmp/terminal_list", "/etc/terminal_lock_file"},
    {"/var/board/wifi_clients", "/tmp/wifi_list", "/tmp/wifi_list"},
}};

Descriptor open_for_update(const char* path) {
  return Descriptor(open(path, O_RDWR | O_CREAT | O_CLOEXEC, 0644));
}

void refresh(const StateFile& file) {
  const std::string content = read_file(file.source);
  const Descriptor lock = open_for_update(file.lock);
  if (!lock.valid()) return;
  while (flock(lock.get(), LOCK_EX) < 0) {
    if (errno != EINTR) return;
  }
  const Descriptor target = open_for_update(file.target);
  if (!target.valid() || ftruncate(target.get(), 0) < 0) return;
  write_all(target.get(), content);
}

}  // namespace

void refresh_state_files() {
  for (const StateFile& file : kStateFiles) refresh(file);
}

}  // namespace board
