#include "storage/accounts.h"

#include <algorithm>
#include <cstddef>

#include "api/files.h"
#include "api/text.h"
#include "storage/disks.h"

namespace zelto::accounts {
namespace {

constexpr const char* kUsers = "/etc/passwd";
constexpr std::size_t kLongestUser = 32;
// Ids of people's accounts; "nobody", at the upper end of all ids, is one of the system's.
constexpr int kFirstOrdinaryId = 1000;
constexpr int kLastOrdinaryId = 60000;

bool is_portable(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
         c == '-' || c == '.';
}

// A list of users that cannot be read may hold any.
bool is_of_system(std::string_view user) {
  const auto file = files::open(kUsers);
  if (!file) return true;
  while (const auto line = files::read_line(file.get(), std::string::npos)) {
    const auto [name, behind_name] = text::split_first(*line, ':');
    if (name != user) continue;
    const auto id = text::to_int(text::split_first(behind_name, ':').second);
    if (id < kFirstOrdinaryId || id > kLastOrdinaryId) return true;
  }
  return false;
}

// echo would take it for one of its options.
bool is_option_of_echo(std::string_view text) {
  return text.size() > 1 && text.front() == '-' &&
         text.find_first_not_of("neE", 1) == std::string_view::npos;
}

bool is_account(const disks::Lines& lines) {
  return lines.size() >= 2 && is_user(lines[0]) && is_password(lines[1]);
}

}  // namespace

bool is_user(std::string_view user) {
  // Without a letter it could be taken for an id or a folder: useradd refuses such names.
  return user.find_first_not_of("0123456789.") != std::string_view::npos &&
         user.size() <= kLongestUser && user.front() != '-' &&
         std::all_of(user.begin(), user.end(), is_portable) && !is_of_system(user);
}

bool is_password(std::string_view password) {
  return disks::is_line(password) && !is_option_of_echo(password);
}

Account read(const char* file) {
  const auto lines = disks::read_first(file, is_account);
  return lines ? Account{(*lines)[0], (*lines)[1]} : Account{};
}

bool write(const char* file, const Account& account) {
  return disks::write(file, {account.user, account.password});
}

bool is_shared(const Account& old, const Account& other) {
  return other.is_set() && other.user == old.user;
}

}  // namespace zelto::accounts
