#include "platform/easyuci/text.h"

#include <algorithm>
#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

namespace easyuci {
namespace {

constexpr std::string_view kBlanks = " \t\r\v\f";
// A section type that holds one of these would not read back as one word without quotes.
constexpr std::string_view kNotBare = "'\"\\#;";

bool is_blank(char character) {
  return kBlanks.find(character) != std::string_view::npos;
}

// Takes a text apart into lines of words. Quotes may carry a line over several lines of text.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : text_(text) {}

  bool at_end() const { return position_ == text_.size(); }

  // The words of the next line; nothing when a quote or a backslash is left open.
  std::optional<std::vector<std::string>> line() {
    std::vector<std::string> words;
    while (!at_end()) {
      const char next = text_[position_];
      if (next == '\n') {
        ++position_;
        break;
      }
      if (is_blank(next)) {
        ++position_;
      } else if (next == '#') {
        position_ = std::min(text_.find('\n', position_), text_.size());
      } else if (text_.substr(position_, 2) == "\\\n") {
        position_ += 2;
      } else if (!word(words.emplace_back())) {
        return std::nullopt;
      }
    }
    return words;
  }

 private:
  // Quoted and bare parts without a blank between them make one word.
  bool word(std::string& word) {
    while (!at_end()) {
      const char next = text_[position_];
      if (next == '\n' || next == '#' || is_blank(next)) break;
      bool whole = true;
      if (next == '\'') {
        whole = single_quoted(word);
      } else if (next == '"') {
        whole = double_quoted(word);
      } else if (next == '\\') {
        whole = escaped(word);
      } else {
        word += next;
        ++position_;
      }
      if (!whole) return false;
    }
    return true;
  }

  bool single_quoted(std::string& word) {
    const size_t end = text_.find('\'', position_ + 1);
    if (end == std::string_view::npos) return false;
    word += text_.substr(position_ + 1, end - position_ - 1);
    position_ = end + 1;
    return true;
  }

  bool double_quoted(std::string& word) {
    ++position_;
    while (!at_end()) {
      const char next = text_[position_];
      if (next == '\\') {
        if (!escaped(word)) return false;
        continue;
      }
      ++position_;
      if (next == '"') return true;
      word += next;
    }
    return false;
  }

  // A backslash takes the next character as it is; before a line end it joins the two lines.
  bool escaped(std::string& word) {
    if (position_ + 1 == text_.size()) return false;
    const char next = text_[position_ + 1];
    if (next != '\n') word += next;
    position_ += 2;
    return true;
  }

  std::string_view text_;
  size_t position_ = 0;
};

// Makes sections of lines. Options are only collected at first: finding the repeated ones after
// the end of the file costs one pass, however many there are.
class Builder {
 public:
  bool take(std::vector<std::string> words) {
    if (words.empty()) return true;
    const std::string keyword = words.front();
    if (is_keyword(keyword, "package")) return words.size() == 2 && is_package_name(words[1]);
    if (is_keyword(keyword, "config")) return open_section(std::move(words));
    if (is_keyword(keyword, "option")) return add_option(std::move(words), false);
    if (is_keyword(keyword, "list")) return add_option(std::move(words), true);
    return false;
  }

  Package finish() {
    for (Section& section : sections_) fold_repeated_options(section);
    return Package(std::move(sections_));
  }

 private:
  static bool is_keyword(std::string_view word, std::string_view keyword) {
    return word == keyword || word == keyword.substr(0, 1);
  }

  // A name that was there before opens that section again, and gives it the later type.
  bool open_section(std::vector<std::string> words) {
    if (words.size() < 2 || words.size() > 3 || !is_type(words[1])) return false;
    const bool anonymous = words.size() == 2 || words[2].empty();
    current_ = sections_.size();
    if (!anonymous) {
      if (!is_name(words[2])) return false;
      current_ = by_name_.try_emplace(words[2], current_).first->second;
    }
    if (current_ < sections_.size()) {
      sections_[current_].type = std::move(words[1]);
    } else {
      sections_.push_back(
          {std::move(words[1]), anonymous ? std::string() : std::move(words[2]), anonymous, {}});
    }
    return true;
  }

  bool add_option(std::vector<std::string> words, bool is_list) {
    if (sections_.empty() || words.size() < 2 || words.size() > 3 || !is_name(words[1])) {
      return false;
    }
    words.resize(3);
    sections_[current_].options.push_back({std::move(words[1]), {std::move(words[2])}, is_list});
    return true;
  }

  // Of a repeated option the last holds, an empty one means that there is none, and list items
  // gather behind what is there.
  static void fold_repeated_options(Section& section) {
    std::vector<Option> folded;
    std::unordered_map<std::string_view, size_t> places;
    for (Option& given : section.options) {
      const auto [entry, is_first] = places.try_emplace(given.name, folded.size());
      if (is_first) folded.push_back({given.name, {}, false});
      Option& option = folded[entry->second];
      option.is_list = given.is_list;
      if (!given.is_list) option.items.clear();
      std::string& value = given.items.front();
      if (given.is_list || !value.empty()) option.items.push_back(std::move(value));
    }
    std::erase_if(folded, [](const Option& option) { return option.items.empty(); });
    section.options = std::move(folded);
  }

  std::vector<Section> sections_;
  std::unordered_map<std::string, size_t> by_name_;
  size_t current_ = 0;
};

void print_quoted(std::string& text, std::string_view value) {
  text += '\'';
  for (const char character : value) {
    if (character == '\'') {
      text += "'\\''";
    } else {
      text += character;
    }
  }
  text += '\'';
}

void print_section(std::string& text, const Section& section) {
  text += "\nconfig ";
  if (section.type.find_first_of(kNotBare) == std::string::npos) {
    text += section.type;
  } else {
    print_quoted(text, section.type);
  }
  if (!section.anonymous) {
    text += ' ';
    print_quoted(text, section.name);
  }
  text += '\n';
  for (const Option& option : section.options) {
    for (const std::string& item : option.items) {
      text += option.is_list ? "\tlist " : "\toption ";
      text += option.name;
      text += ' ';
      print_quoted(text, item);
      text += '\n';
    }
  }
}

}  // namespace

std::optional<Package> parse(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) return std::nullopt;
  Scanner scanner(text);
  Builder builder;
  while (!scanner.at_end()) {
    auto words = scanner.line();
    if (!words || !builder.take(std::move(*words))) return std::nullopt;
  }
  return builder.finish();
}

std::string print(const Package& package) {
  std::string text;
  for (const Section& section : package.sections()) print_section(text, section);
  return text;
}

}  // namespace easyuci
