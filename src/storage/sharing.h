// The two services that share a disk, over what is different between them.
#pragma once

#include "api/config.h"
#include "storage/accounts.h"

namespace zelto {

struct FileService {
  const char* account_file;  // at the top of a disk
  config::Option state;      // its switch
  const char* user;          // members of requests and replies
  const char* password;
  const char* restart;  // commands
  const char* stop;
};

inline constexpr FileService kFtp = {
    .account_file = ".ftp_user_pass",
    .state = {"system", "route", "vsftpd"},
    .user = "ftpuser",
    .password = "ftppasswd",
    .restart = "/etc/init.d/vsftpd restart &",
    .stop = "/etc/init.d/vsftpd stop &",
};
inline constexpr FileService kSamba = {
    .account_file = ".samba_user_pass",
    .state = {"system", "route", "samba"},
    .user = "sambauser",
    .password = "sambapasswd",
    .restart = "/etc/init.d/samba restart &",
    .stop = "/etc/init.d/samba stop &",
};

// Gives an account that is set to a caller's buffers of ZELTO_SHARE_PATH_SIZE bytes. Returns 0.
int hand_out(const Account& account, char* user, char* password);

}  // namespace zelto
