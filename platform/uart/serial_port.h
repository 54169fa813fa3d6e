#pragma once

#include <chrono>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "platform/common/descriptor.h"

namespace uartat {

using Clock = std::chrono::steady_clock;

// A serial line, held by one caller at a time among all threads and processes.
class SerialPort {
 public:
  // Opens the device, waits for its lock until `lock_deadline`, sets it up and throws away what
  // the modem has sent unread.
  SerialPort(const std::string& device, Clock::time_point lock_deadline);
  ~SerialPort();
  SerialPort(const SerialPort&) = delete;
  SerialPort& operator=(const SerialPort&) = delete;

  // False when the device is missing, no serial line, or was not free in time.
  bool ready() const { return static_cast<bool>(line_); }

  // Sends all of `bytes`; false when the deadline passes or the device is lost.
  bool send(std::string_view bytes, Clock::time_point deadline) const;

  // Waits for the next bytes and returns how many were put into `buffer`; 0 when the deadline
  // passes or the device is lost.
  size_t receive(std::span<char> buffer, Clock::time_point deadline) const;

 private:
  platform::Descriptor line_;
};

}  // namespace uartat
