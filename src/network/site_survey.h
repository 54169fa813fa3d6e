// What the radio drivers print of the networks around: fixed columns, one line a network.
#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include <zelto/network.h>

namespace zelto::survey {

// Where a driver prints what.
struct Columns {
  int header_lines;
  std::size_t channel;
  std::size_t ssid;
  std::size_t rest;  // BSSID, security, signal, mode, extension channel: words
};
inline constexpr Columns k2G = {2, 0, 4, 37};
inline constexpr Columns k5G = {3, 4, 8, 41};

// Reads networks out of the lines of a survey, one after the other.
class Parser {
 public:
  explicit Parser(const Columns& columns) : columns_(columns), cut_(kSsidColumns) {}

  // The network of a line, given without its line end; nothing for a heading, an empty line, a
  // network without a name, or a line that is none of a survey.
  std::optional<ScanRecord> parse(std::string_view line);

 private:
  static constexpr std::size_t kSsidColumns = 33;

  std::string_view cut_ssid(std::string_view field);

  const Columns& columns_;
  int lines_ = 0;
  std::size_t cut_;  // where the last name ended: also the end of one that fills its columns
};

// The networks of a whole survey, at most ZELTO_SCAN_LIMIT, in its order.
void parse(std::string_view text, const Columns& columns, ScanList& list);

}  // namespace zelto::survey
