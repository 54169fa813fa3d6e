// The command line of zelto-board.
#pragma once

#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace launcher {

extern const std::string_view kHelpText;

enum class Task { kServeWeb, kStayUp, kAsk, kShell, kHelp };

// What the router is like when it has booted.
struct RouterSettings {
  std::string mode;   // of operation; empty as the factory has it
  std::string modem;  // a profile's name; empty for none
  int usb_disks = 0;
};

struct Arguments {
  Task task = Task::kServeWeb;
  RouterSettings router;
  bool sets_router = false;  // whether any of its settings was named
  uint16_t port = 8080;
  std::filesystem::path programs;  // where zelto, uci and zelto-cgi are
  std::filesystem::path web;       // the web page's files
  std::filesystem::path catalogue;
  std::vector<std::string> requests;
};

class UsageError : public std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Throws UsageError.
Arguments parse(const std::vector<std::string>& words);

}  // namespace launcher
