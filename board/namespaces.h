// What sets the router apart from the machine: its own mounts, network, processes, host name and
// IPC, and none of the rights that reach beyond them.
#pragma once

#include <string>

namespace board {

// Moves the calling process, which has one thread, into namespaces of its own; the process ids
// count from its next child on. Throws with what is missing, in words for the machine's
// administrator.
void enter_new_namespaces();

// Moves the calling process, which has one thread, into the namespaces of `process`; its process
// namespace holds from the next child on.
void join_namespaces(int process);

// The failure of `call` in setting up the router, with what usually stands behind it.
std::string explain_refusal(const std::string& call, int error_number);

// Gives up the rights that a namespace does not confine: clock, kernel modules, devices, reboot.
void drop_machine_rights();

}  // namespace board
