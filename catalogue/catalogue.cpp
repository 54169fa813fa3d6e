#include "catalogue/catalogue.h"

#include <algorithm>

namespace zelto::catalogue {
namespace {

#include "catalogue/data.inc"

}  // namespace

std::span<const Command> all() {
  return kCommands;
}

const Command* find(std::string_view name) {
  const auto* const found = std::ranges::find(kCommands, name, &Command::name);
  return found == std::end(kCommands) ? nullptr : found;
}

}  // namespace zelto::catalogue
