// The dispatcher, and the simplest command as the model of all others.

#include <array>
#include <cstddef>
#include <cstdio>
#include <string_view>

#include <zelto/zeltoapi.h>

#include "api/boundary.h"
#include "api/envelope.h"
#include "api/request.h"
#include "api/text.h"

namespace {

using zelto::answer;
using zelto::Reply;
using zelto::Request;

constexpr std::string_view kNoCommand = R"({"result":7})";
constexpr int kUnknownCommand = 6;
constexpr int kAlive = 9;
constexpr std::size_t kLongestEchoedType = 255;

CommandHandler find_handler(std::string_view type) {
  for (const auto& row : zelto_handle) {
    if (zelto::text::in_buffer(row.name) == type) return row.handler;
  }
  return nullptr;
}

// The name goes back as it came, without JSON escapes: pages compare it with what they sent.
void answer_unknown(std::string_view type, char* out) {
  const auto echoed = type.substr(0, kLongestEchoedType);
  std::snprintf(out, ZELTO_REPLY_SIZE, R"({"type":"%.*s","result":%d})",
                static_cast<int>(echoed.size()), echoed.data(), kUnknownCommand);
}

int dispatch(const char* request, char* out) {
  const Request parsed(request);
  if (!parsed.parsed()) return -1;
  const auto type = parsed.type();
  if (!type) {
    zelto::text::copy(kNoCommand, out, ZELTO_REPLY_SIZE);
    return -1;
  }
  const CommandHandler handler = find_handler(*type);
  if (handler == nullptr) {
    answer_unknown(*type, out);
    return 0;
  }
  // A handler writes into a buffer of ours: one that a firmware has put into the table may use it
  // as it likes, and the caller sees a finished reply or nothing.
  std::array<char, ZELTO_REPLY_SIZE> reply;
  reply.front() = '\0';
  handler(request, reply.data());
  zelto::text::copy(zelto::text::in_buffer(reply.data(), reply.size()), out, ZELTO_REPLY_SIZE);
  return 0;
}

}  // namespace

int share_func(const char* request, char* out) {
  if (out == nullptr) return -1;
  return zelto::guarded(-1, [&] { return dispatch(request, out); });
}

int bs_GetHeartBeat(const char* request, char* out) {
  return answer({.type = "getheartbeat"}, request, out,
                [](const Request&, Reply& reply) { reply.result(kAlive); });
}
