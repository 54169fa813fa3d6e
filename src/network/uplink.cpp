#include "network/uplink.h"

#include <arpa/inet.h>
#include <netinet/in.h>

#include <array>
#include <cstddef>
#include <cstdio>
#include <string_view>

#include <zelto/network.h>

#include "api/boundary.h"
#include "api/config.h"
#include "api/files.h"
#include "api/interface.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"

namespace zelto::uplink {
namespace {

constexpr std::size_t kLongestMode = 31;
constexpr std::size_t kPointToPointAddress = 15;
constexpr std::size_t kShortestAddress = 7;
constexpr std::size_t kRouteTable = 16384;
constexpr std::size_t kResolverLine = 79;
constexpr unsigned kRouteUp = 1;

// What the two questions about the WAN side differ in: which interface carries it, and which one's
// MAC address it shows.
struct Question {
  bool sees_ppp_links;
  const char* radio_5g;
  const char* mode_failed;
  const char* type_failed;
};
constexpr Question kCarrier = {
    .sees_ppp_links = true,
    .radio_5g = "apclii0",
    .mode_failed = "getWanIfInterface get operation mode failed!\n",
    .type_failed = "getWanIfInterface get conntype failed!\n",
};
constexpr Question kHardware = {
    .sees_ppp_links = false,
    .radio_5g = "apclix0",
    .mode_failed = "get operation mode failed!\n",
    .type_failed = "get wanConnectionMode failed!\n",
};

std::string read_or(const config::Option& option, std::size_t longest, const char* fallback,
                    const char* failure) {
  if (auto value = config::read(option, longest)) return *value;
  log::error(failure);
  return fallback;
}

const char* wired(std::string_view connection_type) {
  if (connection_type == "pppoe") return "pppoe-wan";
  if (connection_type == "l2tp") return "l2tp-L2TP";
  if (connection_type == "pptp") return "pptp-PPTP";
  return "eth0.2";
}

const char* radio(const Question& question) {
  const auto band = read_or({"internet", "wisp", "wisp_type"}, kLongestMode, "2.4G",
                            "getWanIfInterface get internet wisp wisp_type failed!\n");
  return band == "2.4G" ? "apcli0" : question.radio_5g;
}

// Null in an unknown operation mode.
const char* find_interface(const Question& question) {
  const auto mode = read_or(config::kOperationMode, kLongestMode, "router", question.mode_failed);
  const auto type = read_or(config::kConnectionType, kLongestMode, "dhcp", question.type_failed);
  if (mode == "router") return wired(question.sees_ppp_links ? type : "");
  if (mode == "wisp") return radio(question);
  if (mode == "repeater" || mode == "AP") return "br-lan";
  if (mode == "mobilenetmode") return "eth0.2";
  return nullptr;
}

std::optional<std::string> far_end_of_ppp() {
  const auto line = shell::capture_line(
      R"(ifconfig | grep P-t-P | awk '{print $3}' | cut -d ':' -f2 | sed 's/"//g')",
      kPointToPointAddress);
  if (!line) return std::nullopt;
  if (line->text.size() < kShortestAddress) return line->text;
  return std::string(text::without_line_end(line->text));
}

struct Route {
  unsigned long gateway;
  unsigned flags;
};

// A line of the kernel's table behind its first column; nothing when it is not one.
std::optional<Route> parse_route(const std::string& line) {
  const auto first_column = line.find_first_of("\t ");
  if (first_column == std::string::npos) return std::nullopt;
  unsigned long destination = 0;
  unsigned long mask = 0;
  int reference_count = 0;
  int use = 0;
  int metric = 0;
  Route route{};
  const int values =
      // NOLINTNEXTLINE(cert-err34-c): numbers of the kernel's own making
      std::sscanf(line.c_str() + first_column, "%lx%lx%X%d%d%d%lx", &destination, &route.gateway,
                  &route.flags, &reference_count, &use, &metric, &mask);
  if (values != 7) return std::nullopt;
  return route;
}

// The kernel prints the address as the number that its network order makes on this machine.
std::string dotted(unsigned long address) {
  const in_addr network_order{static_cast<in_addr_t>(address)};
  std::array<char, INET_ADDRSTRLEN> buffer{};
  inet_ntop(AF_INET, &network_order, buffer.data(), buffer.size());
  return buffer.data();
}

std::optional<std::string> gateway_of_routes(const std::string& interface) {
  const auto table =
      shell::capture("cat /proc/net/route | grep " + shell::word(interface), kRouteTable);
  if (!table) return std::nullopt;
  std::string_view rest = table->text;
  while (!rest.empty()) {
    const auto [line, others] = text::split_first(rest, '\n');
    const auto route = parse_route(std::string(line));
    if (!route) return std::nullopt;
    if ((route->flags & kRouteUp) != 0 && route->gateway != 0) return dotted(route->gateway);
    rest = others;
  }
  return "";
}

int copy_if_found(const std::optional<std::string>& value, char* out, std::size_t size) {
  if (!value) return -1;
  if (!value->empty()) text::copy(*value, out, size);
  return 0;
}

int name_interface(const Question& question, char* out) {
  return guarded(0, [&] {
    const char* name = find_interface(question);
    if (name != nullptr) text::copy(name, out, ZELTO_INTERFACE_SIZE);
    return 0;
  });
}

}  // namespace

std::string interface_name() {
  const char* name = find_interface(kCarrier);
  return name == nullptr ? "" : name;
}

std::optional<std::string> gateway(const std::string& interface) {
  if (interface.starts_with('-')) return std::nullopt;  // grep would take it for an option
  return interface.starts_with("ppp") ? far_end_of_ppp() : gateway_of_routes(interface);
}

std::optional<std::string> resolver(int n) {
  const auto file = files::open("/tmp/resolv.conf.auto");
  if (!file) return std::nullopt;
  std::string address;
  int count = 0;
  while (count < n) {
    const auto line = files::read_line(file.get(), kResolverLine);
    if (!line) break;
    if (!line->starts_with("nameserver")) continue;
    ++count;
    const auto word = text::two_words(*line).second;
    if (!word.empty()) address = word;
  }
  return address;
}

}  // namespace zelto::uplink

namespace uplink = zelto::uplink;

int getIfIpAddr(const char* interface, char* out) {
  return zelto::guarded(-1, [&] {
    return uplink::copy_if_found(zelto::interface::address(interface), out, ZELTO_ADDRESS_SIZE);
  });
}

int getIfNetmask(const char* interface, char* out) {
  return zelto::guarded(-1, [&] {
    return uplink::copy_if_found(zelto::interface::netmask(interface), out, ZELTO_ADDRESS_SIZE);
  });
}

int getWanGateway(const char* interface, char* out) {
  if (interface == nullptr) return -1;
  return zelto::guarded(-1, [&] {
    return uplink::copy_if_found(uplink::gateway(interface), out, ZELTO_ADDRESS_SIZE);
  });
}

int getDns(int n, char* out) {
  return zelto::guarded(
      -1, [&] { return uplink::copy_if_found(uplink::resolver(n), out, ZELTO_ADDRESS_SIZE); });
}

int getWanIfInterface(char* out) {
  return uplink::name_interface(uplink::kCarrier, out);
}

int getWanMac(char* out) {
  return uplink::name_interface(uplink::kHardware, out);
}
