#include "board/root.h"

#include <link.h>
#include <spawn.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <sstream>
#include <stdexcept>

#include "board/board.h"
#include "board/files.h"
#include "board/namespaces.h"

namespace board {
namespace {

namespace fs = std::filesystem;

// The new root is mounted here first. Nothing that goes into it lies below this directory.
const fs::path kStage = "/proc";
// Programs of the host, reached through links that a reset can restore.
const fs::path kPrograms = "/lib/board";
const fs::path kPristine = "/rom";

// Not the firmware's files: never restored.
const std::set<fs::path> kSpared{"/dev", "/proc", "/lib", "/lib64", "/usr/lib", kPristine};

// Directories that no file of the firmware brings along.
constexpr std::array kDirectories{"bin",  "sbin",    "usr/bin", "usr/sbin",  "etc",     "mnt",
                                  "root", "var/log", "var/run", "run/board", "var/lock"};
constexpr std::array kEmptyFiles{"run/board/journal", "var/log/messages", "var/log/console"};

constexpr std::array kDevices{"null", "zero", "full", "random", "urandom", "tty", "net/tun"};

void must_mount(const std::string& source, const fs::path& target, const char* type,
                unsigned long flags, const char* data = nullptr) {
  if (mount(source.c_str(), target.c_str(), type, flags, data) == 0) return;
  const std::string call = "mount " + (type != nullptr ? std::string(type) : source) + " on " +
                           target.string() + " of the router";
  throw std::runtime_error(explain_refusal(call, errno));
}

// A bind mount that keeps the host's file from being written. An unprivileged remount has to keep
// the flags the mount came with.
void bind_read_only(const fs::path& source, const fs::path& target) {
  struct statvfs info {};
  if (statvfs(source.c_str(), &info) < 0) throw system_failure("statvfs " + source.string());
  constexpr std::array<std::array<unsigned long, 2>, 6> kFlags{{{ST_NOSUID, MS_NOSUID},
                                                                {ST_NODEV, MS_NODEV},
                                                                {ST_NOEXEC, MS_NOEXEC},
                                                                {ST_NOATIME, MS_NOATIME},
                                                                {ST_NODIRATIME, MS_NODIRATIME},
                                                                {ST_RELATIME, MS_RELATIME}}};
  unsigned long flags = MS_BIND | MS_REMOUNT | MS_RDONLY;
  for (const auto& [seen, kept] : kFlags) {
    if ((info.f_flag & seen) != 0) flags |= kept;
  }
  must_mount(source, target, nullptr, MS_BIND);
  must_mount(source, target, nullptr, flags);
}

void place(const fs::path& source, const fs::path& target) {
  write_file(target, "");
  bind_read_only(source, target);
}

// What a host program prints; empty when it fails.
std::string output_of(const std::vector<std::string>& arguments) {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) < 0) throw system_failure("pipe");
  const Descriptor reading(ends[0]);
  Descriptor writing(ends[1]);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, writing.get(), STDOUT_FILENO);
  posix_spawn_file_actions_addclose(&actions, reading.get());
  std::vector<char*> argv;
  argv.reserve(arguments.size() + 1);
  for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
  argv.push_back(nullptr);
  pid_t child = 0;
  const int error = posix_spawn(&child, argv[0], &actions, nullptr, argv.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error != 0) return {};
  writing.reset();
  std::string output;
  std::array<char, 4096> block{};
  ssize_t size = 0;
  while ((size = read(reading.get(), block.data(), block.size())) > 0) {
    output.append(block.data(), static_cast<size_t>(size));
  }
  int status = 0;
  if (waitpid(child, &status, 0) < 0 || status != 0) return {};
  return output;
}

using Libraries = std::map<std::string, std::string>;

int add_loaded_library(dl_phdr_info* info, size_t, void* libraries) {
  const fs::path path = info->dlpi_name;
  if (path.is_absolute()) (*static_cast<Libraries*>(libraries))[path.filename()] = path;
  return 0;
}

