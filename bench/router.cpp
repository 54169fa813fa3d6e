#include "router.h"

#include <cstdlib>

#include "board/board.h"

namespace zelto_bench {
namespace {

constexpr int kFourDigits = 1000;  // makes all numbers as long

std::string section(int number, const std::string& name) {
  return "\nconfig redirect 'redirect" + std::to_string(number) +
         "'\n\toption target 'DNAT'\n\toption src 'wan'\n\toption dest 'lan'\n"
         "\toption src_dport '8080'\n\toption dest_port '80'\n\toption name '" +
         name + "'\n\toption proto 'tcp'\n\toption dest_ip '192.168.10.2'\n";
}

}  // namespace

void reset() {
  board::reset();
  board::quiet({"ln", "-sf", "/bin/busybox", "/bin/sh"});
  setenv("ZELTO_BOARD_FIRMWARE", "1", 1);
}

std::string device(int number) {
  return "02:AA:00:00:" + std::to_string(number + kFourDigits);
}

void fill_lists(int entries) {
  std::string terminals;
  std::string parental;
  std::string limits;
  std::string forwarding;
  std::string sections = board::read_file("/etc/config/firewall");
  std::string blacklist;
  for (int i = 0; i < entries; ++i) {
    const auto mac = device(i);
    const auto name = "bmFtZ" + std::to_string(i + kFourDigits) + "==";
    terminals += "192.168.10.2 " + mac + " 59 1 2 ra0 kitchen tablet 3 4\n";
    parental.append(name).append(" tablet ").append(mac).append(" 16:00-20:00 12345\n");
    limits += mac + " 192.168.10.2 100 800 " + std::to_string(i) + "\n";
    forwarding += name + " 192.168.10.2;80 8080 TCP\n";
    sections += section(i, name);
    if (i < kFullBlacklist) blacklist += mac + " tablet\n";
  }
  board::write_file("/tmp/terminal_list", terminals);
  board::write_file("/etc/parental_list", parental);
  board::write_file("/etc/qos_limit_list", limits);
  board::write_file("/etc/port_forward_list", forwarding);
  board::write_file("/etc/config/firewall", sections);
  board::write_file("/etc/blacklist", blacklist);
}

}  // namespace zelto_bench
