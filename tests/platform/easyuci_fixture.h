// Short names for the store's functions on one package, `probe`, which no firmware has.
#pragma once

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <platform/easy_uci.h>

#include "board/board.h"

namespace easyuci_test {

inline const std::string kFolder = "/etc/config";
inline const std::string kFile = kFolder + "/probe";
inline constexpr const char* kProbe = "probe";

inline std::optional<std::string> get(const char* section, const char* option) {
  std::string value(20000, '\0');
  if (easy_uci_get_option_string(kProbe, section, option, value.data(), 19999) != 0) return {};
  return value.c_str();
}

inline int set(const char* section, const std::string& option, const std::string& value) {
  return easy_uci_set_option_string(kProbe, section, option.c_str(), value.c_str());
}

inline int add(const char* type, const char* name) {
  return easy_uci_add_section(kProbe, type, name);
}

inline std::optional<std::string> nth(const char* type, int n) {
  std::array<char, EASY_UCI_NAME_SIZE> name{};
  if (easy_uci_get_nth_section_of_type(kProbe, type, n, name.data()) != 0) return {};
  return name.data();
}

inline std::optional<std::string> type_of(const char* section) {
  std::array<char, 64> type{};
  if (easy_uci_get_section_type(kProbe, section, type.data(), type.size()) != 0) return {};
  return type.data();
}

inline struct stat facts_of(const std::string& path) {
  struct stat facts {};
  EXPECT_EQ(::stat(path.c_str(), &facts), 0) << path;
  return facts;
}

// Lock and temporary files of the package.
inline std::vector<std::string> files_beside_probe() {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(kFolder)) {
    const std::string name = entry.path().filename();
    if (name.find("probe") != std::string::npos && name != "probe") names.push_back(name);
  }
  return names;
}

class EasyUci : public testing::Test {
 protected:
  void SetUp() override {
    board::reset();
    std::filesystem::remove(kFile);
  }
};

}  // namespace easyuci_test
