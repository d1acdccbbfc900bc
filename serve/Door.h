// The server on a port of this machine.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "Message.h"

struct MHD_Daemon;

namespace velka::serve {

/// Listens on 127.0.0.1 alone and passes requests on, each connection on a thread of its
/// own. Requests without an end, of too many bytes or on too many connections are dropped.
class Door {
 public:
  /// Takes that port, or a free one for 0.
  explicit Door(uint16_t port);
  ~Door() { close(); }
  Door(const Door&) = delete;
  Door& operator=(const Door&) = delete;

  /// Why nobody can come in; empty where all is fine.
  [[nodiscard]] const std::string& trouble() const { return trouble_; }
  [[nodiscard]] uint16_t port() const { return port_; }

  /// Lets requests in from now on; `answer` is called from several threads.
  void open(std::function<Response(const Request&)> answer);

  /// Lets nobody in any more, and waits for the answers that are being made.
  void close();

  /// What a request is told, whatever goes wrong meanwhile.
  [[nodiscard]] Response answer(const Request& request) const noexcept;

 private:
  void listenOn(uint16_t port);

  std::function<Response(const Request&)> answer_;
  std::string trouble_;
  MHD_Daemon* daemon_ = nullptr;
  int socket_ = -1;
  uint16_t port_ = 0;
};

}  // namespace velka::serve
