// app-printer PORT FILE CONTROL: a printer behind a network socket. What the last connection
// sent lies in FILE. While CONTROL.hold is there it takes nothing; where CONTROL.drop comes it
// breaks the connection in the middle and is away until that file is gone.
#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <string>

#include "Descriptor.h"

namespace {

using velka::UniqueFd;

bool isThere(const std::string& name) {
  return access(name.c_str(), F_OK) == 0;
}

void pauseBriefly() {
  usleep(20'000);
}

UniqueFd listenTo(uint16_t port) {
  UniqueFd fd(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
  const int on = 1;
  const int small = 262144;
  setsockopt(fd.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
  setsockopt(fd.get(), SOL_SOCKET, SO_RCVBUF, &small, sizeof small);
  sockaddr_in address = {};
  address.sin_family = AF_INET;
  address.sin_port = htons(port);
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  if (bind(fd.get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
      listen(fd.get(), 1) != 0)
    std::exit(1);
  return fd;
}

// Says whether it was broken off.
bool takeAll(int connection, const std::string& file, const std::string& control) {
  const UniqueFd out(open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644));
  std::array<uint8_t, 65536> buffer;
  while (true) {
    if (isThere(control + ".drop")) {
      const linger now = {1, 0};
      setsockopt(connection, SOL_SOCKET, SO_LINGER, &now, sizeof now);
      return true;
    }
    if (isThere(control + ".hold")) {
      pauseBriefly();
      continue;
    }
    pollfd ready = {connection, POLLIN, 0};
    if (poll(&ready, 1, 20) == 0) continue;
    const ssize_t n = velka::readSome(connection, buffer);
    if (n <= 0 || write(out.get(), buffer.data(), static_cast<size_t>(n)) != n) return false;
  }
}

}  // namespace

int main(int argc, char* argv[]) {
  if (argc != 4) return 2;
  const auto port = static_cast<uint16_t>(std::atoi(argv[1]));
  const std::string file = argv[2];
  const std::string control = argv[3];
  while (true) {
    UniqueFd listener = listenTo(port);
    bool dropped = false;
    while (!dropped) {
      const UniqueFd connection(accept(listener.get(), nullptr, nullptr));
      if (!connection) return 1;
      dropped = takeAll(connection.get(), file, control);
      if (dropped) listener = UniqueFd();
    }
    while (isThere(control + ".drop")) pauseBriefly();
  }
}
