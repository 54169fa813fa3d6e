#include "platform/uart/serial_port.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <thread>

namespace uartat {
namespace {

using std::chrono::milliseconds;

// How often a caller looks whether the device is free: little against the second or so that a
// command takes, and nothing to the processor.
constexpr milliseconds kLockPoll{20};

// What has come unread follows closely when it is read at last.
constexpr milliseconds kQuiet{5};
// A modem that never stops talking is asked all the same.
constexpr milliseconds kLongestDrain{200};

// The lock is on the device node itself: all paths to it lead to the same lock, nobody replaces
// it, and the node that a replugged modem gets instead begins free.
bool lock(int line, Clock::time_point deadline) {
  while (::flock(line, LOCK_EX | LOCK_NB) != 0) {
    if (errno != EWOULDBLOCK && errno != EINTR) return false;
    if (Clock::now() >= deadline) return false;
    std::this_thread::sleep_for(kLockPoll);
  }
  return true;
}

// Nothing here waits for output to drain, as a modem that has stopped would keep it waiting.
bool set_up(int line) {
  termios settings{};
  if (::tcgetattr(line, &settings) != 0) return false;
  ::cfmakeraw(&settings);
  if (::cfsetspeed(&settings, B115200) != 0) return false;
  // No hang-up at the end: dropping DTR between commands resets some modems.
  settings.c_cflag &= ~static_cast<tcflag_t>(HUPCL | CSTOPB | CRTSCTS);
  settings.c_cflag |= CLOCAL | CREAD;
  // With at least one byte to read, 0 from read() means a line that is gone and nothing else.
  settings.c_cc[VMIN] = 1;
  settings.c_cc[VTIME] = 0;
  return ::tcsetattr(line, TCSANOW, &settings) == 0 && ::tcflush(line, TCOFLUSH) == 0;
}

// Reads what has come unread and forgets it. A flush would not do: it empties the terminal's own
// buffer, which then fills again from the driver's.
void drop_unread(int line) {
  const auto deadline = Clock::now() + kLongestDrain;
  const auto is_unread = [line](milliseconds patience) {
    pollfd waited{.fd = line, .events = POLLIN, .revents = 0};
    return ::poll(&waited, 1, static_cast<int>(patience.count())) > 0;
  };
  std::array<char, 4096> forgotten{};
  for (auto patience = milliseconds(0); is_unread(patience) && Clock::now() < deadline;
       patience = kQuiet) {
    if (::read(line, forgotten.data(), forgotten.size()) <= 0) return;
  }
}

// Waits until `line` is ready for `event`; false when the deadline passes or poll() fails. A line
// that is gone counts as ready: reading or writing it tells.
bool wait_until_ready(int line, short event, Clock::time_point deadline) {
  while (true) {
    const auto left = std::chrono::ceil<milliseconds>(deadline - Clock::now());
    if (left.count() <= 0) return false;
    pollfd waited{.fd = line, .events = event, .revents = 0};
    const int count = ::poll(&waited, 1, static_cast<int>(left.count()));
    if (count > 0) return true;
    if (count < 0 && errno != EINTR) return false;
  }
}

bool is_transient(int error) {
  return error == EINTR || error == EAGAIN;
}

}  // namespace

SerialPort::SerialPort(const std::string& device, Clock::time_point lock_deadline)
    : line_(::open(device.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
  if (!line_) return;
  if (::isatty(line_.get()) == 0 || !lock(line_.get(), lock_deadline)) {
    line_.reset();
  } else if (!set_up(line_.get())) {
    ::flock(line_.get(), LOCK_UN);
    line_.reset();
  } else {
    drop_unread(line_.get());
  }
}

// What could not be sent is dropped, as closing would wait for it. Unlocked by name, not by
// closing alone: a child forked meanwhile by another thread shares the descriptor for a while.
SerialPort::~SerialPort() {
  if (!line_) return;
  ::tcflush(line_.get(), TCOFLUSH);
  ::flock(line_.get(), LOCK_UN);
}

bool SerialPort::send(std::string_view bytes, Clock::time_point deadline) const {
  while (!bytes.empty()) {
    if (!wait_until_ready(line_.get(), POLLOUT, deadline)) return false;
    const ssize_t count = ::write(line_.get(), bytes.data(), bytes.size());
    if (count > 0) {
      bytes.remove_prefix(static_cast<size_t>(count));
    } else if (count == 0 || !is_transient(errno)) {
      return false;
    }
  }
  return true;
}

size_t SerialPort::receive(std::span<char> buffer, Clock::time_point deadline) const {
  while (wait_until_ready(line_.get(), POLLIN, deadline)) {
    const ssize_t count = ::read(line_.get(), buffer.data(), buffer.size());
    if (count >= 0) return static_cast<size_t>(count);
    if (!is_transient(errno)) return 0;
  }
  return 0;
}

}  // namespace uartat
