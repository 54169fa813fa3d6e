// The FTP service's account and home directory.

#include <string>

#include <zelto/storage.h>

#include "api/boundary.h"
#include "api/log.h"
#include "api/reply.h"
#include "api/shell.h"
#include "api/text.h"
#include "storage/accounts.h"
#include "storage/disks.h"
#include "storage/sharing.h"

namespace zelto {
namespace {

constexpr const char* kHomeFile = ".ftp_share_dir";

std::string read_home() {
  const auto lines = disks::read_first(kHomeFile, [](const disks::Lines& found) {
    return !found.empty() && disks::is_on_disk(found.front());
  });
  return lines ? lines->front() : "";
}

// Without a home directory the account gets none: an empty word would be no directory.
void create_account(const Account& account, const std::string& home) {
  const std::string user = shell::word(account.user);
  const std::string place = home.empty() ? "" : "-d " + shell::word(home) + " ";
  shell::run("useradd " + place + "-s /bin/false " + user);
  shell::run("echo \"" + shell::inside_double_quotes(account.user + ":" + account.password) +
             "\" | chpasswd");
  shell::run("touch /etc/vsftpd/chroot_list");
}

void delete_account(const Account& account) {
  shell::run("userdel " + shell::word(account.user) + " 2>/dev/null");
}

int set_account(const Account& account) {
  if (!accounts::is_user(account.user) || !accounts::is_password(account.password)) {
    log::refused("setftpcfg");
    return kFailed;
  }
  const auto old = accounts::read(kFtp.account_file);
  if (!accounts::write(kFtp.account_file, account)) return kFailed;
  const auto other = accounts::read(kSamba.account_file);
  if (old.is_set() && !accounts::is_shared(old, other)) delete_account(old);
  shell::run("echo \"" + shell::inside_double_quotes(account.user) +
             "\" > /etc/vsftpd/vsftpd.users");
  create_account(account, read_home());
  return kDone;
}

// The account is made anew, for its home directory. There is none to be made before one is set.
int set_home(const disks::Lines& lines) {
  const auto account = accounts::read(kFtp.account_file);
  if (!disks::write(kHomeFile, lines)) return kFailed;
  if (!account.is_set()) return kDone;
  delete_account(account);
  create_account(account, lines.empty() ? "" : lines.front());
  return kDone;
}

}  // namespace
}  // namespace zelto

using namespace zelto;

void get_ftp_user_passwd(char* user, char* password) {
  guarded(0, [&] { return hand_out(accounts::read(kFtp.account_file), user, password); });
}

int set_ftp_user_passwd(const char* user, const char* password) {
  if (user == nullptr || password == nullptr) return kFailed;
  return guarded(kFailed, [&] { return set_account({user, password}); });
}

void get_ftp_share_dir(char* path) {
  if (path == nullptr) return;
  guarded(0, [&] {
    const auto home = read_home();
    if (!home.empty()) text::copy(home, path, ZELTO_SHARE_PATH_SIZE);
    return 0;
  });
}

int set_ftp_share_dir(const char* path) {
  if (path == nullptr) return kFailed;
  return guarded(kFailed, [&] {
    if (disks::is_on_disk(path)) return set_home({path});
    log::refused("setftppath");
    return kFailed;
  });
}

int del_ftp_share_dir() {
  return guarded(kFailed, [] { return set_home({}); });
}
