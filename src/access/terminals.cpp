// The attached devices, as the firmware's services list them.

#include <array>
#include <cstddef>
#include <cstdio>
#include <ctime>
#include <limits>
#include <optional>
#include <string>
#include <string_view>

#include <zelto/access.h>

#include "access/terminal_list.h"
#include "api/boundary.h"
#include "api/envelope.h"
#include "api/files.h"
#include "api/log.h"
#include "api/text.h"

namespace zelto {
namespace {

using terminals::Outcome;
using terminals::Terminal;

constexpr std::string_view kWired = "eth0";

// Which medium an interface belongs to, as pages count them.
struct Medium {
  std::string_view interface;
  const char* link_type;
};
constexpr std::array kMedia = {Medium{"eth0", "0"}, Medium{"ra0", "1"}, Medium{"ra1", "1"},
                               Medium{"rai0", "2"}, Medium{"rai1", "2"}};

const char* link_type(std::string_view interface) {
  for (const auto& medium : kMedia) {
    if (medium.interface == interface) return medium.link_type;
  }
  return "";
}

// Connected seconds as an instant after the epoch: days are days of its month, so they begin again
// after a month, and pages are used to it.
std::string link_time(std::string_view seconds) {
  const std::time_t instant = text::to_int64(seconds);
  std::tm time{};
  if (gmtime_r(&instant, &time) == nullptr) return "0:0:0";
  const auto clock = text::format("%d:%d:%d", time.tm_hour, time.tm_min, time.tm_sec);
  return time.tm_mday == 1 ? clock : text::format("%d-", time.tm_mday - 1) + clock;
}

void complain_of_lock(const char* function) {
  std::fprintf(stderr, "flock for %s failed!\n", function);
}

// ---- getterminallist

void add_terminal(const Terminal& terminal, Object entry) {
  entry.text("ip", terminal.ip);
  entry.text("mac", terminal.mac);
  entry.text("upspeed", terminal.up_rate);
  entry.text("downspeed", terminal.down_rate);
  entry.text("totalup", terminal.up_total);
  entry.text("totaldl", terminal.down_total);
  entry.text("link_time", link_time(terminal.seconds));
  entry.text("link_type", link_type(terminal.interface));
  entry.text("name", terminal.name);
  entry.text("ostype", "");
  entry.text("sign", "0");
}

void add_terminals(const Request& request, Reply& reply) {
  reply.text("ver", "2");
  if (request.type() != "getterminallist") return reply.result(kFailed);
  const auto devices = terminals::read();
  if (devices.outcome == Outcome::kNotLocked) complain_of_lock("bs_GetTerminalList");
  if (devices.outcome == Outcome::kNotLocked || devices.outcome == Outcome::kNoLockFile) {
    return reply.result(kFailed);
  }
  if (devices.outcome == Outcome::kNoList) log::error("open file:terminal_list failed\n");
  auto list = reply.list("list");
  for (const auto& line : devices.lines) add_terminal(terminals::parse(line), list.add());
}

// ---- getclientnum

struct Counts {
  int cable = 0;
  int on_2g = 0;
  int on_5g = 0;
};

std::optional<Counts> count_clients() {
  const auto devices = terminals::read();
  if (devices.outcome == Outcome::kNotLocked) complain_of_lock("get_client_num");
  if (devices.outcome == Outcome::kNoList) log::error("open file terminal_list failed!\n");
  if (devices.outcome != Outcome::kRead) return std::nullopt;
  Counts counts;
  for (const auto& line : devices.lines) {
    const std::string_view type = link_type(terminals::parse(line).interface);
    if (type == "0") ++counts.cable;
    if (type == "1") ++counts.on_2g;
    if (type == "2") ++counts.on_5g;
  }
  return counts;
}

void add_counts(const Request& /*request*/, Reply& reply) {
  int cable = 0;
  int on_2g = 0;
  int on_5g = 0;
  if (get_client_num(&cable, &on_2g, &on_5g) != 1) return reply.result(kFailed);
  reply.number("cable", cable);
  reply.number("_2g", on_2g);
  reply.number("_5g", on_5g);
}

// ---- getwifistainfo, getcurstainfo

// A wireless station for the list, unless it is none.
bool add_station(std::string_view mac, std::string_view interface, std::string_view name,
                 List& list) {
  if (interface == kWired) return false;
  auto entry = list.add();
  entry.text("mac", mac);
  entry.text("devname", name);
  return true;
}

void add_stations(const Request& /*request*/, Reply& reply) {
  constexpr std::size_t kAnyLength = std::numeric_limits<std::size_t>::max();
  auto list = reply.list("list");
  const auto file = files::open("/tmp/wifi_list");
  if (!file) return log::error("open file:wifi_list failed\n");
  const files::Lock lock(file.get());
  if (!lock.held()) log::error("flock for file wifi_list failed\n");
  int count = 0;
  while (const auto line = lock.held() ? files::read_line(file.get(), kAnyLength) : std::nullopt) {
    const auto content = text::without_line_end(*line);
    if (content.empty()) continue;
    const auto [mac, rest] = text::split_first(content, ' ');
    const auto [interface, name] = text::split_first(rest, ' ');
    if (add_station(mac, interface, name, list)) ++count;
  }
  reply.text("num", std::to_string(count));
}

void add_current_stations(const Request& /*request*/, Reply& reply) {
  const auto devices = terminals::read();
  if (devices.outcome == Outcome::kNoLockFile) log::error("fopen TERMINAL_LOCK_FILE failed\n");
  if (devices.outcome == Outcome::kNotLocked) log::error("flock for bs_GetCurStaInfo failed\n");
  if (devices.outcome == Outcome::kNoLockFile || devices.outcome == Outcome::kNotLocked) {
    return reply.result(kFailed);
  }
  auto list = reply.list("list");
  if (devices.outcome == Outcome::kNoList) return log::error("open file:terminal_list failed\n");
  int count = 0;
  for (const auto& line : devices.lines) {
    const auto terminal = terminals::parse(line);
    if (add_station(terminal.mac, terminal.interface, terminal.name, list)) ++count;
  }
  reply.text("num", std::to_string(count));
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int get_client_num(int* cable, int* wifi2g, int* wifi5g) {
  return guarded(0, [&] {
    const auto counts = count_clients();
    if (!counts) return 0;
    *cable += counts->cable;
    *wifi2g += counts->on_2g;
    *wifi5g += counts->on_5g;
    return 1;
  });
}

int bs_GetTerminalList(const char* request, char* out) {
  return answer(
      {.type = "getterminallist", .unparsed_log = "json is NULL\n", .accepts_any_type = true},
      request, out, add_terminals);
}

int bs_ClientNum_info(const char* request, char* out) {
  return answer({.type = "getclientnum"}, request, out, add_counts);
}

int bs_GetWiFiStaInfo(const char* request, char* out) {
  return answer({.type = "getwifistainfo", .echoes_type = true}, request, out, add_stations);
}

int bs_GetCurStaInfo(const char* request, char* out) {
  return answer({.type = "getcurstainfo", .echoes_type = true}, request, out, add_current_stations);
}
