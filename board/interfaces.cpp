#include "board/interfaces.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <ifaddrs.h>
#include <linux/if_tun.h>
#include <linux/sockios.h>
#include <net/if.h>
#include <net/if_arp.h>
#include <net/route.h>
#include <netinet/in.h>
#include <netpacket/packet.h>
#include <sys/ioctl.h>
#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <functional>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "board/board.h"
#include "board/files.h"

namespace board {
namespace {

struct Interface {
  const char* name;
  std::array<unsigned char, 6> mac;  // locally administered
  const char* address;               // empty for none
  const char* netmask;
};

constexpr std::array<Interface, 6> kInterfaces{{
    {"br-lan", {0x02, 0x5a, 0x10, 0x20, 0x30, 0x01}, "192.168.10.1", "255.255.255.0"},
    {"eth0.2", {0x02, 0x5a, 0x10, 0x20, 0x30, 0x02}, "100.64.10.2", "255.255.255.0"},
    {"ra0", {0x02, 0x5a, 0x10, 0x20, 0x30, 0x03}, "", ""},
    {"rai0", {0x02, 0x5a, 0x10, 0x20, 0x30, 0x04}, "", ""},
    {"apcli0", {0x02, 0x5a, 0x10, 0x20, 0x30, 0x05}, "", ""},
    {"apclii0", {0x02, 0x5a, 0x10, 0x20, 0x30, 0x06}, "", ""},
}};
constexpr const char* kUplink = "eth0.2";
constexpr const char* kGateway = "100.64.10.1";
constexpr const char* kTunDevice = "/dev/net/tun";

class ControlSocket {
 public:
  ControlSocket() : socket_(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    if (!socket_.valid()) throw system_failure("socket");
  }
  template <typename Argument>
  bool try_control(unsigned long request, Argument argument) const {
    return ioctl(socket_.get(), request, argument) == 0;
  }
  template <typename Argument>
  void control(const char* what, unsigned long request, Argument argument) const {
    if (!try_control(request, argument)) throw system_failure(what);
  }

