// What a browser asks and what it is told.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace velka::serve {

using Pairs = std::vector<std::pair<std::string, std::string>>;

struct Request {
  std::string method;
  std::string path;                ///< without what stands behind "?"
  Pairs query;                     ///< decoded
  std::vector<std::string> hosts;  ///< the values of each header of that name
  std::vector<std::string> origins;
  std::string site;  ///< what the browser says of who asks (Sec-Fetch-Site); empty: nothing

  /// The value of the first parameter of that name; none where there is none.
  [[nodiscard]] std::optional<std::string> parameter(const std::string& name) const {
    for (const auto& [key, value] : query)
      if (key == name) return value;
    return std::nullopt;
  }
};

inline constexpr int kOk = 200;
inline constexpr int kBadRequest = 400;
inline constexpr int kForbidden = 403;
inline constexpr int kNotFound = 404;
inline constexpr int kNotAllowed = 405;
inline constexpr int kOutdated = 409;  ///< a newer wish of the same tab came meanwhile
inline constexpr int kUnprintable = 422;
inline constexpr int kInternal = 500;

struct Response {
  int status = kOk;
  std::string type = "text/plain; charset=utf-8";
  std::string body;
  Pairs headers = {};
};

}  // namespace velka::serve
