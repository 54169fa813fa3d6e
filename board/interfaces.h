// The router's network interfaces. Kernel bridges without ports stand for all of them: unlike a
// veth pair they are one interface each, and unlike dummy interfaces every kernel has them.
#pragma once

namespace board {

// The interfaces of a router just booted; call once in a fresh network namespace.
void create_interfaces();

// Brings the interfaces back to what create_interfaces() left.
void restore_interfaces();

}  // namespace board
