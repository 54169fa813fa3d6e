#include "cli/rpcd.h"

#include <array>
#include <string_view>

#include <zelto/zeltoapi.h>

#include "catalogue/catalogue.h"
#include "cli/json.h"

namespace cli::rpcd {
namespace {

namespace catalogue = zelto::catalogue;

// The daemon takes an argument's type from its sample.
std::string_view sample(std::string_view type) {
  if (type.starts_with("number")) return "0";
  if (type.starts_with("array")) return "[]";
  return R"("")";
}

std::string method(const catalogue::Command& command) {
  std::string arguments;
  for (const auto& member : command.request) {
    if (!arguments.empty()) arguments += ',';
    arguments.append(1, '"').append(member.name).append(R"(":)").append(sample(member.type));
  }
  return '"' + std::string(command.name) + R"(":{)" + arguments + "}";
}

std::string refusal(std::string_view type, int result) {
  return R"({"type":")" + std::string(type) + R"(","result":)" + std::to_string(result) + "}";
}

}  // namespace

std::string list() {
  std::string methods;
  for (const auto& command : catalogue::all()) {
    if (!methods.empty()) methods += ',';
    methods += method(command);
  }
  return "{" + methods + "}";
}

std::string call(const std::string& command, const std::string& arguments) {
  constexpr int kFailed = 1;
  constexpr int kUnknown = 6;
  const auto* known = catalogue::find(command);
  if (known == nullptr) return "{\"result\":" + std::to_string(kUnknown) + "}";
  const auto request = with_type(arguments, command);
  std::array<char, ZELTO_REPLY_SIZE> out{};
  if (!request || share_func(request->c_str(), out.data()) != 0 || out.front() == '\0') {
    return refusal(known->name, kFailed);
  }
  return out.data();
}

}  // namespace cli::rpcd
