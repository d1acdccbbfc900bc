// Who is let in: who knows the address, and no other web page on his behalf.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Message.h"

namespace velka::serve {

class Gate {
 public:
  Gate(std::string secret, uint16_t port) : secret_(std::move(secret)), port_(port) {}

  /// What a browser opens.
  [[nodiscard]] std::string address() const;

  /// Why a request is refused; none where it is let in. `rest` is the path behind the
  /// secret then, without a slash in front.
  [[nodiscard]] std::optional<Response> refuse(const Request& request, std::string& rest) const;

 private:
  [[nodiscard]] bool isOurs(const std::string& host) const;
  [[nodiscard]] bool isForeign(const Request& request) const;

  std::string secret_;
  uint16_t port_;
};

/// Headers of every answer: nothing of the page leaves this machine, no other page may
/// frame or read it, and its address is told nobody.
[[nodiscard]] const Pairs& safeHeaders();

}  // namespace velka::serve
