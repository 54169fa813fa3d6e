// The modes of operation that a router can begin in.
#pragma once

#include <string>
#include <vector>

namespace launcher {

// As system.route.operationmode names them.
std::vector<std::string> operation_modes();

// Takes the router that this runs in to a mode, as somebody who set it up with the web page's
// wizard would, and waits until it is there. Throws when it does not get there.
void begin_in_mode(const std::string& name);

}  // namespace launcher
