#include "storage/sharing.h"

#include <memory>
#include <string>
#include <vector>

#include <zelto/storage.h>

#include "api/envelope.h"
#include "api/log.h"
#include "api/shell.h"
#include "api/text.h"
#include "storage/disks.h"

namespace zelto {

int hand_out(const Account& account, char* user, char* password) {
  if (!account.is_set()) return 0;
  if (user != nullptr) text::copy(account.user, user, ZELTO_SHARE_PATH_SIZE);
  if (password != nullptr) text::copy(account.password, password, ZELTO_SHARE_PATH_SIZE);
  return 0;
}

namespace {

constexpr int kTooManyShares = 2;

std::unique_ptr<ZeltoShareList> empty_list() {
  return std::make_unique<ZeltoShareList>();
}

// What a change ends with.
void finish(const FileService& service, int outcome, Reply& reply) {
  reply.result(outcome);
  if (outcome == kDone) reply.afterwards([&service] { shell::start(service.restart); });
}

// ---- both services

void add_service(const FileService& service, Reply& reply) {
  const auto account = accounts::read(service.account_file);
  reply.text("Switch", config::read_or_empty(service.state) == "1" ? "on" : "off");
  reply.text(service.user, account.user);
  reply.text(service.password, account.password);
}

using SetAccount = int (*)(const char* user, const char* password);

// While Samba is switched off it is stopped again, and then started by the restart that ends every
// change.
void change_account(const FileService& service, SetAccount set, const Request& request,
                    Reply& reply) {
  const auto user = request.text(service.user);
  const auto password = request.text(service.password);
  if (!user || !password) return reply.result(kFailed);
  finish(service, set(user->data(), password->data()), reply);
}

void change_switch(const FileService& service, const Request& request, Reply& reply) {
  const auto state = request.text("Switch");
  if (!state) return reply.result(kFailed);
  const bool is_on = *state == "on";
  config::write(service.state, is_on ? "1" : "0");
  reply.result(kDone);
  reply.afterwards([&service, is_on] { shell::start(is_on ? service.restart : service.stop); });
}

using ChangePath = int (*)(const char* path);

void change_path(const FileService& service, const char* member, ChangePath change,
                 const Request& request, Reply& reply) {
  const auto path = request.text(member);
  finish(service, path ? change(path->data()) : kFailed, reply);
}

// ---- Samba's list

void add_shares(Reply& reply) {
  const auto shares = empty_list();
  get_samba_share_dir(shares.get());
  auto list = reply.list("list");
  for (int i = 0; i < shares->count; ++i) list.add().text("path", shares->paths[i]);
}

int set_shares(const std::vector<Members>& entries) {
  const auto shares = empty_list();
  for (const auto& entry : entries) {
    const auto path = entry.text("sambapath");
    if (!path || path->size() > disks::kLongestLine) {
      log::refused("setsambapath");
      return kFailed;
    }
    text::copy(*path, shares->paths[shares->count++], ZELTO_SHARE_PATH_SIZE);
  }
  return set_samba_share_dir(shares.get());
}

void change_shares(const Request& request, Reply& reply) {
  const auto entries = request.list("list");
  if (!entries) return reply.result(kFailed);
  if (entries->size() > ZELTO_SHARE_COUNT) return reply.result(kTooManyShares);
  finish(kSamba, set_shares(*entries), reply);
}

}  // namespace
}  // namespace zelto

using namespace zelto;

int bs_GetFtpCfg(const char* request, char* out) {
  return answer({.type = "getftpcfg"}, request, out, [](const Request&, Reply& reply) {
    add_service(kFtp, reply);
    std::string home(ZELTO_SHARE_PATH_SIZE, '\0');
    get_ftp_share_dir(home.data());
    reply.text("path", home.c_str());
  });
}

int bs_GetSambaCfg(const char* request, char* out) {
  return answer({.type = "getsambacfg"}, request, out, [](const Request&, Reply& reply) {
    add_service(kSamba, reply);
    add_shares(reply);
  });
}

int bs_SetFtpCfg(const char* request, char* out) {
  return answer({.type = "setftpcfg"}, request, out, [](const Request& parsed, Reply& reply) {
    change_account(kFtp, set_ftp_user_passwd, parsed, reply);
  });
}

int bs_SetSambaCfg(const char* request, char* out) {
  return answer({.type = "setsambacfg"}, request, out, [](const Request& parsed, Reply& reply) {
    change_account(kSamba, set_samba_user_passwd, parsed, reply);
  });
}

int bs_SetFtpSwitch(const char* request, char* out) {
  return answer({.type = "setftpswitch"}, request, out,
                [](const Request& parsed, Reply& reply) { change_switch(kFtp, parsed, reply); });
}

int bs_SetSambaSwitch(const char* request, char* out) {
  return answer({.type = "setsambaswitch"}, request, out,
                [](const Request& parsed, Reply& reply) { change_switch(kSamba, parsed, reply); });
}

int bs_SetFtpPath(const char* request, char* out) {
  return answer({.type = "setftppath"}, request, out, [](const Request& parsed, Reply& reply) {
    change_path(kFtp, "ftppath", set_ftp_share_dir, parsed, reply);
  });
}

int bs_DelFtpPath(const char* request, char* out) {
  return answer({.type = "delftppath"}, request, out,
                [](const Request&, Reply& reply) { finish(kFtp, del_ftp_share_dir(), reply); });
}

int bs_SetSambaPath(const char* request, char* out) {
  return answer({.type = "setsambapath"}, request, out, change_shares);
}

int bs_DelSambaPath(const char* request, char* out) {
  return answer({.type = "delsambapath"}, request, out, [](const Request& parsed, Reply& reply) {
    change_path(kSamba, "sambapath", del_samba_share_dir, parsed, reply);
  });
}
