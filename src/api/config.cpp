#include "api/config.h"

#include <array>

#include <platform/easy_uci.h>

#include "api/log.h"
#include "api/text.h"

namespace zelto::config {
namespace {

// Larger than any value the store should hold, so that its library never has to cut.
constexpr std::size_t kBufferSize = 4096;
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

bool write(const Option& option, const std::string& value) {
  return text::is_storable(value, kBufferSize - 1) &&
         easy_uci_set_option_string(option.package, option.section, option.name, value.c_str()) !=
             kStoreFailed;
}

bool write_or_log(const Option& option, const std::string& value, const char* what) {
  if (write(option, value)) return true;
  log::error(text::format("set %s to %s failed!\n", what, value.c_str()));
  return false;
}

void remove(const Option& option) {
  easy_uci_delete_option(option.package, option.section, option.name);
}

void remove_section(const char* package, const char* section) {
  easy_uci_delete_section(package, section);
}

}  // namespace zelto::config
