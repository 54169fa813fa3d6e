// Whether there is a disk, what folders it has, and its safe removal.

#include <cstddef>
#include <string>
#include <vector>

#include <zelto/storage.h>

#include "api/envelope.h"
#include "api/shell.h"
#include "storage/disks.h"

namespace zelto {
namespace {

constexpr std::size_t kMountsLength = 127;

void add_state(const Request& /*request*/, Reply& reply) {
  const auto mounts = shell::capture("cat /proc/mounts | grep /mnt/", kMountsLength);
  reply.text("usbenable", mounts && !mounts->text.empty() ? "enable" : "disable");
}

std::string path_of(const std::string& disk, const std::string& folder) {
  return disks::kMountPoints + disk + "/" + folder + "/";
}

void add_folders(const Request& /*request*/, Reply& reply) {
  auto list = reply.list("list");
  for (const auto& disk : disks::names().value_or(std::vector<std::string>())) {
    for (const auto& folder : disks::folders(disk)) {
      list.add().text("usbpath", path_of(disk, folder));
    }
  }
}

void eject(const Request& /*request*/, Reply& reply) {
  shell::run("/etc/init.d/samba stop 2>/dev/null &");
  shell::run("/etc/init.d/vsftpd stop 2>/dev/null &");
  shell::run("umount /mnt/*;rm -rf /mnt/*");
  reply.result(kDone);
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetUsbEnable(const char* request, char* out) {
  return answer({.type = "getusbenable"}, request, out, add_state);
}

int bs_GetUsbAllPath(const char* request, char* out) {
  return answer({.type = "getusballpath"}, request, out, add_folders);
}

int bs_UmountUsb(const char* request, char* out) {
  return answer({.type = "umountusb"}, request, out, eject);
}
