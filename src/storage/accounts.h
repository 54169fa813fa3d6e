// The accounts of the file services.
#pragma once

#include <string>
#include <string_view>

namespace zelto {

struct Account {
  std::string user;
  std::string password;

  bool is_set() const { return !user.empty() && !password.empty(); }
};

namespace accounts {

// Whether a service may have an account of this name: one word of letters, digits, "_", "-" and
// ".", none that useradd refuses, at most 32 characters, and none of the system's own accounts. An
// account that is set is deleted one day.
bool is_user(std::string_view user);

// Whether a password can be kept, and reaches the commands that set it as it is.
bool is_password(std::string_view password);

// The account that the first disk with a whole one brings; empty when none does.
Account read(const char* file);

bool write(const char* file, const Account& account);

// Whether `old` must stay when its own service gives it up, because the other service's account has
// the same name.
bool is_shared(const Account& old, const Account& other);

}  // namespace accounts
}  // namespace zelto
