#include "board/devices.h"

#include <arpa/inet.h>
#include <ifaddrs.h>
#include <netinet/in.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "board/board.h"

namespace board {
namespace {

constexpr const char* kTerminals = "/var/board/terminals";
constexpr const char* kWifiClients = "/var/board/wifi_clients";
constexpr const char* kWanSpeed = "/var/board/wan_speed";
constexpr const char* kLanInterface = "br-lan";
constexpr const char* kWired = "eth0";

// A line of the terminal list.
struct Device {
  std::string address;
  std::string mac;
  long seconds;     // since it joined
  long down_speed;  // in KB/s, as the next
  long up_speed;
  std::string interface;
  std::string name;
  long long total_down;  // in bytes, as the next
  long long total_up;
};

struct Visitor {
  const char* address;  // its part within the LAN
  const char* mac;
  const char* interface;
  const char* name;
  int comes;  // second of the minute and a half in which it comes, as the next
  int goes;
};
constexpr int kRound = 90;
constexpr std::array<Visitor, 3> kVisitors{{
    {"110", "02:AA:00:00:00:0A", "ra0", "visitor-phone", 5, 60},
    {"111", "02:AA:00:00:00:0B", "eth0", "printer", 15, 80},
    {"112", "02:AA:00:00:00:0C", "rai0", "laptop", 35, 70},
}};

std::vector<Device> read_devices() {
  std::vector<Device> devices;
  std::istringstream lines(read_file(kTerminals));
  for (std::string line; std::getline(lines, line);) {
    std::istringstream fields(line);
    Device device{};
    fields >> device.address >> device.mac >> device.seconds >> device.down_speed >>
        device.up_speed >> device.interface >> device.name >> device.total_down >> device.total_up;
    if (fields) devices.push_back(device);
  }
  return devices;
}

void write_devices(const std::vector<Device>& devices) {
  std::ostringstream terminals;
  std::ostringstream stations;
  long down_speed = 0;
  long up_speed = 0;
  for (const Device& device : devices) {
    terminals << device.address << ' ' << device.mac << ' ' << device.seconds << ' '
              << device.down_speed << ' ' << device.up_speed << ' ' << device.interface << ' '
              << device.name << ' ' << device.total_down << ' ' << device.total_up << '\n';
    if (device.interface != kWired) {
      stations << device.mac << ' ' << device.interface << ' ' << device.name << '\n';
    }
    down_speed += device.down_speed;
    up_speed += device.up_speed;
  }
  write_file(kTerminals, terminals.str());
  write_file(kWifiClients, stations.str());
  write_file(kWanSpeed, std::to_string(down_speed) + " " + std::to_string(up_speed) + "\n");
}

// The first three parts of the router's address in the LAN with the dot behind them.
std::optional<std::string> lan_prefix() {
  ifaddrs* list = nullptr;
  if (getifaddrs(&list) < 0) return {};
  std::optional<std::string> prefix;
  for (const ifaddrs* item = list; item != nullptr; item = item->ifa_next) {
    if (item->ifa_addr == nullptr || item->ifa_addr->sa_family != AF_INET) continue;
    if (std::strcmp(item->ifa_name, kLanInterface) != 0) continue;
    sockaddr_in address{};
    std::memcpy(&address, item->ifa_addr, sizeof address);
    std::array<char, INET_ADDRSTRLEN> text{};
    inet_ntop(AF_INET, &address.sin_addr, text.data(), text.size());
    const std::string whole = text.data();
    prefix = whole.substr(0, whole.rfind('.') + 1);
  }
  freeifaddrs(list);
  return prefix;
}

void let_visitors_come_and_go(std::vector<Device>& devices) {
  static int second = 0;
  second = (second + 1) % kRound;
  for (const Visitor& visitor : kVisitors) {
    if (second == visitor.comes) {
      devices.push_back({std::string("0.0.0.") + visitor.address, visitor.mac, 0, 0, 0,
                         visitor.interface, visitor.name, 0, 0});
    }
    if (second == visitor.goes) {
      std::erase_if(devices, [&](const Device& device) { return device.mac == visitor.mac; });
    }
  }
}

// A device is quiet half of the time, and fetches more than it sends.
void move_traffic(Device& device) {
  constexpr long kFastestDown = 2000;
  constexpr long kDownToUp = 8;
  constexpr long kBytes = 1024;
  static std::minstd_rand random;
  std::uniform_int_distribution<long> speed(-kFastestDown, kFastestDown);
  device.down_speed = std::max(speed(random), 0L);
  device.up_speed = device.down_speed / kDownToUp;
  device.total_down += device.down_speed * kBytes;
  device.total_up += device.up_speed * kBytes;
  ++device.seconds;
}

}  // namespace

void let_devices_live() {
  std::vector<Device> devices = read_devices();
  let_visitors_come_and_go(devices);
  const auto prefix = lan_prefix();
  for (Device& device : devices) {
    move_traffic(device);
    if (prefix) device.address = *prefix + device.address.substr(device.address.rfind('.') + 1);
  }
  write_devices(devices);
}

}  // namespace board
