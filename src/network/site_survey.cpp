#include "network/site_survey.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "api/text.h"

namespace zelto::survey {
namespace {

constexpr char kBlank = ' ';
constexpr std::string_view kBlanks = " \t\r";

template <std::size_t kSize>
void copy(std::string_view text, char (&target)[kSize]) {
  text::copy(text, target, kSize);
}

// Words of a line, from left to right.
class Words {
 public:
  explicit Words(std::string_view text) : rest_(text) {}

  std::string_view next() {
    const auto begin = std::min(rest_.find_first_not_of(kBlanks), rest_.size());
    const auto end = std::min(rest_.find_first_of(kBlanks, begin), rest_.size());
    const auto word = rest_.substr(begin, end - begin);
    rest_.remove_prefix(end);
    return word;
  }

 private:
  std::string_view rest_;
};

std::optional<int> number(std::string_view text) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc()) return std::nullopt;
  return value;
}

}  // namespace

std::optional<ScanRecord> Parser::parse(std::string_view line) {
  if (lines_ < columns_.header_lines) {
    ++lines_;
    return std::nullopt;
  }
  if (line.size() <= columns_.rest) return std::nullopt;
  const auto name = cut_ssid(line.substr(columns_.ssid, kSsidColumns));
  const auto ssid = text::in_buffer(name.data(), name.size());
  const auto channel = number(Words(line.substr(columns_.channel)).next());
  Words rest(line.substr(columns_.rest));
  const auto bssid = rest.next();
  const auto security = rest.next();
  const auto signal = number(rest.next());
  rest.next();  // 802.11 mode
  if (ssid.empty() || !channel || !signal) return std::nullopt;

  ScanRecord record{};
  record.signal = *signal;
  record.channel = *channel;
  copy(ssid, record.ssid);
  copy(bssid, record.bssid);
  copy(rest.next(), record.ext_ch);
  copy(security, record.security);
  return record;
}

// The padding begins with the last run of blanks. A name that fills its columns has none, and ends
// where the one before it did.
std::string_view Parser::cut_ssid(std::string_view field) {
  if (field.front() == kBlank) {
    cut_ = 0;
  } else if (const auto last_blank = field.find_last_of(kBlank);
             last_blank != std::string_view::npos) {
    cut_ = field.find_last_not_of(kBlank, last_blank) + 1;
  }
  return field.substr(0, cut_);
}

void parse(std::string_view text, const Columns& columns, ScanList& list) {
  Parser parser(columns);
  list.count = 0;
  while (!text.empty() && list.count < ZELTO_SCAN_LIMIT) {
    const auto [line, others] = text::split_first(text, '\n');
    if (const auto record = parser.parse(line)) list.records[list.count++] = *record;
    text = others;
  }
}

}  // namespace zelto::survey

// A stable sort: networks of equal signal keep the order of the survey.
void sort_scan_list(ScanList* list) {
  if (list == nullptr) return;
  auto* const begin = static_cast<ScanRecord*>(list->records);
  const auto count = std::clamp<int>(list->count, 0, ZELTO_SCAN_CAPACITY);
  // Strongest first, equals as they came. So few need no stable_sort, which is ten times the code.
  const auto is_stronger = [](const ScanRecord& a, const ScanRecord& b) {
    return a.signal > b.signal;
  };
  for (auto* record = begin; record != begin + count; ++record) {
    std::rotate(std::upper_bound(begin, record, *record, is_stronger), record, record + 1);
  }
}
