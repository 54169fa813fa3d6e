#include "mobile/answers.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>

#include "api/text.h"

namespace zelto::mobile {
namespace {

constexpr std::size_t kLongestTechnology = 11;
constexpr int kTechnologyField = 4;

// 3GPP TS 27.007: 11 is NR connected to a 5G core, 13 E-UTRA and NR in dual connectivity.
constexpr int kStandalone = 11;
constexpr int kNonStandalone = 13;

constexpr CellQuery kStandaloneCell = {
    .prefix = "+QENG:", .only_with = "", .from = "", .field = 13};
constexpr CellQuery kNonStandaloneCell = {
    .prefix = nullptr, .only_with = "NSA", .from = "LTE", .field = 12};
constexpr CellQuery kLteCell = {.prefix = "LTE", .only_with = "", .from = "", .field = 12};

// A quality report's index counts dBm upwards from a floor (3GPP TS 27.007).
struct QualityIndex {
  int field;
  int floor;
};
constexpr QualityIndex kLtePower = {6, 140};
constexpr QualityIndex kNrPower = {8, 156};

// `zero` minus the number that a text begins with, held within the range of int.
int below(int zero, std::string_view number) {
  const long long difference = static_cast<long long>(zero) - text::to_int(number);
  constexpr long long kMost = std::numeric_limits<int>::max();
  return static_cast<int>(std::min(difference, kMost));
}

std::string_view from(std::string_view text, std::string_view mark) {
  const auto position = text.find(mark);
  return position == std::string_view::npos ? std::string_view() : text.substr(position);
}

std::string_view first_line(std::string_view text) {
  return text.substr(0, text.find_first_of("\r\n"));
}

}  // namespace

std::string_view field(std::string_view answer, int n) {
  for (;; --n) {
    const auto end = answer.find(',');
    const auto value = answer.substr(0, end);
    if (n == 1 || value.empty()) return value;
    if (end == std::string_view::npos) return {};
    answer.remove_prefix(end + 1);
  }
}

std::string technology_in(std::string_view answer) {
  return std::string(first_line(field(answer, kTechnologyField)).substr(0, kLongestTechnology));
}

bool is_5g(std::string_view technology) {
  const int number = text::to_int(technology);
  return number == kStandalone || number == kNonStandalone;
}

const char* network_name(std::string_view technology) {
  if (technology.empty()) return "unknow";
  return is_5g(technology) ? "5G" : "4G";
}

int quality_signal(std::string_view answer, std::string_view technology) {
  const auto& index = is_5g(technology) ? kNrPower : kLtePower;
  return below(index.floor, field(answer, index.field));
}

const CellQuery& cell_query(std::string_view technology) {
  const int number = text::to_int(technology);
  if (number == kStandalone) return kStandaloneCell;
  return number == kNonStandalone ? kNonStandaloneCell : kLteCell;
}

int cell_signal(std::string_view answer, const CellQuery& query) {
  const bool counts = answer.find(query.only_with) != std::string_view::npos;
  return counts ? below(0, field(from(answer, query.from), query.field)) : 0;
}

const char* bars(int signal) {
  struct Band {
    int weakest;
    int strongest;
    const char* bars;
  };
  // 32 is in no band.
  static constexpr std::array<Band, 4> kBands = {{
      {31, std::numeric_limits<int>::min(), "5"},
      {85, 33, "4"},
      {95, 86, "3"},
      {105, 96, "2"},
  }};
  for (const auto& band : kBands) {
    if (signal >= band.strongest && signal <= band.weakest) return band.bars;
  }
  return "1";
}

std::string_view service_name(std::string_view operator_name) {
  struct Service {
    std::string_view operator_name;
    std::string_view name;
  };
  static constexpr std::array<Service, 3> kServices = {{
      {"CHN-UNICOM", "UNICOM"},
      {"CHINA MOBILE", "CMCC"},
      {"CHN-CT", "CTNET"},
  }};
  if (operator_name.empty()) return "unknow";
  for (const auto& service : kServices) {
    if (service.operator_name.starts_with(operator_name)) return service.name;
  }
  return operator_name;
}

std::string_view revision_in(std::string_view answer) {
  const auto words = first_line(answer);
  const auto begin = words.find_first_not_of(' ', std::min(words.find(' '), words.size()));
  if (begin == std::string_view::npos) return {};
  return words.substr(begin, words.find(' ', begin) - begin);
}

}  // namespace zelto::mobile
