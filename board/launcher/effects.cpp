#include "board/launcher/effects.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <optional>
#include <string_view>
#include <system_error>

#include "board/root.h"

namespace launcher {
namespace {

// What a request brought along must not command the terminal.
std::string printable(std::string text) {
  const auto is_control = [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; };
  std::ranges::replace_if(text, is_control, '?');
  return text;
}

// What the gateway has logged in a line "<30>Nov 22 21:03:00 zelto-cgi[17]: text".
std::optional<std::string> text_of_gateway(const std::string& line) {
  const size_t name = line.find(" zelto-cgi[");
  const size_t text = line.find("]: ", name == std::string::npos ? line.size() : name);
  if (text == std::string::npos) return {};
  return line.substr(text + std::string_view("]: ").size());
}

}  // namespace

void print_effect(const std::string& effect) {
  constexpr int kKeywordWidth = 5;
  const std::string text = printable(effect);
  const size_t keyword_end = std::min(text.find(' '), text.size());
  std::cout << "  " << std::left << std::setw(kKeywordWidth) << text.substr(0, keyword_end)
            << text.substr(keyword_end) << std::endl;
}

Follower::Follower(const char* path) : path_(path), position_(size()) {}

std::vector<std::string> Follower::new_lines() {
  incomplete_ += unread();
  std::vector<std::string> lines;
  size_t start = 0;
  for (size_t end = incomplete_.find('\n'); end != std::string::npos;
       end = incomplete_.find('\n', start)) {
    lines.push_back(incomplete_.substr(start, end - start));
    start = end + 1;
  }
  incomplete_.erase(0, start);
  return lines;
}

size_t Follower::size() const {
  std::error_code error;
  const auto size = std::filesystem::file_size(path_, error);
  return error ? 0 : static_cast<size_t>(size);
}

std::string Follower::unread() {
  const size_t size_now = size();
  if (size_now < position_) {
    // Somebody has emptied it.
    position_ = 0;
    incomplete_.clear();
  }
  std::string text(size_now - position_, '\0');
  if (text.empty()) return text;
  std::ifstream file(path_, std::ios::binary);
  file.seekg(static_cast<std::streamoff>(position_));
  file.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<size_t>(file.gcount()));
  position_ += text.size();
  return text;
}

Reporter::Reporter() : journal_(board::kJournal), log_(board::kMessages) {}

void Reporter::print_new() {
  for (const std::string& effect : journal_.new_lines()) print_effect(effect);
  for (const std::string& line : log_.new_lines()) {
    if (const auto text = text_of_gateway(line)) print_effect("log " + *text);
  }
}

}  // namespace launcher
