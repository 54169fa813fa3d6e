// uci: reads and writes the configuration store from the command line.
#include <algorithm>
#include <array>
#include <cstddef>
#include <iostream>
#include <string>
#include <string_view>
#include <vector>

#include <platform/easy_uci.h>

namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;
constexpr size_t kLongestValue = 65536;

constexpr const char* kUsage =
    "usage: uci get PACKAGE.SECTION[.OPTION]          print a value, or a section's type\n"
    "       uci set PACKAGE.SECTION.OPTION=VALUE      store a value\n"
    "       uci set PACKAGE.SECTION=TYPE              add a section\n"
    "       uci delete PACKAGE.SECTION[.OPTION]\n";

struct Place {
  std::string package;
  std::string section;
  std::string option;  // empty for the section itself
};

bool split(std::string_view text, Place& place) {
  std::vector<std::string> parts;
  for (size_t start = 0; start <= text.size();) {
    const size_t end = std::min(text.find('.', start), text.size());
    parts.emplace_back(text.substr(start, end - start));
    if (parts.back().empty()) return false;
    start = end + 1;
  }
  if (parts.size() != 2 && parts.size() != 3) return false;
  parts.resize(3);
  place = {parts[0], parts[1], parts[2]};
  return true;
}

int get(const Place& place) {
  std::array<char, kLongestValue + 1> value{};
  const int status =
      place.option.empty()
          ? easy_uci_get_section_type(place.package.c_str(), place.section.c_str(), value.data(),
                                      static_cast<int>(value.size()))
          : easy_uci_get_option_string(place.package.c_str(), place.section.c_str(),
                                       place.option.c_str(), value.data(), kLongestValue);
  return status == 0 && std::cout << value.data() << std::endl ? 0 : -1;
}

int set(const Place& place, const std::string& value) {
  return place.option.empty()
             ? easy_uci_add_section(place.package.c_str(), value.c_str(), place.section.c_str())
             : easy_uci_set_option_string(place.package.c_str(), place.section.c_str(),
                                          place.option.c_str(), value.c_str());
}

int remove(const Place& place) {
  return place.option.empty()
             ? easy_uci_delete_section(place.package.c_str(), place.section.c_str())
             : easy_uci_delete_option(place.package.c_str(), place.section.c_str(),
                                      place.option.c_str());
}

int run(std::string_view verb, std::string_view argument) {
  const size_t equals = argument.find('=');
  const bool has_value = equals != std::string_view::npos;
  Place place;
  if (has_value != (verb == "set") || !split(argument.substr(0, equals), place)) {
    return kWrongUsage;
  }
  int status = 0;
  if (verb == "get") {
    status = get(place);
  } else if (verb == "set") {
    status = set(place, std::string(argument.substr(equals + 1)));
  } else if (verb == "delete") {
    status = remove(place);
  } else {
    return kWrongUsage;
  }
  if (status != 0) {
    std::cerr << "uci: " << verb << ' ' << argument << " failed\n";
  }
  return status == 0 ? kDone : kFailed;
}

}  // namespace

int main(int argc, char** argv) {
  const int status = argc == 3 ? run(argv[1], argv[2]) : kWrongUsage;
  if (status == kWrongUsage) std::cerr << kUsage;
  return status;
}
