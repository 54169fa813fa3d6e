// Carries TCP connections from outside the router into it.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <list>
#include <string>

#include "board/files.h"

namespace launcher {

// A listening socket of the network namespace that this process is in, on the loopback only.
// Throws when the port is taken. Port 0 stands for any that is free.
board::Descriptor listen_on_loopback(uint16_t port);
uint16_t port_of(const board::Descriptor& socket);

// A socket that is, or soon will be, connected to a port of the loopback here: an error shows when
// it is used.
board::Descriptor connect_on_loopback(uint16_t port);

// A socket stays in the namespace it was made in. So one that listens outside, inherited by a
// process inside, gives connections from outside to who connects inside.
class Forwarder {
 public:
  // `listening` outlives this; `port` is the one inside.
  Forwarder(const board::Descriptor& listening, uint16_t port);

  // Carries what there is to carry; waits for something at most `limit`.
  void step(std::chrono::milliseconds limit);

 private:
  // What flows from one socket to another: the end of the one is passed on when all is written.
  struct Flow {
    std::string waiting;
    bool ended = false;   // nothing more comes
    bool passed = false;  // and the receiver knows
  };
  struct Connection {
    std::array<board::Descriptor, 2> ends;  // outside, inside
    std::array<Flow, 2> flows;              // what comes from each
    bool broken = false;
  };

  static short events_of(const Connection& connection, size_t end);
  static void receive(Connection& connection, size_t from);
  static void send(Connection& connection, size_t from);
  static bool is_over(const Connection& connection);
  void accept_all();

  const board::Descriptor& listening_;
  uint16_t port_;
  std::list<Connection> connections_;
};

}  // namespace launcher
