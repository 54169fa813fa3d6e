#include <algorithm>
#include <array>
#include <chrono>
#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

#include <platform/easy_uci.h>
#include <platform/uart_at.h>

#include "platform/journal/journal.h"
#include "platform/uart/answer.h"
#include "platform/uart/serial_port.h"

namespace {

using std::chrono::seconds;
using uartat::Clock;

constexpr char kDefaultDevice[] = "/dev/ttyUSB1";
constexpr size_t kDevicePathSize = 256;

// A modem answers from its own memory at once; seconds pass only while it starts or is stuck, and
// a page is waiting.
constexpr seconds kReplyTimeout{3};
// A search for networks takes half a minute and more; a web front end ends a request after 60 s.
constexpr seconds kNetworkReplyTimeout{45};
// Three ordinary time-outs ahead in the queue; behind a search for networks it is not worth
// waiting.
constexpr seconds kTurnTimeout{10};

constexpr std::array<std::string_view, 4> kNetworkCommands = {
    "AT+COPS=", "AT+CGATT=", "AT+CGACT=", "AT+CFUN="};

seconds reply_timeout(std::string_view command) {
  const bool asks_network =
      std::any_of(kNetworkCommands.begin(), kNetworkCommands.end(),
                  [command](std::string_view opening) { return command.starts_with(opening); });
  return asks_network ? kNetworkReplyTimeout : kReplyTimeout;
}

// A carriage return would begin a second command, and the other control characters edit the line,
// end a message text or mean flow control.
bool is_sendable(std::string_view command) {
  return !command.empty() && std::none_of(command.begin(), command.end(), [](char c) {
    return static_cast<unsigned char>(c) < ' ' || c == '\x7f';
  });
}

std::string device() {
  std::array<char, kDevicePathSize> path{};
  const int status = easy_uci_get_option_string("mobile", "global", "port", path.data(),
                                                static_cast<int>(path.size()) - 1);
  return status == 0 && path.front() != '\0' ? path.data() : kDefaultDevice;
}

bool converse(const std::string& command, std::string_view prefix, char* reply) {
  const uartat::SerialPort port(device(), Clock::now() + kTurnTimeout);
  if (!port.ready()) return false;

  const auto deadline = Clock::now() + reply_timeout(command);
  if (!port.send(command + '\r', deadline)) return false;
  journal::note("modem " + command);

  uartat::Answer answer(command, prefix);
  std::array<char, 512> bytes{};
  while (const size_t count = port.receive(bytes, deadline)) {
    if (!answer.take({bytes.data(), count})) continue;
    const std::string_view wanted = uartat::from_prefix(answer.text(), prefix);
    reply[wanted.copy(reply, UART_AT_REPLY_SIZE - 1)] = '\0';
    return true;
  }
  return false;
}

}  // namespace

int get_uart_ATCMD_result(const char* command, const char* prefix, char* reply) {
  if (reply == nullptr) return -1;
  reply[0] = '\0';
  if (command == nullptr || !is_sendable(command)) return -1;
  // Nothing, such as a want of memory, is thrown into a C caller.
  try {
    return converse(command, prefix == nullptr ? "" : prefix, reply) ? 0 : -1;
  } catch (const std::exception&) {
    return -1;
  }
}
