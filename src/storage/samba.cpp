// The Samba service's account and shared directories.

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <zelto/storage.h>

#include "api/boundary.h"
#include "api/config.h"
#include "api/files.h"
#include "api/log.h"
#include "api/reply.h"
#include "api/shell.h"
#include "api/text.h"
#include "storage/accounts.h"
#include "storage/disks.h"
#include "storage/sharing.h"

namespace zelto {
namespace {

constexpr const char* kSharesFile = ".samba_share_dir";
constexpr const char* kPackage = "samba";
constexpr const char* kSectionType = "sambashare";
constexpr std::size_t kLongestSwitch = 7;
constexpr std::size_t kLongestUserLine = 511;

// One more can be set than is read back.
constexpr std::size_t kSharesRead = 7;

bool is_present(const disks::Lines& /*lines*/) {
  return true;
}

// Paths that lead out of the disks are passed over.
std::optional<disks::Lines> read_shares() {
  auto lines = disks::read_first(kSharesFile, is_present);
  if (!lines) return std::nullopt;
  std::erase_if(*lines, [](const std::string& line) { return !disks::is_on_disk(line); });
  lines->resize(std::min(lines->size(), kSharesRead));
  return lines;
}

// ---- sections

std::string_view share_name(std::string_view path) {
  while (path.ends_with('/')) path.remove_suffix(1);
  return path.substr(path.rfind('/') + 1);
}

void remove_sections() {
  while (const auto section = config::section_of_type(kPackage, kSectionType, 0)) {
    if (!config::remove_section(kPackage, *section)) return;
  }
}

void rebuild_sections(std::string_view user, const disks::Lines& paths) {
  remove_sections();
  int n = 0;
  for (const auto& path : paths) {
    config::add_section(kPackage, kSectionType, nullptr);
    const auto section = config::section_of_type(kPackage, kSectionType, n++);
    if (!section) return;
    config::write_section(kPackage, *section,
                          {{"name", share_name(path)},
                           {"path", path},
                           {"users", user},
                           {"read_only", "no"},
                           {"guest_ok", "no"},
                           {"create_mask", "0777"},
                           {"dir_mask", "0777"}});
  }
}

// ---- account

// Samba's own password list can only be changed while the service runs. It runs from construction
// to destruction, and on when it was switched on.
class Running {
 public:
  Running() : was_off_(config::read(kSamba.state, kLongestSwitch) == "0") {
    if (was_off_) config::write(kSamba.state, "1");
    shell::run(was_off_ ? "/etc/init.d/samba start" : "/etc/init.d/samba restart");
  }
  ~Running() {
    guarded(0, [&] {
      if (!was_off_) return 0;
      config::write(kSamba.state, "0");
      return shell::run("/etc/init.d/samba stop");
    });
  }
  Running(const Running&) = delete;
  Running& operator=(const Running&) = delete;

 private:
  bool was_off_;
};

void delete_account(const Account& account) {
  const std::string user = shell::word(account.user);
  shell::run("smbpasswd -x " + user + " 1>/dev/null 2>&1;userdel " + user + " 1>/dev/null 2>&1");
}

void create_account(const Account& account) {
  const std::string user = shell::word(account.user);
  const std::string password = shell::word(account.password);
  shell::run("useradd -s /bin/false " + user + ";(echo " + password + ";echo " + password +
             ") | smbpasswd -a -s " + user + " 1>/dev/null 2>&1");
}

int set_account(const Account& account) {
  if (!accounts::is_user(account.user) || !accounts::is_password(account.password)) {
    log::refused("setsambacfg");
    return kFailed;
  }
  const auto old = accounts::read(kSamba.account_file);
  if (!accounts::write(kSamba.account_file, account)) return kFailed;
  const auto other = accounts::read(kFtp.account_file);
  const auto shares = read_shares().value_or(disks::Lines());
  const Running service;
  if (old.is_set() && !accounts::is_shared(old, other)) delete_account(old);
  if (check_system_user(account.user.c_str()) != 1) create_account(account);
  rebuild_sections(account.user, shares);
  return kDone;
}

// ---- shares

int set_shares(const disks::Lines& paths) {
  if (!std::all_of(paths.begin(), paths.end(), disks::is_on_disk)) {
    log::refused("setsambapath");
    return kFailed;
  }
  const auto account = accounts::read(kSamba.account_file);
  if (!disks::write(kSharesFile, paths)) return kFailed;
  rebuild_sections(account.user, paths);
  return kDone;
}

int remove_share(std::string_view path) {
  if (!disks::names()) return kFailed;
  const auto account = accounts::read(kSamba.account_file);
  auto shares = read_shares();
  if (shares) {
    std::erase(*shares, path);
    if (!disks::write(kSharesFile, *shares)) return kFailed;
  }
  rebuild_sections(account.user, read_shares().value_or(disks::Lines()));
  return kDone;
}

disks::Lines paths_of(const ZeltoShareList& list) {
  const int count = std::clamp(list.count, 0, ZELTO_SHARE_COUNT);
  disks::Lines paths;
  for (int i = 0; i < count; ++i) paths.emplace_back(text::in_buffer(list.paths[i]));
  return paths;
}

}  // namespace
}  // namespace zelto

using namespace zelto;

void get_samba_user_passwd(char* user, char* password) {
  guarded(0, [&] { return hand_out(accounts::read(kSamba.account_file), user, password); });
}

int set_samba_user_passwd(const char* user, const char* password) {
  if (user == nullptr || password == nullptr) return kFailed;
  return guarded(kFailed, [&] { return set_account({user, password}); });
}

// Splits at ";", where the system writes ":": so it never knows a user, and accounts are made anew.
int check_system_user(const char* user) {
  if (user == nullptr) return -1;
  return guarded(-1, [&] {
    const auto file = files::open("/etc/passwd");
    if (!file) {
      log::error("fopen /etc/passwd for read error!\n");
      return -1;
    }
    while (const auto line = files::read_line(file.get(), kLongestUserLine)) {
      if (text::split_first(text::without_line_end(*line), ';').first == user) return 1;
    }
    return 0;
  });
}

int edit_samba_config(const char* users, const ZeltoShareList* list) {
  if (users == nullptr || list == nullptr) return kFailed;
  return guarded(kFailed, [&] {
    rebuild_sections(users, paths_of(*list));
    return kDone;
  });
}

void get_samba_share_dir(ZeltoShareList* list) {
  if (list == nullptr) return;
  guarded(0, [&] {
    for (const auto& path : read_shares().value_or(disks::Lines())) {
      if (list->count < 0 || list->count >= ZELTO_SHARE_COUNT) return 0;
      text::copy(path, list->paths[list->count++], ZELTO_SHARE_PATH_SIZE);
    }
    return 0;
  });
}

int set_samba_share_dir(const ZeltoShareList* list) {
  if (list == nullptr || list->count < 0 || list->count > ZELTO_SHARE_COUNT) return kFailed;
  return guarded(kFailed, [&] { return set_shares(paths_of(*list)); });
}

int del_samba_share_dir(const char* path) {
  if (path == nullptr) return kFailed;
  return guarded(kFailed, [&] { return remove_share(path); });
}
