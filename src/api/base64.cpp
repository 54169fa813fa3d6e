#include <array>
#include <cstddef>
#include <cstring>

#include <zelto/utilities.h>

const char* base64char = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

namespace {

constexpr std::size_t kGroup = 4;  // characters that stand for three bytes
constexpr unsigned kForeign = 255;

unsigned index_of(char c) {
  const char* found = c == '\0' ? nullptr : std::strchr(base64char, c);
  return found == nullptr ? kForeign : static_cast<unsigned>(found - base64char);
}

}  // namespace

int zelto_base64_encode(const unsigned char* source, char* destination, int length) {
  for (; length > 0; source += 3, length -= 3) {
    const unsigned first = source[0];
    const unsigned second = length > 1 ? source[1] : 0;
    const unsigned third = length > 2 ? source[2] : 0;
    *destination++ = base64char[first >> 2];
    *destination++ = base64char[(first << 4 | second >> 4) & 0x3F];
    *destination++ = length > 1 ? base64char[(second << 2 | third >> 6) & 0x3F] : '=';
    *destination++ = length > 2 ? base64char[third & 0x3F] : '=';
  }
  *destination = '\0';
  return 1;
}

int zelto_base64_decode(const char* text, unsigned char* destination) {
  if (text == nullptr) return 0;
  int count = 0;
  const auto put = [&](unsigned value) {
    destination[count++] = static_cast<unsigned char>(value & 0xFF);
  };
  for (std::size_t left = std::strlen(text); left > 0;) {
    std::array<char, kGroup> group{};
    const std::size_t taken = left < kGroup ? left : kGroup;
    std::memcpy(group.data(), text, taken);
    std::array<unsigned, kGroup> index{};
    for (std::size_t i = 0; i < kGroup; ++i) index[i] = index_of(group[i]);

    put(index[0] << 2 | (index[1] >> 4 & 0x3));
    if (group[2] == '=') break;
    put(index[1] << 4 | (index[2] >> 2 & 0xF));
    if (group[3] == '=') break;
    put((index[2] << 6) + index[3]);
    text += taken;
    left -= taken;
  }
  return count;
}
