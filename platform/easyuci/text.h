// The text of a UCI file, and back.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/easyuci/package.h"

namespace easyuci {

// Nothing when `text` is no well-formed UCI file: a quote left open, an unknown keyword, a bad
// name, too few or too many words, an option before the first section, a NUL.
std::optional<Package> parse(std::string_view text);

// Reads back as the same package. Comments and the layout of a former text are not kept.
std::string print(const Package& package);

}  // namespace easyuci
