#include "platform/wificonf/profile.h"

#include <algorithm>
#include <cstddef>

namespace wificonf {
namespace {

constexpr char kElementSeparator = ';';

}  // namespace

bool is_key(std::string_view key) {
  const auto fits = [](char c) { return c > ' ' && c <= '~' && c != '='; };
  return !key.empty() && key.front() != '#' && std::all_of(key.begin(), key.end(), fits);
}

std::optional<std::string_view> find_value(std::string_view profile, std::string_view key) {
  while (!profile.empty()) {
    const size_t end = profile.find('\n');
    std::string_view line = profile.substr(0, end);
    profile.remove_prefix(end == std::string_view::npos ? profile.size() : end + 1);

    if (line.ends_with('\r')) line.remove_suffix(1);
    if (line.starts_with(key) && line.substr(key.size()).starts_with('=')) {
      return line.substr(key.size() + 1);
    }
  }
  return std::nullopt;
}

std::string with_value(std::string_view profile, std::string_view key, std::string_view value) {
  std::string changed(profile);
  if (const auto old = find_value(profile, key)) {
    const auto position = static_cast<size_t>(old->data() - profile.data());
    return changed.replace(position, old->size(), value);
  }
  if (!changed.empty() && changed.back() != '\n') changed += '\n';
  return changed.append(key).append("=").append(value).append("\n");
}

std::optional<std::string_view> find_element(std::string_view list, int index) {
  for (; index > 0; --index) {
    const size_t separator = list.find(kElementSeparator);
    if (separator == std::string_view::npos) return std::nullopt;
    list.remove_prefix(separator + 1);
  }
  return list.substr(0, list.find(kElementSeparator));
}

std::string with_element(std::string_view list, int index, std::string_view element) {
  std::string changed(list);
  const auto count = std::count(list.begin(), list.end(), kElementSeparator) + 1;
  if (index >= count) changed.append(static_cast<size_t>(index + 1 - count), kElementSeparator);

  const auto old = find_element(changed, index);
  const auto position = static_cast<size_t>(old->data() - changed.data());
  return changed.replace(position, old->size(), element);
}

}  // namespace wificonf
