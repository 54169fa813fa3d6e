// Live facts of the uplink, as texts. The exported functions of zelto/network.h are their C form.
#pragma once

#include <optional>
#include <string>

namespace zelto::uplink {

// The interface that carries the uplink now; empty in an unknown operation mode.
std::string interface_name();

// The gateway behind an interface: nothing when asking failed, empty when there is none.
std::optional<std::string> gateway(const std::string& interface);

// The n-th resolver in use, from 1, or the last one when there are fewer; nothing when the list
// cannot be read, empty when it holds none.
std::optional<std::string> resolver(int n);

}  // namespace zelto::uplink
