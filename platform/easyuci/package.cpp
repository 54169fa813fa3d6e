#include "platform/easyuci/package.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <unordered_set>
#include <utility>

namespace easyuci {
namespace {

// Ordinals of anonymous sections show in two hexadecimal digits, or more where there are more.
constexpr size_t kOrdinalSpan = 0x100;

bool is_name_character(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9') || character == '_';
}

std::string generated_name(size_t ordinal, std::string_view type) {
  uint32_t hash = 5381;
  for (const char character : type) hash = hash * 33 + static_cast<unsigned char>(character);
  std::array<char, 32> name{};
  const int length =
      std::snprintf(name.data(), name.size(), "cfg%02zx%04x", ordinal, hash & 0xffffU);
  return {name.data(), static_cast<size_t>(length)};
}

std::vector<Option>::iterator locate_option(Section& section, std::string_view name) {
  return std::ranges::find(section.options, name, &Option::name);
}

}  // namespace

bool is_name(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, is_name_character);
}

bool is_package_name(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, [](char character) {
    return is_name_character(character) || character == '-';
  });
}

bool is_type(std::string_view text) {
  return !text.empty() && std::ranges::all_of(text, [](char character) {
    return character >= '!' && character <= '~';
  });
}

Package::Package(std::vector<Section> sections) : sections_(std::move(sections)) {
  name_anonymous_sections();
}

// A name written out in the file may look like a generated one; it keeps it, and the anonymous
// section moves on to the next free ordinal of the same last digits.
void Package::name_anonymous_sections() {
  std::unordered_set<std::string_view> taken;
  for (const Section& section : sections_) {
    if (!section.anonymous) taken.insert(section.name);
  }
  for (size_t index = 0; index < sections_.size(); ++index) {
    Section& section = sections_[index];
    if (!section.anonymous) continue;
    size_t ordinal = index + 1;
    do {
      section.name = generated_name(ordinal, section.type);
      ordinal += kOrdinalSpan;
    } while (!taken.insert(section.name).second);
  }
}

std::vector<Section>::iterator Package::locate(std::string_view section) {
  return std::ranges::find(sections_, section, &Section::name);
}

Change Package::set_option(std::string_view section, std::string_view option,
                           std::string_view value) {
  const auto place = locate(section);
  if (place == sections_.end() || !is_name(option)) return Change::kImpossible;

  const auto current = locate_option(*place, option);
  if (current == place->options.end()) {
    if (value.empty()) return Change::kNone;
    place->options.push_back({std::string(option), {std::string(value)}, false});
    return Change::kMade;
  }
  if (value.empty()) {
    place->options.erase(current);
    return Change::kMade;
  }
  if (!current->is_list && current->items.front() == value) return Change::kNone;
  current->items.assign(1, std::string(value));
  current->is_list = false;
  return Change::kMade;
}

Change Package::delete_option(std::string_view section, std::string_view option) {
  const auto place = locate(section);
  if (place == sections_.end()) return Change::kImpossible;
  const auto current = locate_option(*place, option);
  if (current == place->options.end()) return Change::kImpossible;
  place->options.erase(current);
  return Change::kMade;
}

Change Package::add_section(std::string_view type, std::string_view name) {
  if (!is_type(type) || !is_name(name)) return Change::kImpossible;
  const auto existing = locate(name);
  if (existing == sections_.end()) {
    sections_.push_back({std::string(type), std::string(name), false, {}});
    return Change::kMade;
  }
  if (existing->type == type && !existing->anonymous) return Change::kNone;
  existing->type = type;
  existing->anonymous = false;
  return Change::kMade;
}

Change Package::add_anonymous_section(std::string_view type) {
  if (!is_type(type)) return Change::kImpossible;
  sections_.push_back({std::string(type), {}, true, {}});
  name_anonymous_sections();
  return Change::kMade;
}

Change Package::delete_section(std::string_view section) {
  const auto place = locate(section);
  if (place == sections_.end()) return Change::kImpossible;
  sections_.erase(place);
  name_anonymous_sections();
  return Change::kMade;
}

}  // namespace easyuci
