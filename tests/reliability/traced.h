// Runs an action in a process of its own in which system calls are counted and one goes wrong.
#pragma once

#include <functional>
#include <limits>
#include <set>
#include <string>

// NOLINTNEXTLINE(bugprone-reserved-identifier,readability-identifier-naming): the C library's name
struct __ptrace_syscall_info;

namespace reliability {

struct Harm {
  const char* name;
  bool (*counts)(const __ptrace_syscall_info& call);  // which calls are in danger
  int error = 0;          // what the call fails with; 0: the process is killed before it
  bool keeps_on = false;  // all later ones that count fail as well
  bool follows = false;   // the commands that the process runs count and are killed with it
};

// The process is killed at any call, or everything on the router at once; a disk is full, once or
// for long; the process can open no more.
extern const Harm kKill;
extern const Harm kPowerCut;
extern const Harm kFull;
extern const Harm kStaysFull;
extern const Harm kNoDescriptor;
extern const Harm kNoDescriptors;

struct Run {
  int calls = 0;                       // that counted
  bool acknowledged = false;           // the action said that it was done
  std::set<std::string> flushed = {};  // what the disk was told to hold
};

inline constexpr int kNone = std::numeric_limits<int>::max();

// Harms the call of number `at`, counted from 0; none when there are fewer.
Run run_harmed(const std::function<bool()>& action, const Harm& harm, int at);

}  // namespace reliability
