// What sets the router apart from the machine: its own mounts, network, processes, host name and
// IPC, and none of the rights that reach beyond them.
#pragma once

#include <sys/types.h>

#include <functional>
#include <string>

namespace board {

// Moves the calling process, which has one thread, into namespaces of its own; the process ids
// count from its next child on. Throws with what is missing, in words for the machine's
// administrator.
void enter_new_namespaces();

// As fork(), for a child that enters namespaces: it has one thread whatever a sanitizer does.
pid_t fork_single_threaded();

// Runs `inside` in a process that shares the namespaces of `process`; returns its exit status.
int run_in_namespaces(int process, const std::function<int()>& inside);

// The failure of `call` in setting up the router, with what usually stands behind it.
std::string explain_refusal(const std::string& call, int error_number);

// Gives up the rights that a namespace does not confine: clock, kernel modules, devices, reboot.
void drop_machine_rights();

}  // namespace board
