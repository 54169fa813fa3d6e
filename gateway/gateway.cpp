#include "gateway/gateway.h"

#include <strings.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <zelto/zeltoapi.h>

#include "catalogue/catalogue.h"
#include "gateway/account.h"
#include "gateway/audit.h"
#include "gateway/backoff.h"
#include "gateway/json.h"
#include "gateway/origin.h"
#include "gateway/sessions.h"
#include "gateway/token.h"

namespace gateway {
namespace {

using zelto::catalogue::Access;
using zelto::catalogue::Command;

constexpr std::string_view kLogin = "loginauth";
constexpr std::string_view kLogout = "logout";
constexpr std::string_view kSession = "session";
// Where a request carries the administrator's password once more; never reaches the library.
constexpr const char* kConfirmation = "_password";

const Refusal kNoSession{
    401, "no_session", "Please log in.", {"WWW-Authenticate: Bearer realm=\"zelto\""}};
const Refusal kAccountUnset{403, "account_unset", "This router has no administrator account yet."};

void check_headers(const HttpRequest& http) {
  if (http.method != "POST") {
    throw Refusal{405, "method", "Requests are sent by POST.", {"Allow: POST"}};
  }
  const std::string type = http.content_type.substr(0, http.content_type.find_first_of("; \t"));
  if (strcasecmp(type.c_str(), "application/json") != 0) {
    throw Refusal{400, "content_type", "Requests are of type application/json."};
  }
  if (!is_own_host(http, public_names())) {
    throw Refusal{403, "foreign_host", "This router is not known under that name."};
  }
  if (!is_same_origin(http)) {
    throw Refusal{403, "foreign_origin", "Requests come from the pages of this router only."};
  }
}

// The library's reply to a request.
std::string dispatch(const JsonObject& request) {
  std::array<char, ZELTO_REPLY_SIZE> out{};
  const int status = share_func(request.print().c_str(), out.data());
  return status == 0 ? out.data() : "";
}

std::string outcome_of(const std::string& reply) {
  if (reply.empty()) return "no reply";
  const auto object = JsonObject::parse(reply);
  const auto result = object ? object->number("result") : std::nullopt;
  return result ? "result " + std::to_string(static_cast<int>(*result)) : "done";
}

Response answer_with(const std::string& reply) {
  if (reply.empty()) throw Refusal{500, "no_reply", "The command gave no reply."};
  return {.body = reply};
}

Response log_in(const HttpRequest& http, const JsonObject& request) {
  if (!administrator_password()) {
    audit(Audit::kLogin, kLogin, http, "refused, no account is set");
    throw Refusal(kAccountUnset);
  }
  charge_attempt(http.source);
  const std::string reply = dispatch(request);
  auto object = JsonObject::parse(reply);
  if (!object || object->number("result") != 0) {
    audit(Audit::kLogin, kLogin, http, outcome_of(reply));
    return answer_with(reply);
  }
  forgive(http.source);
  const std::string token = start_session(object->text("token").value_or(""));
  object->replace_text("token", token);
  audit(Audit::kLogin, kLogin, http, outcome_of(reply));
  return {.body = object->print(), .headers = {set_cookie(token, http.over_tls)}};
}

Response log_out(const HttpRequest& http, const std::string& token) {
  end_session(token);
  audit(Audit::kLogin, kLogout, http, "result 0");
  return {.body = R"({"type":"logout","result":0})", .headers = {clear_cookie(http.over_tls)}};
}

Response show(const Session& session) {
  const auto member = [](const char* name, std::int64_t value) {
    return std::string(",\"") + name + "\":" + std::to_string(value);
  };
  return {.body = R"({"type":"session","result":0)" + member("idle_seconds", session.idle) +
                  member("idle_limit", kLongestIdle) + member("age_seconds", session.age) +
                  member("age_limit", kLongestSession) + "}"};
}

// Asks for the administrator's password again before a command that may do anything.
void confirm(const HttpRequest& http, const Command& command,
             const std::optional<std::string>& password) {
  if (!danger_is_allowed()) {
    throw Refusal{403, "disabled", "This command is switched off on this router."};
  }
  if (!password) throw Refusal{403, "confirm", "This command needs the password again."};
  const auto stored = administrator_password();
  if (!stored) throw Refusal(kAccountUnset);
  charge_attempt(http.source);
  if (!is_same_password(*password, *stored)) {
    audit(Audit::kCommand, command.name, http, "refused, wrong password");
    throw Refusal{403, "wrong_password", "The password is wrong."};
  }
  forgive(http.source);
}

Response run(const HttpRequest& http, const Command& command, JsonObject& request) {
  const auto password = request.take_text(kConfirmation);
  if (command.access == Access::kDanger) confirm(http, command, password);
  const std::string reply = dispatch(request);
  if (command.access == Access::kChange || command.access == Access::kDanger) {
    audit(Audit::kCommand, command.name, http, outcome_of(reply));
  }
  return answer_with(reply);
}

}  // namespace

Response handle(const HttpRequest& http, int input) {
  check_headers(http);
  auto request = JsonObject::parse(read_body(input));
  if (!request) throw Refusal{400, "bad_request", "The request is not a JSON object."};
  const std::string type = request->text("type").value_or("");
  const bool is_own = type == kLogout || type == kSession;
  const Command* command = zelto::catalogue::find(type);
  if (command == nullptr && !is_own) {
    throw Refusal{404, "unknown_command", "There is no such command."};
  }
  if (type == kLogin) return log_in(http, *request);
  if (!is_own && command->access == Access::kOpen) return run(http, *command, *request);

  const std::string token = presented_token(http);
  const auto session = find_session(token);
  if (!session) throw Refusal(kNoSession);
  if (type == kSession) return show(*session);
  if (type == kLogout) return log_out(http, token);
  if (!http.is_poll()) touch_session(token, *session);
  return run(http, *command, *request);
}

}  // namespace gateway
