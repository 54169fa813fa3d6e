#include "api/interface.h"

#include <arpa/inet.h>
#include <net/if.h>
#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <string_view>

#include "api/log.h"
#include "api/text.h"

namespace zelto::interface {
namespace {

// Asks the kernel one question about an interface. A name that is too long names none. `not_asked`
// is logged, unless it is null, when there is no socket to ask through.
std::optional<ifreq> query(const char* name, unsigned long question, const char* not_asked) {
  ifreq request{};
  if (name == nullptr || std::string_view(name).size() >= sizeof request.ifr_name) {
    return std::nullopt;
  }
  text::copy(name, request.ifr_name, sizeof request.ifr_name);
  const int socket_descriptor = socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0);
  if (socket_descriptor < 0) {
    if (not_asked != nullptr) log::error(not_asked);
    return std::nullopt;
  }
  const int status = ioctl(socket_descriptor, question, &request);
  close(socket_descriptor);
  if (status < 0) return std::nullopt;
  return request;
}

std::optional<std::string> dotted(const char* name, unsigned long question, const char* not_asked) {
  const auto answer = query(name, question, not_asked);
  if (!answer) return std::nullopt;
  sockaddr_in address{};
  std::memcpy(&address, &answer->ifr_addr, sizeof address);
  std::array<char, INET_ADDRSTRLEN> dotted{};
  inet_ntop(AF_INET, &address.sin_addr, dotted.data(), dotted.size());
  return std::string(dotted.data());
}

}  // namespace

std::optional<std::string> hardware_address(const char* name) {
  const auto answer = query(name, SIOCGIFHWADDR, nullptr);
  if (!answer) return std::nullopt;
  std::array<unsigned char, 6> bytes{};
  std::memcpy(bytes.data(), answer->ifr_hwaddr.sa_data, bytes.size());
  return text::format("%02X:%02X:%02X:%02X:%02X:%02X", bytes[0], bytes[1], bytes[2], bytes[3],
                      bytes[4], bytes[5]);
}

std::optional<std::string> address(const char* name) {
  return dotted(name, SIOCGIFADDR, nullptr);
}

std::optional<std::string> netmask(const char* name) {
  return dotted(name, SIOCGIFNETMASK, "getIfNetmask: open socket error\n");
}

}  // namespace zelto::interface
