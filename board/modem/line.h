// The modem's end of a serial line.
#pragma once

#include <string>
#include <string_view>

#include "board/files.h"

namespace board::modem {

// A pseudo-terminal that a device name leads to.
class Line {
 public:
  // Replaces what the device name led to before.
  explicit Line(std::string device);

  // Loses the line to whoever holds its other end; the device name leads to a new one.
  void replug();

  // What comes next; waits for it.
  char receive();

  // Drops what nobody takes off the line for a second.
  void send(std::string_view bytes);

 private:
  std::string device_;
  Descriptor master_;
  Descriptor slave_;
};

}  // namespace board::modem
