#include "gateway/account.h"

#include <array>
#include <cstddef>

#include <platform/easy_uci.h>

namespace gateway {
namespace {

// As the library has it for logging in.
constexpr std::size_t kLongestPassword = 127;

std::string read(const char* package, const char* section, const char* option) {
  std::array<char, 512> value{};
  const int status = easy_uci_get_option_string(package, section, option, value.data(),
                                                static_cast<int>(value.size() - 1));
  return status == 0 ? value.data() : "";
}

}  // namespace

std::optional<std::string> administrator_password() {
  const std::string password = read("system", "route", "routepwd");
  if (password.empty() || read("system", "route", "routeusr").empty()) return std::nullopt;
  return password;
}

bool is_same_password(const std::string& presented, const std::string& stored) {
  if (stored.empty() || presented.size() > kLongestPassword) return false;
  volatile unsigned difference = presented.size() == stored.size() ? 0 : 1;
  for (std::size_t i = 0; i < presented.size(); ++i) {
    const auto one = static_cast<unsigned char>(presented[i]);
    const auto other = static_cast<unsigned char>(stored[i % stored.size()]);
    difference = difference | static_cast<unsigned>(one ^ other);
  }
  return difference == 0;
}

bool danger_is_allowed() {
  return read("zelto", "gateway", "danger") != "0";
}

std::string public_names() {
  return read("zelto", "gateway", "hosts");
}

}  // namespace gateway
