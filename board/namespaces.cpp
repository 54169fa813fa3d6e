#include "board/namespaces.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <stdexcept>
#include <vector>

#include "board/board.h"
#include "board/files.h"
#include "board/init.h"

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

Descriptor open_namespace(int process, const char* name) {
  const std::string path = "/proc/" + std::to_string(process) + "/ns/" + name;
  Descriptor descriptor(open(path.c_str(), O_RDONLY | O_CLOEXEC));
  if (!descriptor.valid()) throw system_failure(path);
  return descriptor;
}

void join(const Descriptor& descriptor) {
  if (setns(descriptor.get(), 0) < 0) throw system_failure("setns");
}

// Entering the own user namespace again is not allowed.
bool is_own_user_namespace(const Descriptor& descriptor) {
  struct stat theirs {};
  struct stat ours {};
  if (fstat(descriptor.get(), &theirs) < 0 || stat("/proc/self/ns/user", &ours) < 0) {
    throw system_failure("user namespace");
  }
  return theirs.st_ino == ours.st_ino;
}

int wait_for(pid_t child) {
  int status = 0;
  while (waitpid(child, &status, 0) < 0) {
    if (errno != EINTR) throw system_failure("waitpid");
  }
  return exit_status(status);
}

// The mounts come last, in a process that the router's /proc knows: sanitizers read there about
// themselves.
int join_and_run(int process, const Descriptor& mounts, const std::function<int()>& inside) {
  std::vector<Descriptor> namespaces;
  for (const char* name : {"ipc", "uts", "net", "pid"}) {
    namespaces.push_back(open_namespace(process, name));
  }
  // First, for it gives the rights to enter the others.
  const Descriptor user = open_namespace(process, "user");
  if (!is_own_user_namespace(user)) join(user);
  for (const Descriptor& descriptor : namespaces) join(descriptor);
  const pid_t child = fork();
  if (child < 0) throw system_failure("fork");
  if (child != 0) return wait_for(child);
  // A sanitizer's thread may share the working directory, which forbids to change the mounts.
  if (unshare(CLONE_FS) < 0) throw system_failure("unshare");
  join(mounts);
  if (chdir("/") < 0) throw system_failure("chdir");
  std::exit(inside());
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

pid_t fork_single_threaded() {
#ifdef __SANITIZE_THREAD__
  // ThreadSanitizer starts a thread in a child it sees forked, and a process with two threads may
  // not enter a user namespace. It does not see this call.
  return static_cast<pid_t>(syscall(SYS_clone, SIGCHLD, 0, 0, 0, 0));
#else
  return fork();
#endif
}

int run_in_namespaces(int process, const std::function<int()>& inside) {
  const Descriptor mounts = open_namespace(process, "mnt");
  const pid_t joiner = fork_single_threaded();
  if (joiner < 0) throw system_failure("fork");
  if (joiner == 0) {
    int status = kCannotBoot;
    try {
      status = join_and_run(process, mounts, inside);
    } catch (const std::exception& failure) {
      (void)std::fprintf(stderr, "Cannot enter the virtual router: %s\n", failure.what());
    }
    std::_Exit(status);
  }
  return wait_for(joiner);
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
