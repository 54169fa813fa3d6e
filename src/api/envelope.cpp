#include "api/envelope.h"

#include <cstdio>
#include <exception>

#include <zelto/zeltoapi.h>

#include "api/log.h"
#include "api/text.h"

namespace zelto {
namespace {

int refuse_unparsed(const Command& command) {
  if (command.unparsed_traced_as != nullptr) {
    console::trace(command.unparsed_traced_as, text::without_line_end(command.unparsed_log));
  } else if (command.unparsed_log != nullptr) {
    log::error(command.unparsed_log);
  }
  return command.unparsed_status;
}

void print_failure(const Command& command, char* out) {
  std::snprintf(out, ZELTO_REPLY_SIZE, R"({"type":"%s","result":%d})", command.type, kFailed);
}

void print(const Command& command, Reply& reply, char* out) {
  switch (reply.print(out)) {
    case Reply::Printed::kWhole:
      return;
    case Reply::Printed::kCut:
      return log::error(text::format("the reply of %s is too long and was cut!\n", command.type));
    case Reply::Printed::kNot:
      print_failure(command, out);
      return log::error(text::format("the reply of %s is too long!\n", command.type));
  }
}

}  // namespace

int answer(const Command& command, const char* request, char* out, const Body& body) noexcept {
  if (out == nullptr) return -1;
  bool printed = false;
  try {
    const Request parsed(request);
    if (!parsed.parsed() && !command.accepts_anything) return refuse_unparsed(command);

    Reply reply;
    const auto type = parsed.type();
    if (!type && command.is_silent_without_type) return 0;
    if (!command.echoes_type) {
      reply.text("type", command.type);
    } else if (type) {
      reply.text("type", *type);
    }
    if (command.accepts_any_type || command.accepts_anything || type == command.type) {
      body(parsed, reply);
    } else {
      reply.result(kFailed);
    }
    print(command, reply, out);
    printed = true;
    reply.run_effects();
    return reply.status();
  } catch (const std::exception& failure) {
    if (!printed) print_failure(command, out);
    log::failure(command.type, failure.what());
  }
  return 0;
}

}  // namespace zelto
