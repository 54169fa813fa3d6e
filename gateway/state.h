// What the gateway remembers between requests: small files in a folder that is its own.
#pragma once

#include <cstdint>
#include <string>

#include "platform/common/replace_file.h"

namespace gateway {

inline constexpr const char* kStateFolder = "/tmp/zelto-gateway";

// Seconds since the router started. They go on whatever happens to the time of day, which on a
// router without a battery jumps years once the Internet is there.
std::int64_t seconds_now();

// Keeps other requests out while the state changes. Creates the folder when it is missing. Throws a
// refusal when it cannot be had, or when the folder belongs to, or can be read by, anyone else.
class StateLock {
 public:
  StateLock();

 private:
  platform::FileLock lock_;
};

// Whether the folder is there and nobody else's. Who reads without the lock asks first.
bool state_is_own();

std::string state_path(const std::string& name);

// Puts `content` in the place of a file of the folder; throws a refusal when that fails, with the
// old one untouched.
void replace_state(const StateLock& lock, const std::string& name, const std::string& content);

}  // namespace gateway