// Asks the dynamic loader, which this process has among its libraries, what `program` loads.
void add_libraries_of(const std::string& program, Libraries& libraries) {
  // ld-linux and more words on most machines, ld.so.1 on MIPS.
  const auto is_loader = [](const auto& library) {
    return library.first.starts_with("ld-") || library.first.starts_with("ld.");
  };
  const auto loader = std::ranges::find_if(libraries, is_loader);
  if (loader == libraries.end()) return;
  std::istringstream lines(output_of({loader->second, "--list", program}));
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string name;
    std::string arrow;
    std::string path;
    words >> name >> arrow >> path;
    if (arrow == "=>" && path.starts_with('/')) libraries[fs::path(name).filename()] = path;
  }
}

std::string find_busybox() {
  for (const char* path : {"/bin/busybox", "/usr/bin/busybox"}) {
    if (access(path, X_OK) == 0) return path;
  }
  throw std::runtime_error("no /bin/busybox: install the package busybox-static\n");
}

std::string setting(const char* variable, const char* otherwise) {
  const char* value = getenv(variable);
  return value != nullptr && *value != '\0' ? value : otherwise;
}

void make_devices() {
  const fs::path devices = kStage / "dev";
  fs::create_directories(devices / "pts");
  for (const char* name : kDevices) {
    const fs::path source = fs::path("/dev") / name;
    if (!fs::exists(source)) continue;
    write_file(devices / name, "");
    must_mount(source, devices / name, nullptr, MS_BIND);
  }
  must_mount("devpts", devices / "pts", "devpts", MS_NOSUID | MS_NOEXEC,
             "newinstance,ptmxmode=0666,mode=0620");
  fs::create_symlink("pts/ptmx", devices / "ptmx");
  fs::create_symlink("/proc/self/fd", devices / "fd");
}

void make_pristine_files(const Parts& parts) {
  const fs::path pristine = kStage / kPristine.relative_path();
  mirror(parts.rootfs, pristine, {});
  for (const HostFile& file : parts.files) {
    const fs::path place = pristine / fs::path(file.place).relative_path();
    fs::create_directories(place.parent_path());
    fs::copy(file.source, place,
             fs::copy_options::recursive | fs::copy_options::overwrite_existing);
  }
  for (const char* directory : kDirectories) fs::create_directories(pristine / directory);
  for (const char* file : kEmptyFiles) write_file(pristine / file, "");
  fs::create_directory(pristine / "tmp");
  chmod((pristine / "tmp").c_str(), 01777);
  const auto link = [&](const fs::path& name, const std::string& program) {
    const fs::path path = pristine / name;
    if (!fs::exists(fs::symlink_status(path))) fs::create_symlink(kPrograms / program, path);
  };
  link("bin/sh", "board-sh");
  link("bin/sleep", "board-sh");
  link("usr/sbin/modem", "board-modem");
  for (const std::string& applet : parts.applets) link(applet, "busybox");
  for (const fs::path program : parts.programs) {
    link(fs::path("usr/bin") / program.filename(), program.filename());
  }
}

void place_host_files(const Parts& parts) {
  fs::create_directories(kStage / "usr");
  fs::create_symlink("lib", kStage / "lib64");
  fs::create_symlink("../lib", kStage / "usr/lib");
  const fs::path programs = kStage / kPrograms.relative_path();
  place(parts.busybox, programs / "busybox");
  place(parts.shell, programs / "board-sh");
  place(parts.modem, programs / "board-modem");
  for (const fs::path program : parts.programs) place(program, programs / program.filename());
  for (const auto& [name, path] : parts.libraries) place(path, kStage / "lib" / name);
}

