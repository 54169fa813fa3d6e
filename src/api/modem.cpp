#include "api/modem.h"

#include <array>

#include <platform/uart_at.h>

#include "api/text.h"

namespace zelto::modem {

std::string ask(const char* command, const char* prefix) {
  std::array<char, UART_AT_REPLY_SIZE> reply{};
  get_uart_ATCMD_result(command, prefix, reply.data());
  return std::string(text::in_buffer(reply.data(), reply.size()));
}

}  // namespace zelto::modem
