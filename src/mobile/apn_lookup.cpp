#include "mobile/apn_lookup.h"

#include <zelto/mobile.h>

#include "api/text.h"

namespace zelto::mobile {

std::string_view operator_of(std::string_view cimi_reply) {
  for (const auto& row : apnlist) {
    const auto code = text::in_buffer(row.mccmnc);
    if (code.empty() || row.apn[0] == '\0') continue;
    if (cimi_reply.find(code) != std::string_view::npos) return text::in_buffer(row.operator_name);
  }
  return {};
}

}  // namespace zelto::mobile
