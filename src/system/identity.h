// What the router says it is.
#pragma once

#include <string>

namespace zelto::identity {

// An entry of the board's own store, `fallback` when it has none.
std::string board_entry(const char* name, const char* fallback);

// The board's model.
std::string model();

std::string firmware_version();  // empty when it cannot be read

std::string cloud_key();  // empty when it cannot be read

}  // namespace zelto::identity
