// The firmware's version, and its upgrade by the system daemon.

#include <array>
#include <csignal>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <zelto/system.h>
#include <zelto/utilities.h>

#include "api/envelope.h"
#include "api/files.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"
#include "system/identity.h"

namespace zelto {
namespace {

// A real-time signal. Kernels for MIPS have 128 signals, those for other processors 64: there the
// daemon cannot be told.
constexpr int kStartUpgrade = 72;

constexpr const char* kVersionFile = "/etc/FW-Version";
constexpr const char* kOfferFile = "/tmp/upgrade.txt";
constexpr std::size_t kLongestVersion = 49;
constexpr std::size_t kLongestOffer = 510;
constexpr std::size_t kLongestState = 320;
constexpr int kNoNewerVersion = 5;

std::string upgrade_state() {
  const auto state = shell::capture(R"(cat /tmp/upgrade_status | tr -d '\n')", kLongestState);
  return state ? state->text : "";
}

// ---- versions

void add_version(const Request& /*request*/, Reply& reply) {
  reply.text("version", identity::firmware_version());
}

// The last field of the version line; commas in a row count as one.
std::optional<std::string> current_version() {
  const auto file = files::open(kVersionFile);
  if (!file) return std::nullopt;
  const auto line = files::read_line(file.get(), kLongestVersion).value_or("");
  std::string_view rest = line;
  while (rest.ends_with(',')) rest.remove_suffix(1);
  return std::string(text::without_line_end(rest.substr(rest.rfind(',') + 1)));
}

// What the last check found; empty when it found nothing.
std::string offered_version() {
  const auto file = files::open(kOfferFile);
  if (!file) {
    log::error("can not open /tmp/upgrade.txt!\n");
    return {};
  }
  files::read_line(file.get(), std::string::npos);
  const auto line = files::read_line(file.get(), kLongestOffer).value_or("");
  std::string version(text::without_line_end(line));
  if (version.empty()) log::error("the file is null ,can not get the right version!\n");
  return version;
}

// The check that is started here is for the next request: this one tells what an earlier one left.
void add_versions(Reply& reply) {
  const auto current = current_version();
  if (!current) {
    log::error("open /etc/FW-Version failed!\n");
    return reply.result(kFailed);
  }
  shell::start("upgrade check");
  const auto offered = offered_version();
  reply.text("curver", *current);
  if (offered.empty()) return reply.result(kNoNewerVersion);
  reply.text("lastver", offered);
  reply.text("content_zh", "");
  reply.text("content_en", "");
}

void add_stage(Reply& reply) {
  const int state = text::to_int(upgrade_state());
  if (state == 1) return reply.text("status", "download");
  if (state == 2) return reply.text("status", "upgrade");
  reply.result(kFailed);
}

void answer_versions(const Request& request, Reply& reply) {
  if (request.type() == "getfirmver") return add_versions(reply);
  if (request.type() == "getstatus") return add_stage(reply);
  reply.result(kFailed);
}

// ---- upgrade

void start_upgrade(const Request& /*request*/, Reply& reply) {
  const int daemon = get_sys_daemon_pid();
  if (daemon < 0) {
    log::error("get sys_daemon pid failed\n");
    return reply.result(kFailed);
  }
  if (kill(daemon, kStartUpgrade) < 0) {
    log::error("the system daemon cannot be signalled!\n");
    return reply.result(kFailed);
  }
  reply.result(kDone);
}

void add_progress(const Request& /*request*/, Reply& reply) {
  static constexpr std::array kStates = {"downing", "downing",  "burning",
                                         "timeout", "md5_Fail", "down_Fail"};
  const auto state = static_cast<unsigned>(text::to_int(upgrade_state()));
  if (state >= kStates.size()) return reply.result(kFailed);
  reply.result(kDone);
  reply.text("status", kStates[state]);
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_SysVersion(const char* request, char* out) {
  return answer({.type = "getversion"}, request, out, add_version);
}

int bs_GetFirmwareVer(const char* request, char* out) {
  return answer({.type = "getfirmver", .accepts_any_type = true}, request, out, answer_versions);
}

int bs_Upgrade(const char* request, char* out) {
  return answer({.type = "upgrade"}, request, out, start_upgrade);
}

int bs_GetUpgradeStatus(const char* request, char* out) {
  return answer({.type = "getupgradestatus", .echoes_type = true}, request, out, add_progress);
}
