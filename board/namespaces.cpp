#include "board/namespaces.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <utility>
#include <vector>

#include "board/board.h"
#include "board/files.h"

namespace board {
namespace {

constexpr int kNamespaces = CLONE_NEWNS | CLONE_NEWNET | CLONE_NEWPID | CLONE_NEWUTS | CLONE_NEWIPC;

constexpr std::array kMachineRights{CAP_SYS_TIME, CAP_SYS_MODULE, CAP_SYS_BOOT, CAP_SYS_RAWIO,
                                    CAP_MKNOD};

struct Restriction {
  const char* file;
  char refusing;
  const char* setting;
};

// Switches by which distributions forbid namespaces to ordinary users.
constexpr std::array<Restriction, 3> kRestrictions{{
    {"/proc/sys/kernel/unprivileged_userns_clone", '0',
     "sysctl kernel.unprivileged_userns_clone=1"},
    {"/proc/sys/kernel/apparmor_restrict_unprivileged_userns", '1',
     "sysctl kernel.apparmor_restrict_unprivileged_userns=0"},
    {"/proc/sys/user/max_user_namespaces", '0', "sysctl user.max_user_namespaces=10000"},
}};

void write_map(const char* file, const std::string& text) {
  try {
    write_file(file, text);
  } catch (const std::runtime_error&) {
    throw std::runtime_error(explain_refusal(std::string("write ") + file, errno));
  }
}

}  // namespace

std::string explain_refusal(const std::string& call, int error_number) {
  std::string text = call + ": " + std::strerror(error_number) + "\n";
  if (error_number != EPERM && error_number != EACCES && error_number != ENOSPC &&
      error_number != EINVAL && error_number != ENOSYS) {
    return text;
  }
  text += "The virtual router needs mount, network, process, UTS and IPC namespaces of its own.\n";
  for (const Restriction& restriction : kRestrictions) {
    const std::string value = read_file(restriction.file);
    if (value.size() == 2 && value.front() == restriction.refusing) {
      return text + "This machine forbids them; its administrator can allow them with: " +
             restriction.setting + "\n";
    }
  }
  if (geteuid() == 0) {
    return text +
           "This process is root without CAP_SYS_ADMIN, or a filter of its container refuses the "
           "call:\nstart the container privileged (--privileged), or with CAP_SYS_ADMIN and "
           "CAP_NET_ADMIN\nand without its seccomp and AppArmor profiles.\n";
  }
  return text +
         "Ordinary users may not make them here: run as root (CAP_SYS_ADMIN), or have the "
         "administrator\nallow unprivileged user namespaces (CONFIG_USER_NS, no seccomp or "
         "AppArmor profile against it).\n";
}

void enter_new_namespaces() {
  const uid_t user = geteuid();
  const gid_t group = getegid();
  const bool is_root = user == 0;
  if (unshare(is_root ? kNamespaces : kNamespaces | CLONE_NEWUSER) < 0) {
    throw std::runtime_error(
        explain_refusal(is_root ? "unshare" : "unshare with a user namespace", errno));
  }
  if (is_root) return;
  // Only this order is allowed: a process that may still drop groups may not map one.
  write_map("/proc/self/setgroups", "deny");
  write_map("/proc/self/uid_map", "0 " + std::to_string(user) + " 1");
  write_map("/proc/self/gid_map", "0 " + std::to_string(group) + " 1");
}

void join_namespaces(int process) {
  const std::string directory = "/proc/" + std::to_string(process) + "/ns/";
  std::vector<Descriptor> namespaces;
  // The user namespace comes first, for it gives the rights to enter the others; the mounts last,
  // for they take this /proc away.
  for (const char* name : {"user", "ipc", "uts", "net", "pid", "mnt"}) {
    const std::string path = directory + name;
    struct stat theirs {};
    struct stat ours {};
    Descriptor descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!descriptor.valid() || fstat(descriptor.get(), &theirs) < 0 ||
        stat((std::string("/proc/self/ns/") + name).c_str(), &ours) < 0) {
      throw system_failure(path);
    }
    // Entering the own user namespace again is not allowed.
    if (theirs.st_ino != ours.st_ino) namespaces.push_back(std::move(descriptor));
  }
  for (const Descriptor& descriptor : namespaces) {
    if (setns(descriptor.get(), 0) < 0) throw system_failure("setns");
  }
  if (chdir("/") < 0) throw system_failure("chdir");
}

void drop_machine_rights() {
  for (const int right : kMachineRights) {
    if (prctl(PR_CAPBSET_DROP, right, 0, 0, 0) < 0) throw system_failure("drop a capability");
  }
  __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
  std::array<__user_cap_data_struct, _LINUX_CAPABILITY_U32S_3> sets{};
  if (syscall(SYS_capget, &header, sets.data()) < 0) throw system_failure("capget");
  for (const int right : kMachineRights) {
    const unsigned keep = ~CAP_TO_MASK(static_cast<unsigned>(right));
    auto& set = sets.at(CAP_TO_INDEX(static_cast<unsigned>(right)));
    set.effective &= keep;
    set.permitted &= keep;
    set.inheritable &= keep;
  }
  if (syscall(SYS_capset, &header, sets.data()) < 0) throw system_failure("capset");
}

}  // namespace board
