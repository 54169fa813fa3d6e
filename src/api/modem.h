// The modem, one AT command at a time.
#pragma once

#include <string>

namespace zelto::modem {

// The answer from the first `prefix` on, or all of it for a null prefix. Empty when the modem does
// not answer in time, or not so.
std::string ask(const char* command, const char* prefix);

}  // namespace zelto::modem