 private:
  Descriptor socket_;
};

ifreq request_for(const std::string& interface) {
  ifreq request{};
  if (interface.empty() || interface.size() >= IFNAMSIZ) {
    throw std::runtime_error("not an interface name: " + interface);
  }
  interface.copy(request.ifr_name, IFNAMSIZ - 1);
  return request;
}

void put_address(sockaddr* place, in_addr address) {
  sockaddr_in value{};
  value.sin_family = AF_INET;
  value.sin_addr = address;
  std::memcpy(place, &value, sizeof value);
}

void put_address(sockaddr* place, const std::string& address) {
  in_addr value{};
  if (inet_pton(AF_INET, address.c_str(), &value) != 1) {
    throw std::runtime_error("not an address: " + address);
  }
  put_address(place, value);
}

void control_address(const ControlSocket& socket, const char* what, unsigned long request,
                     const std::string& interface, const std::string& address) {
  ifreq argument = request_for(interface);
  put_address(&argument.ifr_addr, address);
  socket.control(what, request, &argument);
}

void bring(const ControlSocket& socket, const std::string& interface, bool up) {
  ifreq request = request_for(interface);
  socket.control("SIOCGIFFLAGS", SIOCGIFFLAGS, &request);
  const int flags = up ? request.ifr_flags | IFF_UP : request.ifr_flags & ~IFF_UP;
  request.ifr_flags = static_cast<short>(flags);
  socket.control("SIOCSIFFLAGS", SIOCSIFFLAGS, &request);
}

// `mode` is IFF_TUN or IFF_TAP. The interface stays after the device is closed when `persists`.
void attach_tun(const std::string& interface, int mode, bool persists) {
  const Descriptor device(open(kTunDevice, O_RDWR | O_CLOEXEC));
  if (!device.valid()) throw system_failure(std::string("open ") + kTunDevice);
  ifreq request = request_for(interface);
  request.ifr_flags = static_cast<short>(mode | IFF_NO_PI);
  if (ioctl(device.get(), TUNSETIFF, &request) < 0) throw system_failure("TUNSETIFF");
  if (ioctl(device.get(), TUNSETPERSIST, persists ? 1UL : 0UL) < 0) {
    throw system_failure("TUNSETPERSIST");
  }
}

void create_interface(const ControlSocket& socket, const std::string& interface) {
  request_for(interface);
  // A kernel without bridges has tap devices as a rule.
  if (!socket.try_control(SIOCBRADDBR, interface.c_str())) attach_tun(interface, IFF_TAP, true);
}

void delete_interface(const ControlSocket& socket, const std::string& interface, bool is_tun) {
  bring(socket, interface, false);
  if (!is_tun && socket.try_control(SIOCBRDELBR, interface.c_str())) return;
  attach_tun(interface, is_tun ? IFF_TUN : IFF_TAP, false);
}

// The state after boot of an interface that exists.
void set_up(const ControlSocket& socket, const Interface& interface) {
  ifreq request = request_for(interface.name);
  request.ifr_hwaddr.sa_family = ARPHRD_ETHER;
  std::memcpy(request.ifr_hwaddr.sa_data, interface.mac.data(), interface.mac.size());
  socket.control("SIOCSIFHWADDR", SIOCSIFHWADDR, &request);
  bring(socket, interface.name, true);
  set_address(interface.name, interface.address, interface.netmask);
}

const Interface* find_interface(const std::string& name) {
  const auto found = std::ranges::find(kInterfaces, name, &Interface::name);
  return found == kInterfaces.end() ? nullptr : &*found;
}

// None has one after boot.
void remove_ipv6_addresses(const std::string& interface) {
  ifaddrs* list = nullptr;
  if (getifaddrs(&list) < 0) throw system_failure("IPv6 addresses");
  bool has_one = false;
  for (const ifaddrs* item = list; item != nullptr; item = item->ifa_next) {
    has_one |= item->ifa_addr != nullptr && item->ifa_addr->sa_family == AF_INET6 &&
               interface == item->ifa_name;
  }
  freeifaddrs(list);
  if (!has_one) return;
  if (quiet({"ip", "-6", "address", "flush", "dev", interface}) != 0) {
    throw std::runtime_error("cannot remove the IPv6 addresses of " + interface);
  }
}

// Every byte of an address counts, whatever its family.
std::string bytes_of(const sockaddr* address) {
  if (address == nullptr) return "-";
  size_t size = sizeof(sockaddr);
  if (address->sa_family == AF_INET6) size = sizeof(sockaddr_in6);
  if (address->sa_family == AF_PACKET) {
    sockaddr_ll link{};
    std::memcpy(&link, address, sizeof link);
    return {reinterpret_cast<const char*>(link.sll_addr), link.sll_halen};
  }
  return {reinterpret_cast<const char*>(address), size};
}

// Flags, hardware address and addresses of every interface as one text each: enough to see
// whether a request changed it. Whether it has a carrier is for the kernel to say, in its time.
std::map<std::string, std::string> describe_interfaces() {
  ifaddrs* list = nullptr;
  if (getifaddrs(&list) < 0) throw system_failure("getifaddrs");
  std::map<std::string, std::string> descriptions;
  for (const ifaddrs* item = list; item != nullptr; item = item->ifa_next) {
    std::string& text = descriptions[item->ifa_name];
    text += std::to_string(item->ifa_flags & (IFF_UP | IFF_PROMISC)) + bytes_of(item->ifa_addr) +
            bytes_of(item->ifa_netmask);
    if ((item->ifa_flags & IFF_POINTOPOINT) != 0) text += bytes_of(item->ifa_dstaddr);
  }
  freeifaddrs(list);
  return descriptions;
}

struct Network {
  std::map<std::string, std::string> interfaces;
  std::string routes;
};

Network& booted() {
  static Network network;
  return network;
}

Network describe() {
  return {describe_interfaces(), read_file("/proc/net/route")};
}

struct Route {
  std::string interface;
  uint32_t destination;  // in network byte order, as the netmask
  uint32_t netmask;
};

// The lines of /proc/net/route that `condition` holds for.
std::vector<Route> find_routes(const std::function<bool(const std::string& line)>& condition) {
  std::vector<Route> routes;
  std::istringstream table(read_file("/proc/net/route"));
  std::string line;
  std::getline(table, line);
  while (std::getline(table, line)) {
    if (!condition(line)) continue;
    std::istringstream columns(line);
    Route route{};
    std::string skipped;
    columns >> route.interface >> std::hex >> route.destination;
    for (const char* column : {"gateway", "flags", "references", "use", "metric"}) {
      if (!(columns >> skipped)) throw std::runtime_error(std::string("no ") + column);
    }
    columns >> route.netmask;
    routes.push_back(route);
  }
  return routes;
}

void delete_route(const ControlSocket& socket, const Route& found) {
  rtentry route{};
  std::string device = found.interface;
  route.rt_dev = device.data();
  route.rt_flags = RTF_UP;
  put_address(&route.rt_dst, in_addr{found.destination});
  put_address(&route.rt_genmask, in_addr{found.netmask});
  socket.control("SIOCDELRT", SIOCDELRT, &route);
}

void delete_default_routes(const ControlSocket& socket, const std::string& interface) {
  const auto is_default = [&](const std::string& line) {
    return line.starts_with(interface + "\t00000000\t");
  };
  for (const Route& route : find_routes(is_default)) delete_route(socket, route);
}

void delete_routes_not_in(const ControlSocket& socket, const std::string& table) {
  const auto is_new = [&](const std::string& line) {
    return table.find(line) == std::string::npos;
  };
  for (const Route& route : find_routes(is_new)) delete_route(socket, route);
}

bool add_route(const ControlSocket& socket, const std::string& interface,
               const std::string& destination, const std::string& netmask,
               const std::string& gateway) {
  rtentry route{};
  std::string device = interface;
  route.rt_dev = device.data();
  route.rt_flags = RTF_UP;
  put_address(&route.rt_dst, destination);
  put_address(&route.rt_genmask, netmask);
  if (!gateway.empty()) {
    put_address(&route.rt_gateway, gateway);
    route.rt_flags |= RTF_GATEWAY;
  }
  return socket.try_control(SIOCADDRT, &route);
}

}  // namespace

void set_address(const std::string& interface, const std::string& address,
                 const std::string& netmask) {
  const ControlSocket socket;
  if (if_nametoindex(interface.c_str()) == 0) {
    create_interface(socket, interface);
    bring(socket, interface, true);
  }
  // The kernel takes the first address away for 0.0.0.0; there may be more.
  ifreq request = request_for(interface);
  request.ifr_addr.sa_family = AF_INET;
  while (socket.try_control(SIOCGIFADDR, &request)) {
    control_address(socket, "SIOCSIFADDR", SIOCSIFADDR, interface, "0.0.0.0");
  }
  if (address.empty()) return;
  control_address(socket, "SIOCSIFADDR", SIOCSIFADDR, interface, address);
  control_address(socket, "SIOCSIFNETMASK", SIOCSIFNETMASK, interface, netmask);
}

void add_point_to_point(const std::string& interface, const std::string& address,
                        const std::string& peer) {
  const ControlSocket socket;
  if (if_nametoindex(interface.c_str()) == 0) attach_tun(interface, IFF_TUN, true);
  bring(socket, interface, true);
  control_address(socket, "SIOCSIFADDR", SIOCSIFADDR, interface, address);
  control_address(socket, "SIOCSIFDSTADDR", SIOCSIFDSTADDR, interface, peer);
}

void set_gateway(const std::string& interface, const std::string& gateway) {
  const ControlSocket socket;
  delete_default_routes(socket, interface);
  if (add_route(socket, interface, "0.0.0.0", "0.0.0.0", gateway)) return;
  // A gateway outside the interface's own network is reached through a host route.
  if (errno != ENETUNREACH || !add_route(socket, interface, gateway, "255.255.255.255", "") ||
      !add_route(socket, interface, "0.0.0.0", "0.0.0.0", gateway)) {
    throw system_failure("SIOCADDRT");
  }
}

void create_interfaces() {
  const ControlSocket socket;
  bring(socket, "lo", true);
  for (const Interface& interface : kInterfaces) {
    create_interface(socket, interface.name);
    set_up(socket, interface);
  }
  set_gateway(kUplink, kGateway);
  booted() = describe();
}

void restore_interfaces() {
  const Network now = describe();
  const Network& then = booted();
  if (now.interfaces == then.interfaces && now.routes == then.routes) return;
  const ControlSocket socket;
  for (const auto& [name, description] : now.interfaces) {
    const auto found = then.interfaces.find(name);
    if (found != then.interfaces.end() && found->second == description) continue;
    if (const Interface* known = find_interface(name)) {
      remove_ipv6_addresses(name);
      set_up(socket, *known);
    } else if (name != "lo") {
      ifreq request = request_for(name);
      socket.control("SIOCGIFHWADDR", SIOCGIFHWADDR, &request);
      delete_interface(socket, name, request.ifr_hwaddr.sa_family == ARPHRD_NONE);
    }
  }
  for (const Interface& interface : kInterfaces) {
    if (if_nametoindex(interface.name) != 0) continue;
    create_interface(socket, interface.name);
    set_up(socket, interface);
  }
  bring(socket, "lo", true);
  set_gateway(kUplink, kGateway);
  delete_routes_not_in(socket, then.routes);
}

}  // namespace board
