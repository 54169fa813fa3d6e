#include "api/config.h"

#include <array>

#include <platform/easy_uci.h>

#include "api/log.h"
#include "api/text.h"

namespace zelto::config {
namespace {

// Larger than any value the store should hold, so that its library never has to cut.
constexpr std::size_t kBufferSize = 4096;
constexpr std::size_t kNameSize = 512;  // what firmwares' libraries are known to need
constexpr int kStoreFailed = -1;

}  // namespace

std::optional<std::string> read(const Option& option, std::size_t longest) {
  std::array<char, kBufferSize> buffer;
  buffer[0] = '\0';
  if (easy_uci_get_option_string(option.package, option.section, option.name, buffer.data(),
                                 static_cast<int>(buffer.size() - 1)) == kStoreFailed) {
    return std::nullopt;
  }
  return std::string(text::in_buffer(buffer.data(), buffer.size()).substr(0, longest));
}

std::string read_or_empty(const Option& option, std::size_t longest) {
  return read(option, longest).value_or("");
}

bool write(const Option& option, std::string_view value) {
  return text::is_storable(value, kBufferSize - 1) &&
         easy_uci_set_option_string(option.package, option.section, option.name,
                                    std::string(value).c_str()) != kStoreFailed;
}

bool write_or_log(const Option& option, std::string_view value, const char* what) {
  if (write(option, value)) return true;
  log::error(text::format("set %s to %s failed!\n", what, std::string(value).c_str()));
  return false;
}

void remove(const Option& option) {
  easy_uci_delete_option(option.package, option.section, option.name);
}

void add_section(const char* package, const char* type, const char* name) {
  easy_uci_add_section(package, type, name);
}

void write_section(const char* package, const std::string& section,
                   std::initializer_list<Value> values) {
  for (const auto& [option, value] : values) write({package, section.c_str(), option}, value);
}

bool remove_section(const char* package, const std::string& section) {
  return easy_uci_delete_section(package, section.c_str()) != kStoreFailed;
}

bool section_exists(const char* package, const std::string& section) {
  std::array<char, kNameSize> type{};
  return easy_uci_get_section_type(package, section.c_str(), type.data(),
                                   static_cast<int>(type.size())) != kStoreFailed;
}

std::optional<std::string> section_of_type(const char* package, const char* type, int n) {
  std::array<char, kNameSize> name{};
  if (easy_uci_get_nth_section_of_type(package, type, n, name.data()) != 0) return std::nullopt;
  return std::string(text::in_buffer(name.data(), name.size()));
}

}  // namespace zelto::config
