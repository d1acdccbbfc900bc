#include "Spool.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>

#include "StandardOutput.h"

namespace velka {
namespace {

constexpr size_t kPiece = 65536;

ssize_t readSome(int fd, void* data, size_t size) noexcept {
  for (;;) {
    const ssize_t n = read(fd, data, size);
    if (n >= 0 || errno != EINTR) return n;
  }
}

bool writeWhole(int fd, std::span<const uint8_t> bytes) noexcept {
  return writeAll(fd, bytes) == bytes.size();
}

}  // namespace

std::string readHead(int fd, size_t size) {
  std::string head(size, '\0');
  size_t have = 0;
  errno = 0;
  while (have < size) {
    const ssize_t n = readSome(fd, head.data() + have, size - have);
    if (n <= 0) break;
    have += static_cast<size_t>(n);
  }
  head.resize(have);
  return head;
}

Passage passOn(int from, int to) noexcept {
  std::array<uint8_t, kPiece> piece = {};
  for (;;) {
    const ssize_t n = readSome(from, piece.data(), piece.size());
    if (n < 0) return Passage::CannotRead;
    if (n == 0) return Passage::Complete;
    if (!writeWhole(to, {piece.data(), static_cast<size_t>(n)})) return Passage::CannotWrite;
  }
}

Passage passOn(std::string_view head, int from, int to) noexcept {
  if (!writeWhole(to, {reinterpret_cast<const uint8_t*>(head.data()), head.size()}))
    return Passage::CannotWrite;
  return passOn(from, to);
}

UniqueFd namelessFile() {
  const char* folder = std::getenv("TMPDIR");  // NOLINT(concurrency-mt-unsafe): one thread reads it
  std::string name = std::string(folder == nullptr ? "/tmp" : folder) + "/velkapdfcopy.XXXXXX";
  UniqueFd file(mkostemp(name.data(), O_CLOEXEC));
  if (file) unlink(name.c_str());
  return file;
}

}  // namespace velka
