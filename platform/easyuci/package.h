// One UCI package in memory: its sections and options, and the changes that can be made to them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace easyuci {

struct Option {
  std::string name;
  std::vector<std::string> items;  // the value; of a list, all of them
  bool is_list = false;
};

struct Section {
  std::string type;
  std::string name;  // generated where the section is anonymous
  bool anonymous = false;
  std::vector<Option> options;
};

// Letters, digits and '_'. Every text that goes into a file unquoted passes one of these three, so
// that no name can open a line of its own or lead out of the configuration folder.
bool is_name(std::string_view text);
bool is_package_name(std::string_view text);
bool is_type(std::string_view text);

enum class Change {
  kMade,
  kNone,        // all is as wanted already
  kImpossible,  // what it asks for is not there, or a name is none
};

class Package {
 public:
  Package() = default;
  // Takes the sections of a file; generates the names of the anonymous ones.
  explicit Package(std::vector<Section> sections);

  const std::vector<Section>& sections() const { return sections_; }

  Change set_option(std::string_view section, std::string_view option, std::string_view value);
  Change delete_option(std::string_view section, std::string_view option);
  Change add_section(std::string_view type, std::string_view name);
  // The new section is the last of sections() then.
  Change add_anonymous_section(std::string_view type);
  Change delete_section(std::string_view section);

 private:
  std::vector<Section>::iterator locate(std::string_view section);
  void name_anonymous_sections();

  std::vector<Section> sections_;
};

}  // namespace easyuci
