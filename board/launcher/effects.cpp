#include "board/launcher/effects.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
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

size_t journal_size() {
  std::error_code error;
  const auto size = std::filesystem::file_size(board::kJournal, error);
  return error ? 0 : size;
}

}  // namespace

void print_effect(const std::string& effect) {
  constexpr int kKeywordWidth = 5;
  const std::string text = printable(effect);
  const size_t keyword_end = std::min(text.find(' '), text.size());
  std::cout << "  " << std::left << std::setw(kKeywordWidth) << text.substr(0, keyword_end)
            << text.substr(keyword_end) << std::endl;
}

EffectFollower::EffectFollower() : position_(journal_size()) {}

void EffectFollower::print_new() {
  incomplete_ += unread();
  size_t start = 0;
  for (size_t end = incomplete_.find('\n'); end != std::string::npos;
       end = incomplete_.find('\n', start)) {
    print_effect(incomplete_.substr(start, end - start));
    start = end + 1;
  }
  incomplete_.erase(0, start);
}

std::string EffectFollower::unread() {
  const size_t size = journal_size();
  if (size < position_) {
    // Somebody has emptied it.
    position_ = 0;
    incomplete_.clear();
  }
  std::string text(size - position_, '\0');
  if (text.empty()) return text;
  std::ifstream journal(board::kJournal, std::ios::binary);
  journal.seekg(static_cast<std::streamoff>(position_));
  journal.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<size_t>(journal.gcount()));
  position_ += text.size();
  return text;
}

}  // namespace launcher
