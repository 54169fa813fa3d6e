// The state files that the firmware's daemons keep under /tmp, as this router's world is described
// under /var/board.
#pragma once

namespace board {

// Writes all of them once, each under the lock that its readers take.
void refresh_state_files();

}  // namespace board
