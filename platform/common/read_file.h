#pragma once

#include <optional>
#include <string>

namespace platform {

// The whole content of the regular file `path` (a link is followed), or nothing, with errno set,
// when it is absent (ENOENT), is no regular file (EINVAL) or cannot be read to its end. Never
// waits on what a path may name instead of a file, such as a FIFO.
std::optional<std::string> read_file(const std::string& path);

}  // namespace platform
