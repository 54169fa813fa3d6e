// The readers of the router's running state.

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <zelto/system.h>

#include "api/boundary.h"
#include "api/config.h"
#include "api/files.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"

namespace zelto {
namespace {

constexpr const char* kSpeedFile = "/tmp/wan_speed_file";
constexpr const char* kOnlineFile = "/tmp/online_file";
constexpr std::size_t kOnlineLine = 126;
constexpr std::size_t kUptimeLine = 255;
constexpr std::size_t kUsageLength = 5;
constexpr std::size_t kSwitchLine = 499;
constexpr std::size_t kDateLine = 31;
constexpr std::size_t kShortestDate = 11;
constexpr std::size_t kShortestUptime = 2;
constexpr std::size_t kClockSize = 32;
constexpr std::size_t kSwitchWord = 31;

constexpr int kLinkRegister = 83;
constexpr std::string_view kRegisterValue = "value=";

// The switch counts its ports from the far LAN port, the status word from the WAN port.
struct PortBit {
  unsigned in_register;
  unsigned in_status;
};
constexpr PortBit kPorts[] = {
    {1U << 5, ZELTO_STATUS_WAN},  {1U << 4, ZELTO_STATUS_LAN4}, {1U << 3, ZELTO_STATUS_LAN3},
    {1U << 2, ZELTO_STATUS_LAN2}, {1U << 1, ZELTO_STATUS_LAN1},
};

int copy_whole(const std::string& value, char* buffer, int size) {
  if (buffer == nullptr || size < 0 || static_cast<std::size_t>(size) < value.size() + 1) return -1;
  text::copy(value, buffer, static_cast<std::size_t>(size));
  return 0;
}

// The first line of a state file, read under its lock as its writer demands; the texts are logged
// when it cannot be opened or locked.
std::optional<std::string> read_state(const char* path, std::size_t longest, const char* not_opened,
                                      const char* not_locked) {
  const auto file = files::open(path);
  if (!file) {
    log::error(not_opened);
    return std::nullopt;
  }
  const files::Lock lock(file.get());
  if (!lock.held()) {
    log::error(not_locked);
    return std::nullopt;
  }
  return files::read_line(file.get(), longest);
}

std::string elapsed(int seconds) {
  constexpr int kMinute = 60;
  constexpr int kHour = 60 * kMinute;
  constexpr int kDay = 24 * kHour;
  return text::format("%d:%d:%d:%d", seconds / kDay, seconds % kDay / kHour,
                      seconds % kHour / kMinute, seconds % kMinute);
}

unsigned status_word() {
  const unsigned online = get_online_status() == 1 ? ZELTO_STATUS_ONLINE : 0;
  const auto answer =
      shell::capture_line(text::format("switch reg r %d", kLinkRegister), kSwitchLine);
  if (!answer || shell::cannot_run(answer->status)) return ZELTO_STATUS_UNKNOWN;

  unsigned links = 0;
  const auto position = answer->text.find(kRegisterValue);
  if (position != std::string::npos) {
    links = text::hexadecimal(answer->text.substr(position + kRegisterValue.size())).value_or(0);
  }
  unsigned word = ZELTO_STATUS_ALWAYS | online;
  for (const auto& port : kPorts) {
    if ((links & port.in_register) != 0) word |= port.in_status;
  }
  return word;
}

std::string current_date() {
  constexpr const char* kUnknownDate = "1970-01-01 08:00:00";
  const auto date = shell::capture_line(R"(date +"%Y-%m-%d %H:%M:%S")", kDateLine);
  if (!date) console::trace("get_system_current_time", "get time from date fail");
  return date && date->text.size() >= kShortestDate ? date->text : kUnknownDate;
}

std::string uptime_seconds() {
  const auto uptime = shell::capture_line("cat /proc/uptime", kUptimeLine);
  if (!uptime || uptime->text.size() < kShortestUptime) return "0";
  return text::format("%d", text::to_int(uptime->text));
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int get_sysrun_time(char* buffer, int size) {
  return guarded(-1, [&] {
    const auto file = files::open("/proc/uptime");
    if (!file) {
      log::error("fopen error\n");
      return -1;
    }
    const auto line = files::read_line(file.get(), kUptimeLine).value_or("");
    return copy_whole(elapsed(text::to_int(line)), buffer, size);
  });
}

int GetCPUusage(char* buffer, int size) {
  return guarded(-1, [&] {
    const auto usage =
        shell::capture_line("top -n 1 | grep CPU | grep usr | awk '{print $2}'", kUsageLength);
    if (!usage) {
      log::error("fopen error\n");
      return -1;
    }
    return copy_whole(usage->text, buffer, size);
  });
}

void get_wan_speed(char* buffer, int size) {
  if (buffer == nullptr || size < 2) return;
  guarded(0, [&] {
    const auto line =
        read_state(kSpeedFile, static_cast<std::size_t>(size - 2),
                   "open /tmp/wan_speed_file fail\n", "flock for /tmp/wan_speed_file failed!\n");
    if (line) text::copy(*line, buffer, static_cast<std::size_t>(size));
    return 0;
  });
}

int get_online_status() {
  return guarded(0, [] {
    const auto line = read_state(kOnlineFile, kOnlineLine, "open /tmp/online_file fail\n",
                                 "flock for online_file failed!\n");
    return line && line->find("online") != std::string::npos ? 1 : 0;
  });
}

unsigned int GetBasicstatus() {
  return guarded(ZELTO_STATUS_UNKNOWN, status_word);
}

int getPortConnectStat() {
  return 0;
}

int get_system_current_time(char* date, char* uptime) {
  return guarded(0, [&] {
    text::copy(current_date(), date, kClockSize);
    text::copy(uptime_seconds(), uptime, kClockSize);
    return 0;
  });
}

int init_network_run() {
  return guarded(-1, [] {
    const auto enabled = config::read_or_empty({"system", "route", "mtkhnat"}, kSwitchWord);
    config::write({"mtkhnat", "global", "enable"}, enabled);
    return shell::run(enabled == "1" ? "echo 1 > /sys/kernel/debug/hnat/hook_toggle"
                                     : "echo 0 > /sys/kernel/debug/hnat/hook_toggle");
  });
}
