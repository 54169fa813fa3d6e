// The router's root directory: busybox, the firmware's files, the host's libraries and programs.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "board/board.h"

namespace board {

// What the root is made of, found out while the host's files are still in sight.
struct Parts {
  std::string rootfs;                            // directory with the firmware's files
  std::string busybox;                           // host path
  std::string shell;                             // host path of the noting shell
  std::string modem;                             // host path of the modem
  std::vector<std::string> applets;              // "usr/bin/awk" ...
  std::map<std::string, std::string> libraries;  // by the name that programs ask for
  std::vector<std::string> programs;             // host paths
  std::vector<HostFile> files;
};

Parts find_parts(const Options& options);

// Builds the root from `parts` and moves the calling process into it, alone in its mount
// namespace and first in its process namespace. Throws with the call that was refused.
void enter_new_root(const Parts& parts);

// Makes all files as just booted, and undoes mounts made since.
void restore_root();

inline constexpr const char* kJournal = "/run/board/journal";
inline constexpr const char* kMessages = "/var/log/messages";
inline constexpr const char* kConsoleLog = "/var/log/console";
inline constexpr const char* kConsole = "/dev/console";
inline constexpr const char* kLogSocket = "/dev/log";

}  // namespace board
