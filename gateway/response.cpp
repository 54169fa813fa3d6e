#include "gateway/response.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace gateway {
namespace {

struct Reason {
  int status;
  std::string_view text;
};

constexpr std::array<Reason, 9> kReasons{{{200, "OK"},
                                          {400, "Bad Request"},
                                          {401, "Unauthorized"},
                                          {403, "Forbidden"},
                                          {404, "Not Found"},
                                          {405, "Method Not Allowed"},
                                          {413, "Content Too Large"},
                                          {429, "Too Many Requests"},
                                          {500, "Internal Server Error"}}};

std::string_view reason_of(int status) {
  const auto* const found = std::ranges::find(kReasons, status, &Reason::status);
  return found == kReasons.end() ? "Unknown" : found->text;
}

}  // namespace

Response to_response(const Refusal& refusal) {
  // Both texts are constants of this program without anything that JSON would escape.
  const auto body =
      std::string(R"({"error":")") + refusal.word + R"(","message":")" + refusal.message + "\"}";
  return {refusal.status, body, refusal.headers};
}

std::string to_cgi(const Response& response) {
  // The status comes first: busybox httpd looks for it there only.
  std::string text = "Status: " + std::to_string(response.status) + " ";
  text.append(reason_of(response.status)).append("\r\n");
  text +=
      "Content-Type: application/json\r\n"
      "Cache-Control: no-store\r\n"
      "X-Content-Type-Options: nosniff\r\n";
  text += "Content-Length: " + std::to_string(response.body.size()) + "\r\n";
  for (const auto& header : response.headers) text += header + "\r\n";
  return text + "\r\n" + response.body;
}

}  // namespace gateway