// As root of the machine, the settings of its kernel would otherwise be within reach.
void make_proc() {
  const fs::path proc = kStage / "proc";
  fs::create_directory(proc);
  must_mount("proc", proc, "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC);
  const fs::path settings = proc / "sys";
  must_mount(settings, settings, nullptr, MS_BIND);
  must_mount(settings / "net", settings / "net", nullptr, MS_BIND);
  must_mount(settings, settings, nullptr,
             MS_BIND | MS_REMOUNT | MS_RDONLY | MS_NOSUID | MS_NODEV | MS_NOEXEC);
  if (fs::exists(proc / "sysrq-trigger")) {
    must_mount("/dev/null", proc / "sysrq-trigger", nullptr, MS_BIND);
  }
}

// In the list of mounts a blank in a path stands as \040, and some others likewise.
std::string without_escapes(const std::string& text) {
  constexpr size_t kDigits = 3;
  std::string plain;
  for (size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\\' || i + kDigits >= text.size()) {
      plain += text[i];
      continue;
    }
    plain += static_cast<char>(std::stoi(text.substr(i + 1, kDigits), nullptr, 8));
    i += kDigits;
  }
  return plain;
}

std::set<std::string> mount_points() {
  std::set<std::string> points;
  std::istringstream lines(read_file("/proc/self/mounts"));
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string source;
    std::string point;
    words >> source >> point;
    points.insert(without_escapes(point));
  }
  return points;
}

// Whether the router came with this mount.
bool is_own_mount(const std::string& point) {
  if (point == "/") return true;
  return std::ranges::any_of(std::array{"/dev/", "/proc", "/lib/"},
                             [&](const char* place) { return point.starts_with(place); });
}

}  // namespace

Parts find_parts(const Options& options) {
  Parts parts;
  parts.rootfs = setting("ZELTO_BOARD_ROOTFS", BOARD_ROOTFS);
  parts.shell = setting("ZELTO_BOARD_SH", BOARD_SH);
  parts.modem = setting("ZELTO_BOARD_MODEM", BOARD_MODEM);
  parts.busybox = find_busybox();
  for (const std::string& needed : {parts.rootfs, parts.shell, parts.modem}) {
    if (!fs::exists(needed)) throw std::runtime_error("missing: " + needed + "\n");
  }
  std::istringstream applets(output_of({parts.busybox, "--list-full"}));
  for (std::string applet; std::getline(applets, applet);) parts.applets.push_back(applet);
  if (parts.applets.empty()) throw std::runtime_error(parts.busybox + " does not run\n");
  dl_iterate_phdr(add_loaded_library, &parts.libraries);
  parts.files = options.files;
  for (const HostFile& file : parts.files) {
    if (!fs::exists(file.source)) throw std::runtime_error("missing: " + file.source + "\n");
  }
  parts.programs = options.programs;
  for (const std::string& program : parts.programs) {
    if (access(program.c_str(), X_OK) < 0) throw std::runtime_error("no program " + program + "\n");
    add_libraries_of(program, parts.libraries);
  }
  return parts;
}

void enter_new_root(const Parts& parts) {
  must_mount("none", "/", nullptr, MS_REC | MS_PRIVATE);
  must_mount("tmpfs", kStage, "tmpfs", MS_NOSUID, "mode=0755");
  make_devices();
  make_proc();
  place_host_files(parts);
  make_pristine_files(parts);
  // The old root ends up on top of the new one, from where it can be taken away.
  if (chdir(kStage.c_str()) < 0 || syscall(SYS_pivot_root, ".", ".") < 0 ||
      umount2(".", MNT_DETACH) < 0 || chdir("/") < 0) {
    throw std::runtime_error(explain_refusal("pivot_root", errno));
  }
  mirror(kPristine, "/", kSpared);
}

void restore_root() {
  for (const std::string& point : mount_points()) {
    if (!is_own_mount(point)) umount2(point.c_str(), MNT_DETACH);
  }
  mirror(kPristine, "/", kSpared);
}

}  // namespace board
