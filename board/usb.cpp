#include "board/usb.h"

#include <sys/mount.h>

#include <array>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "board/board.h"
#include "board/files.h"

namespace board {
namespace {

namespace fs = std::filesystem;

const fs::path kMounts = "/mnt";
constexpr unsigned long kMountFlags = MS_NOSUID | MS_NODEV | MS_NOEXEC;
// Small enough to be filled by who wants to see what a full disk does.
constexpr const char* kMountOptions = "mode=0755,size=8m";

struct Disk {
  const char* name;
  std::array<const char*, 4> folders;  // what people call them, awkward for a shell
};
constexpr std::array<Disk, 2> kDisks{{
    {"sda1", {"Music", "Family photos", "Mum's films", R"(The "best" of $2)"}},
    {"sdb1", {"Backup", "Backup/2024", "Scans; old", ".hidden"}},
}};

fs::path mount_point(const std::string& name) {
  if (name.empty() || name == "." || name == ".." || name.find('/') != std::string::npos) {
    throw std::runtime_error("not a disk's name: " + name);
  }
  return kMounts / name;
}

}  // namespace

void add_usb_disk(const std::string& name, const std::vector<std::string>& folders) {
  const fs::path place = mount_point(name);
  fs::create_directories(place);
  if (mount(("/dev/" + name).c_str(), place.c_str(), "tmpfs", kMountFlags, kMountOptions) < 0) {
    throw system_failure("mount " + place.string());
  }
  for (const std::string& folder : folders) fs::create_directories(place / folder);
}

void remove_usb_disk(const std::string& name) {
  const fs::path place = mount_point(name);
  if (umount2(place.c_str(), MNT_DETACH) < 0) throw system_failure("umount " + place.string());
  fs::remove(place);
}

void plug_usb_disks(int count) {
  if (count < 0 || count > static_cast<int>(kDisks.size())) {
    throw std::runtime_error("no such number of USB disks: " + std::to_string(count));
  }
  for (int i = 0; i < count; ++i) {
    const Disk& disk = kDisks.at(static_cast<size_t>(i));
    add_usb_disk(disk.name, {disk.folders.begin(), disk.folders.end()});
  }
}

}  // namespace board
