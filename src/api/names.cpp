#include "api/names.h"

#include <cstddef>

#include <zelto/utilities.h>

namespace zelto::names {

std::string encode(std::string_view name) {
  std::string encoded((name.size() + 2) / 3 * 4 + 1, '\0');
  zelto_base64_encode(reinterpret_cast<const unsigned char*>(name.data()), encoded.data(),
                      static_cast<int>(name.size()));
  encoded.pop_back();
  return encoded;
}

std::string decode(const std::string& encoded) {
  std::string name((encoded.size() + 3) / 4 * 3, '\0');
  const int length =
      zelto_base64_decode(encoded.c_str(), reinterpret_cast<unsigned char*>(name.data()));
  name.resize(static_cast<std::size_t>(length));
  return name;
}

}  // namespace zelto::names
