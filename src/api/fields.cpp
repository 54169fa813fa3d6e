// The table of fields, and the walks over it.

#include <cstddef>
#include <string>
#include <string_view>

#include <zelto/fields.h>

#include "api/boundary.h"
#include "api/files.h"
#include "api/interface.h"
#include "api/log.h"
#include "api/text.h"

FieldRow cmd_convert[ZELTO_FIELD_COUNT] = {
    {"lan_mac", "br-lan", zelto_get_general_mac, nullptr, nullptr, nullptr},
    {"wan_mac", "eth0.2", zelto_get_general_mac, nullptr, nullptr, nullptr},
    {"wanmode", "wanConnectionMode", zelto_get_general_cfg, zelto_set_general_cfg, nullptr,
     nullptr},
    {"wanip", "wan_ipaddr", zelto_get_general_cfg, zelto_set_general_cfg, nullptr, nullptr},
    {"wanmsk", "wan_netmask", zelto_get_general_cfg, zelto_set_general_cfg, nullptr, nullptr},
    {"wangw", "wan_gateway", zelto_get_general_cfg, zelto_set_general_cfg, nullptr, nullptr},
    {"dns1", "wan_primary_dns", zelto_get_general_cfg, zelto_set_general_cfg, nullptr, nullptr},
    {"dns2", "wan_secondary_dns", zelto_get_general_cfg, zelto_set_general_cfg, nullptr, nullptr},
    {"mtu", "MTUpppoevalue", zelto_get_general_cfg, zelto_set_general_cfg, nullptr, nullptr},
    {"pppoename", "wan_pppoe_user", zelto_get_general_cfg, zelto_set_general_cfg, nullptr, nullptr},
    {"pppoepsw", "wan_pppoe_pass", zelto_get_general_cfg, zelto_set_general_cfg, nullptr, nullptr},
    {"server_name", "wan_pppoe_server", zelto_get_general_cfg, zelto_set_general_cfg, nullptr,
     nullptr},
    {"lanip", "lan_ipaddr", zelto_get_general_cfg, zelto_set_general_cfg, nullptr,
     write_lan_ip_dep},
    {"lanmsk", "lan_netmask", zelto_get_general_cfg, zelto_set_general_cfg, nullptr, nullptr},
    {"landhcp", "dhcpEnabled", zelto_get_general_cfg, zelto_set_general_cfg, nullptr, nullptr},
    {"startip", "dhcpStart", zelto_get_general_cfg, zelto_set_general_cfg, nullptr, nullptr},
    {"endip", "dhcpEnd", zelto_get_general_cfg, zelto_set_general_cfg, nullptr, nullptr},
    {"version", "version", GetFWVersion, nullptr, nullptr, nullptr},
};

static_assert(sizeof(FieldRow) == std::size_t{2} * ZELTO_FIELD_TEXT_SIZE + 4 * sizeof(void (*)()));
static_assert(sizeof cmd_convert == ZELTO_FIELD_COUNT * sizeof(FieldRow));

namespace {

using zelto::guarded;
using zelto::text::in_buffer;

constexpr const char* kVersionFile = "/etc/FW-Version";
constexpr std::size_t kVersionLength = 49;
constexpr std::size_t kMacSize = 18;
constexpr int kRefused = -1;

// Writes one row; a failed write counts as done when the row has a function for that case.
int set_row(const FieldRow& row, const char* value) {
  if (row.setter == nullptr) return kRefused;
  if (row.validator != nullptr && row.validator(value) == 0) {
    const std::string field(in_buffer(row.web_field));
    zelto::log::error(zelto::text::format("%s: Parameters invalid\n", field.c_str()));
    return kRefused;
  }
  const std::string key(in_buffer(row.config_key));
  if (row.setter(key.c_str(), value) != kRefused) return 0;
  if (row.after_failed_set == nullptr) return kRefused;
  row.after_failed_set(key.c_str(), value);
  return 0;
}

}  // namespace

int zelto_get_config(const char* web_field, char* output) {
  if (web_field == nullptr || output == nullptr) return 0;
  return guarded(-1, [&] {
    for (const auto& row : cmd_convert) {
      if (in_buffer(row.web_field) != web_field) continue;
      if (row.getter == nullptr) return -1;
      return row.getter(std::string(in_buffer(row.config_key)).c_str(), output);
    }
    return 0;
  });
}

int zelto_set_config(const char* web_field, const char* value) {
  if (web_field == nullptr || value == nullptr) return kRefused;
  return guarded(kRefused, [&] {
    for (const auto& row : cmd_convert) {
      if (in_buffer(row.web_field) == web_field && set_row(row, value) == kRefused) {
        return kRefused;
      }
    }
    return 0;
  });
}

int write_lan_ip_dep(const char* key, const char* value) {
  if (key == nullptr || std::string_view(key) != "lan_ipaddr") return -1;
  zelto_set_general_cfg("dhcpPriDns", value);
  zelto_set_general_cfg("dhcpGateway", value);
  return 0;
}

int zelto_get_general_mac(const char* interface, char* output) {
  return guarded(-1, [&] {
    const auto mac = zelto::interface::hardware_address(interface);
    if (!mac) return -1;
    zelto::text::copy(*mac, output, kMacSize);
    return 0;
  });
}

int GetFWVersion(const char* /*key*/, char* output) {
  return guarded(1, [&] {
    const auto file = zelto::files::open(kVersionFile);
    if (!file) {
      zelto::log::error("open file /etc/FW-Version failed \n");
      return 1;
    }
    const auto line = zelto::files::read_line(file.get(), kVersionLength).value_or("");
    zelto::text::copy(zelto::text::without_line_end(line), output, kVersionLength + 1);
    return 0;
  });
}
