// Names that users type, as lists keep them: in base64, so that any text is one word.
#pragma once

#include <string>
#include <string_view>

namespace zelto::names {

std::string encode(std::string_view name);
std::string decode(const std::string& encoded);

}  // namespace zelto::names
