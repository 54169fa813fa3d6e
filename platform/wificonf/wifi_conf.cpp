#include <exception>
#include <string>
#include <string_view>

#include <platform/wifi_conf.h>

#include "platform/common/read_file.h"
#include "platform/common/replace_file.h"
#include "platform/journal/journal.h"
#include "platform/wificonf/profile.h"

namespace {

struct Radio {
  const char* name;
  const char* profile_path;
  // Beside the profile, in a folder that only its owner can write to.
  const char* lock_path;
};

constexpr Radio kRadio2G = {"2.4G", "/etc/wireless/mt7628/mt7628.dat",
                            "/etc/wireless/mt7628/.mt7628.dat.lock"};
constexpr Radio kRadio5G = {"5G", "/etc/wireless/mt7663/mt7663.dat",
                            "/etc/wireless/mt7663/.mt7663.dat.lock"};

constexpr int kDone = 0;
constexpr int kFailed = -1;

bool is_storable(std::string_view key, int index, std::string_view value) {
  const char* const forbidden = index == WIFI_CONF_WHOLE_VALUE ? "\r\n" : "\r\n;";
  return wificonf::is_key(key) && index >= WIFI_CONF_WHOLE_VALUE && index < WIFI_CONF_NETWORKS &&
         value.find_first_of(forbidden) == std::string_view::npos;
}

std::string note(const Radio& radio, std::string_view key, int index, std::string_view value) {
  std::string line = std::string("wifi ") + radio.name + " set ";
  line += key;
  if (index != WIFI_CONF_WHOLE_VALUE) line += "[" + std::to_string(index) + "]";
  return line.append("=").append(value);
}

bool get(const Radio& radio, std::string_view key, int index, char* buffer) {
  if (!wificonf::is_key(key) || index < WIFI_CONF_WHOLE_VALUE) return false;
  const auto profile = platform::read_file(radio.profile_path);
  if (!profile) return false;
  auto value = wificonf::find_value(*profile, key);
  if (value && index != WIFI_CONF_WHOLE_VALUE) value = wificonf::find_element(*value, index);
  if (!value) return false;
  buffer[value->copy(buffer, WIFI_CONF_VALUE_SIZE - 1)] = '\0';
  return true;
}

bool set(const Radio& radio, std::string_view key, int index, std::string_view value) {
  if (!is_storable(key, index, value)) return false;
  const platform::FileLock lock(radio.lock_path);
  if (!lock.held()) return false;
  const auto profile = platform::read_file(radio.profile_path);
  if (!profile) return false;

  std::string whole(value);
  if (index != WIFI_CONF_WHOLE_VALUE) {
    const auto list = wificonf::find_value(*profile, key).value_or(std::string_view());
    whole = wificonf::with_element(list, index, value);
  }
  if (whole.size() >= WIFI_CONF_VALUE_SIZE) return false;

  // What is stored already costs the flash no write.
  const std::string changed = wificonf::with_value(*profile, key, whole);
  if (changed != *profile && !platform::replace_file(radio.profile_path, changed)) return false;
  journal::note(note(radio, key, index, value));
  return true;
}

// The two barriers: nothing, such as a want of memory, is thrown into a C caller.
int guarded_get(const Radio& radio, const char* key, int index, char* buffer) {
  if (buffer == nullptr) return kFailed;
  buffer[0] = '\0';
  if (key == nullptr) return kFailed;
  try {
    return get(radio, key, index, buffer) ? kDone : kFailed;
  } catch (const std::exception&) {
    return kFailed;
  }
}

int guarded_set(const Radio& radio, const char* key, int index, const char* value) {
  if (key == nullptr || value == nullptr) return kFailed;
  try {
    return set(radio, key, index, value) ? kDone : kFailed;
  } catch (const std::exception&) {
    return kFailed;
  }
}

}  // namespace

int lib_conf_get_2G(const char* key, int index, char* buffer) {
  return guarded_get(kRadio2G, key, index, buffer);
}

int lib_conf_get_5G(const char* key, int index, char* buffer) {
  return guarded_get(kRadio5G, key, index, buffer);
}

int lib_conf_set_2G(const char* key, int index, const char* value) {
  return guarded_set(kRadio2G, key, index, value);
}

int lib_conf_set_5G(const char* key, int index, const char* value) {
  return guarded_set(kRadio5G, key, index, value);
}
