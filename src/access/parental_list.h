// The user's parental rules, one a line of /etc/parental_list.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "api/list_file.h"

namespace zelto::parental {

// The five words of a rule.
struct Rule {
  std::string alias;  // base64
  std::string device;
  std::string mac;
  std::string time;  // start and stop, joined by "-"
  std::string days;  // digits, "1" Monday to "7" Sunday
};

extern const ListFile kList;

// Nothing when the file cannot be opened.
std::optional<std::vector<Rule>> read_rules();

Rule parse(const std::string& record);
std::string print(const Rule& rule);

}  // namespace zelto::parental
