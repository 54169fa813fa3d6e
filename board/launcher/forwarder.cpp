#include "board/launcher/forwarder.h"

#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

#include <cerrno>
#include <utility>
#include <vector>

namespace launcher {
namespace {

using board::Descriptor;

constexpr int kBacklog = 128;
// Those beyond it wait in the backlog.
constexpr size_t kMostConnections = 200;
// A slow receiver makes its sender wait instead of filling memory.
constexpr size_t kMostWaiting = 65536;
constexpr int kSocketType = SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK;

sockaddr_in loopback(uint16_t port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  return address;
}

bool would_block() {
  return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

}  // namespace

Descriptor listen_on_loopback(uint16_t port) {
  Descriptor socket(::socket(AF_INET, kSocketType, 0));
  const int yes = 1;
  const sockaddr_in address = loopback(port);
  if (!socket.valid() || setsockopt(socket.get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes) < 0 ||
      bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) < 0 ||
      listen(socket.get(), kBacklog) < 0) {
    throw board::system_failure("port " + std::to_string(port) + " of 127.0.0.1");
  }
  return socket;
}

uint16_t port_of(const Descriptor& socket) {
  sockaddr_in address{};
  socklen_t size = sizeof address;
  if (getsockname(socket.get(), reinterpret_cast<sockaddr*>(&address), &size) < 0) {
    throw board::system_failure("getsockname");
  }
  return ntohs(address.sin_port);
}

Descriptor connect_on_loopback(uint16_t port) {
  Descriptor socket(::socket(AF_INET, kSocketType, 0));
  const sockaddr_in address = loopback(port);
  if (socket.valid() &&
      connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) < 0 &&
      errno != EINPROGRESS) {
    socket.reset();
  }
  return socket;
}

Forwarder::Forwarder(const Descriptor& listening, uint16_t port)
    : listening_(listening), port_(port) {}

void Forwarder::step(std::chrono::milliseconds limit) {
  std::vector<pollfd> events;
  for (const Connection& connection : connections_) {
    for (size_t end = 0; end < connection.ends.size(); ++end) {
      const short wanted = events_of(connection, end);
      // A hang-up is reported unasked for, also when it is not its turn yet.
      events.push_back({wanted != 0 ? connection.ends.at(end).get() : -1, wanted, 0});
    }
  }
  const bool accepting = connections_.size() < kMostConnections;
  events.push_back({accepting ? listening_.get() : -1, POLLIN, 0});
  if (poll(events.data(), events.size(), static_cast<int>(limit.count())) < 0) {
    if (errno == EINTR) return;
    throw board::system_failure("poll");
  }
  auto event = events.begin();
  for (Connection& connection : connections_) {
    for (size_t end = 0; end < connection.ends.size(); ++end, ++event) {
      if ((event->revents & (POLLIN | POLLHUP | POLLERR)) != 0) receive(connection, end);
      if ((event->revents & (POLLOUT | POLLERR)) != 0) send(connection, 1 - end);
    }
  }
  connections_.remove_if(is_over);
  if (event->revents != 0) accept_all();
}

short Forwarder::events_of(const Connection& connection, size_t end) {
  const Flow& out_of = connection.flows.at(end);
  const Flow& into = connection.flows.at(1 - end);
  short events = 0;
  if (!out_of.ended && out_of.waiting.size() < kMostWaiting) events |= POLLIN;
  if (!into.waiting.empty()) events |= POLLOUT;
  return events;
}

void Forwarder::receive(Connection& connection, size_t from) {
  Flow& flow = connection.flows.at(from);
  if (flow.ended || flow.waiting.size() >= kMostWaiting) return;
  std::array<char, kMostWaiting> block{};
  const ssize_t size = recv(connection.ends.at(from).get(), block.data(), block.size(), 0);
  if (size < 0 && would_block()) return;
  if (size < 0) {
    connection.broken = true;
    return;
  }
  flow.ended = size == 0;
  flow.waiting.append(block.data(), static_cast<size_t>(size));
  send(connection, from);
}

void Forwarder::send(Connection& connection, size_t from) {
  Flow& flow = connection.flows.at(from);
  const int receiver = connection.ends.at(1 - from).get();
  if (!flow.waiting.empty()) {
    const ssize_t size = ::send(receiver, flow.waiting.data(), flow.waiting.size(), MSG_NOSIGNAL);
    if (size < 0 && !would_block()) connection.broken = true;
    if (size > 0) flow.waiting.erase(0, static_cast<size_t>(size));
  }
  if (flow.ended && flow.waiting.empty() && !flow.passed) {
    flow.passed = true;
    if (shutdown(receiver, SHUT_WR) < 0) connection.broken = true;
  }
}

bool Forwarder::is_over(const Connection& connection) {
  return connection.broken || (connection.flows[0].passed && connection.flows[1].passed);
}

void Forwarder::accept_all() {
  while (connections_.size() < kMostConnections) {
    // cppcheck-suppress nullPointer ; nobody asks for the address
    Descriptor outside(accept4(listening_.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!outside.valid()) return;
    Connection connection;
    connection.ends = {std::move(outside), connect_on_loopback(port_)};
    if (connection.ends[1].valid()) connections_.push_back(std::move(connection));
  }
}

}  // namespace launcher
