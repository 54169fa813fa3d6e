// The devices attached to a router in use.
#pragma once

namespace board {

// Lets a second pass in /var/board/terminals, /var/board/wifi_clients and /var/board/wan_speed:
// devices move traffic, some join and leave, and all have addresses in the router's LAN. Who edits
// the list of terminals by hand finds his changes kept.
void let_devices_live();

}  // namespace board
