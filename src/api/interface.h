// What the kernel knows of a network interface.
#pragma once

#include <optional>
#include <string>

namespace zelto::interface {

// Six upper-case hexadecimal pairs joined by colons.
std::optional<std::string> hardware_address(const char* name);

// IPv4, dotted.
std::optional<std::string> address(const char* name);
std::optional<std::string> netmask(const char* name);

}  // namespace zelto::interface
