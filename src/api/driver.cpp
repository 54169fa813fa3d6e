#include "api/driver.h"

#include <array>
#include <cstddef>
#include <utility>

#include <platform/wifi_conf.h>

#include "api/log.h"
#include "api/text.h"

namespace zelto::driver {

const Profile k2G = {"2G", lib_conf_get_2G, lib_conf_set_2G};
const Profile k5G = {"5G", lib_conf_get_5G, lib_conf_set_5G};

std::optional<std::string> read(const Profile& profile, const char* key, Index index) {
  std::array<char, WIFI_CONF_VALUE_SIZE> value;
  value.front() = '\0';
  if (profile.get(key, index, value.data()) == -1) return std::nullopt;
  return std::string(text::in_buffer(value.data(), value.size()));
}

std::string read_or_empty(const Profile& profile, const char* key, Index index) {
  return read(profile, key, index).value_or("");
}

std::optional<std::string> read_or_log(const Profile& profile, const char* key, Index index) {
  auto value = read(profile, key, index);
  if (!value) log::error(text::format("lib_conf_get_%s %s failed!\n", profile.name, key));
  return value;
}

bool read_all_or_log(const Profile& profile, std::initializer_list<Wanted> wanted) {
  for (const auto& one : wanted) {
    auto value = read_or_log(profile, one.key, one.index);
    if (!value) return false;
    one.value = std::move(*value);
  }
  return true;
}

void write(const Profile& profile, const char* key, Index index, std::string_view value) {
  profile.set(key, index, std::string(value).c_str());
}

bool is_element(std::string_view value, std::size_t longest) {
  return text::is_storable(value, longest) && value.find(';') == std::string::npos;
}

}  // namespace zelto::driver
