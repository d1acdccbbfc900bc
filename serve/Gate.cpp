#include "Gate.h"

#include <algorithm>

#include "Secret.h"

namespace velka::serve {
namespace {

Response refusal(int status, const std::string& text) {
  return {status, "text/plain; charset=utf-8", text + "\n", {}};
}

}  // namespace

std::string Gate::address() const {
  return "http://127.0.0.1:" + std::to_string(port_) + "/" + secret_ + "/";
}

// A name that leads here by a foreign name server is not one of these.
bool Gate::isOurs(const std::string& host) const {
  const std::string port = std::to_string(port_);
  return host == std::string("127.0.0.1:").append(port) ||
         host == std::string("localhost:").append(port);
}

// A page of another site, whatever it asks for; a browser that opens the address itself
// says "none", older ones nothing.
bool Gate::isForeign(const Request& request) const {
  const auto ours = [&](const std::string& origin) {
    constexpr std::string_view kScheme = "http://";
    return origin.starts_with(kScheme) && isOurs(origin.substr(kScheme.size()));
  };
  if (!std::ranges::all_of(request.origins, ours)) return true;
  return !request.site.empty() && request.site != "same-origin" && request.site != "none";
}

std::optional<Response> Gate::refuse(const Request& request, std::string& rest) const {
  if (request.hosts.size() != 1 || !isOurs(request.hosts[0])) {
    return refusal(kForbidden, "this is not the host that was asked for");
  }
  if (isForeign(request)) return refusal(kForbidden, "another page asks");
  const size_t end = request.path.find('/', 1);
  const std::string word = request.path.substr(0, end).substr(request.path.empty() ? 0 : 1);
  if (end == std::string::npos || !sameSecret(word, secret_)) {
    return refusal(kForbidden, "open the address that velkaview printed");
  }
  if (request.method != "GET") return refusal(kNotAllowed, "only GET is answered");
  rest = request.path.substr(end + 1);
  return std::nullopt;
}

const Pairs& safeHeaders() {
  static const Pairs headers = {
      {"Content-Security-Policy",
       "default-src 'none'; script-src 'self'; style-src 'self'; img-src 'self' data:; "
       "connect-src 'self'; base-uri 'none'; form-action 'none'; frame-ancestors 'none'"},
      {"Cross-Origin-Opener-Policy", "same-origin"},
      {"Cross-Origin-Resource-Policy", "same-origin"},
      {"Referrer-Policy", "no-referrer"},
      {"X-Content-Type-Options", "nosniff"},
      {"Cache-Control", "no-store"},
  };
  return headers;
}

}  // namespace velka::serve
