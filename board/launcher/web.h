// The router's web page, and the way to it from outside.
#pragma once

#include <filesystem>
#include <vector>

#include "board/board.h"
#include "board/files.h"

namespace launcher {

inline constexpr const char* kGatewayProgram = "zelto-cgi";

// What the router's web server serves, to copy in at boot. Throws when something is missing.
std::vector<board::HostFile> web_files(const std::filesystem::path& web,
                                       const std::filesystem::path& catalogue);

// Inside the router: serves the page to connections from `listening`, a socket made outside, and
// prints what requests do as it happens, until a signal ends it. A byte goes to `ready` once the
// page is there.
int serve_web(const board::Descriptor& listening, const board::Descriptor& ready);

}  // namespace launcher
